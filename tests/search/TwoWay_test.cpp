#include "search/TwoWay.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "support/RowName.h"
#include "support/SearchTexts.h"

namespace qilsys::search {
namespace {

using test::RandomText;
using test::Rounds;
using test::SeededRandom;

std::vector<int> AllMatches(std::u16string_view text, std::u16string_view needle, int from) {
  std::vector<int> found;
  TwoWay<const char16_t*>(needle.data(), static_cast<int>(needle.size()))
      .eachMatch(text.data(), static_cast<int>(text.size()), from, [&](int at) {
        found.push_back(at);
        return true;
      });
  return found;
}

std::vector<int> ModelMatches(std::u16string_view text, std::u16string_view needle, int from) {
  std::vector<int> found;
  for (std::size_t at = static_cast<std::size_t>(from); (at = text.find(needle, at)) != text.npos; ++at) {
    found.push_back(static_cast<int>(at));
  }
  return found;
}

// Few letters make periods, borders and near misses of all kinds.
TEST(TwoWayRandom, AllMatchesAreThoseOfTheModel) {
  SeededRandom random;
  for (int round = Rounds(50000); round > 0; --round) {
    const std::u16string_view alphabet = random.OneIn(2) ? u"ab" : u"abc";
    const std::u16string needle = RandomText(random, alphabet, random.OneIn(3) ? 20 : 5) + u"a";
    std::u16string text = RandomText(random, alphabet, 60);
    if (random.OneIn(2)) text += needle + needle.substr(needle.size() / 2) + needle;
    const int from = random.Between(0, static_cast<int>(text.size()));
    ASSERT_EQ(AllMatches(text, needle, from), ModelMatches(text, needle, from))
        << testing::PrintToString(text) << testing::PrintToString(needle) << from;
  }
}

TEST(TwoWay, EveryNeedleOfUpToEightUnitsInEveryTextOfUpToTen) {
  const auto word = [](unsigned bits, int length) {
    std::u16string made;
    for (int i = 0; i < length; ++i) made += (bits >> i & 1) != 0 ? u'b' : u'a';
    return made;
  };
  for (int needleLength = 1; needleLength <= 8; ++needleLength) {
    for (unsigned needleBits = 0; needleBits < 1U << needleLength; ++needleBits) {
      const std::u16string needle = word(needleBits, needleLength);
      for (unsigned textBits = 0; textBits < 1U << 10; ++textBits) {
        const std::u16string text = word(textBits, 10);
        ASSERT_EQ(AllMatches(text, needle, 0), ModelMatches(text, needle, 0));
      }
    }
  }
}

TEST(TwoWay, EndsWhereTheCallerHasSeenEnough) {
  int calls = 0;
  TwoWay<const char16_t*>(u"aa", 2).eachMatch(u"aaaa", 4, 1, [&](int at) {
    EXPECT_EQ(at, 1);
    ++calls;
    return false;
  });
  EXPECT_EQ(calls, 1);
}

long long g_reads = 0;

/// Counts what is read.
struct Counted {
  char16_t operator[](int i) const {
    ++g_reads;
    return units[static_cast<std::size_t>(i)];
  }
  std::u16string_view units;
};

struct StepsRow {
  const char* name;
  std::u16string text;
  std::u16string needle;
};

void PrintTo(const StepsRow& row, std::ostream* out) { *out << row.name; }

std::u16string Repeated(std::u16string_view part, std::size_t length) {
  std::u16string made;
  while (made.size() < length) made += part;
  made.resize(length);
  return made;
}

// No word has more near repetitions.
std::u16string FibonacciWord(std::size_t length) {
  std::u16string before = u"b";
  std::u16string word = u"a";
  while (word.size() < length) {
    before = std::exchange(word, word + before);
  }
  word.resize(length);
  return word;
}

constexpr std::size_t Size = 20000;

std::vector<StepsRow> StepsRows() {
  const std::u16string same(Size, u'a');
  const std::u16string half(Size / 4, u'a');
  return {{"OneLetter", same, same.substr(Size / 2)},
          {"OtherLetterFirst", same, u"b" + half},
          {"OtherLetterLast", same, half + u"b"},
          {"OtherLetterInTheMiddle", same, half + u"b" + half},
          {"OneNeedleAfterTheOther", Repeated(half + u"b", Size), half + u"b"},
          {"NearMissAfterNearMiss", Repeated(half + u"b", Size), half + u"ba" + half},
          {"TwoLetters", Repeated(u"ab", Size), Repeated(u"ab", Size / 2)},
          {"TwoLettersAndAnother", Repeated(u"ab", Size), Repeated(u"ab", Size / 2) + u"c"},
          {"ThreeLetters", Repeated(u"aab", Size), Repeated(u"aab", Size / 4) + u"aa" + Repeated(u"aab", Size / 4)},
          {"Fibonacci", FibonacciWord(Size), FibonacciWord(Size / 3)},
          {"FibonacciTwice", FibonacciWord(Size), FibonacciWord(Size / 5) + FibonacciWord(Size / 5)}};
}

class TwoWaySteps : public testing::TestWithParam<StepsRow> {};

TEST_P(TwoWaySteps, AreLinear) {
  const StepsRow& row = GetParam();
  g_reads = 0;
  const TwoWay<Counted> search({row.needle}, static_cast<int>(row.needle.size()));
  const auto needleSize = static_cast<long long>(row.needle.size());
  EXPECT_LE(g_reads, 10 * needleSize);
  g_reads = 0;
  std::vector<int> found;
  search.eachMatch(Counted{row.text}, static_cast<int>(row.text.size()), 0, [&](int at) {
    found.push_back(at);
    return true;
  });
  // Each comparison reads a unit of both; the theorem gives two comparisons for a unit of the text.
  EXPECT_LE(g_reads, 4 * static_cast<long long>(row.text.size()) + 2 * needleSize);
  EXPECT_EQ(found, ModelMatches(row.text, row.needle, 0));
}

INSTANTIATE_TEST_SUITE_P(Table, TwoWaySteps, testing::ValuesIn(StepsRows()), test::RowName<StepsRow>);

}  // namespace
}  // namespace qilsys::search
