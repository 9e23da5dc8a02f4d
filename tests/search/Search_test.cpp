#include "search/Search.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "search/Fields.h"
#include "support/Literals.h"
#include "support/SearchModels.h"
#include "support/SearchTexts.h"

namespace qilsys::search {
namespace {

using test::NearMissAlphabet;
using test::RandomText;
using test::Rounds;
using test::SearchAlphabet;
using test::SeededRandom;
using test::String;

constexpr CaseSensitivity AllSensitivities[] = {TStringCore::CaseInsensitive, TStringCore::CaseSensitive,
                                                static_cast<CaseSensitivity>(2), static_cast<CaseSensitivity>(-1)};

// Only CaseSensitive does not fold.
bool Folds(CaseSensitivity cs) { return cs != TStringCore::CaseSensitive; }

// Terminated text in an allocation of exactly that size, so that a sanitizer sees every read behind it.
class Exact {
 public:
  explicit Exact(const std::u16string& text) : m_units(text.begin(), text.end()) { m_units.push_back(0); }
  operator const TCodeUnit*() const { return m_units.data(); }
  int length() const { return static_cast<int>(m_units.size()) - 1; }

 private:
  std::vector<TCodeUnit> m_units;
};

using Text = std::basic_string<TCodeUnit>;

struct Case {
  std::u16string text;
  std::u16string needle;
  int start;
};

Case RandomCase(SeededRandom& random) {
  const std::u16string_view alphabet = random.OneIn(2) ? SearchAlphabet : NearMissAlphabet;
  const std::size_t longest = random.OneIn(10) ? 400 : 40;
  std::u16string text = RandomText(random, alphabet, longest);
  std::u16string needle = RandomText(random, alphabet, random.OneIn(10) ? 40 : 4);
  if (!text.empty() && random.OneIn(2)) {
    // A piece of the text with the case of a letter changed here and there, which is likely to be found by folding.
    needle = text.substr(random.Between<std::size_t>(0, text.size() - 1), needle.size());
    for (char16_t& c : needle) c = random.OneIn(4) && c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
  }
  const int length = static_cast<int>(text.size());
  return {std::move(text), std::move(needle), random.Between(-length - 2, length + 2)};
}

TEST(SearchRandom, FindStrCoreAgreesWithTheModel) {
  SeededRandom random;
  for (int round = Rounds(20000); round > 0; --round) {
    const Case c = RandomCase(random);
    const Exact text(c.text);
    const Exact needle(c.needle);
    for (const CaseSensitivity cs : AllSensitivities) {
      ASSERT_EQ(findStrCore(text, text.length(), needle, needle.length(), c.start, cs),
                test::ModelFind(c.text, c.needle, c.start, Folds(cs)))
          << testing::PrintToString(c.text) << testing::PrintToString(c.needle) << c.start << " " << cs;
    }
  }
}

TEST(SearchRandom, KmpSearchAgreesWithTheModel) {
  SeededRandom random;
  for (int round = Rounds(5000); round > 0; --round) {
    const Case c = RandomCase(random);
    if (c.text.empty() || c.needle.empty() || c.needle[0] == 0) continue;
    const Exact text(c.text);
    const Exact needle(c.needle);
    for (const CaseSensitivity cs : AllSensitivities) {
      std::vector<int> table;
      buildFailureTable(needle, needle.length(), table, cs);
      ASSERT_EQ(kmpSearch(text, text.length(), needle, needle.length(), table, cs),
                test::ModelFind(c.text, c.needle, 0, Folds(cs)));
    }
  }
}

TEST(SearchRandom, BackwardSearchAgreesWithTheModel) {
  SeededRandom random;
  for (int round = Rounds(20000); round > 0; --round) {
    const Case c = RandomCase(random);
    const Exact text(c.text);
    const Exact needle(c.needle);
    for (const CaseSensitivity cs : AllSensitivities) {
      ASSERT_EQ(findLastStr(text, text.length(), needle, needle.length(), c.start, cs),
                test::ModelLastIndexOf(c.text, c.needle, c.start, Folds(cs)))
          << testing::PrintToString(c.text) << testing::PrintToString(c.needle) << c.start << " " << cs;
    }
  }
}

// Long near misses of well-formed text, so that the Two-Way algorithm has to go on; now and then a lone surrogate, so
// that the walk must.
TEST(SearchRandom, BackwardSearchThroughNearMissesAgreesWithTheModel) {
  SeededRandom random;
  const std::u16string_view letters[] = {u"a", u"A", u"\U00010400", u"\U00010428", u"a", u"a"};
  for (int round = Rounds(2000); round > 0; --round) {
    std::u16string units;
    for (int left = random.Between(0, 600); left > 0; --left) {
      units += letters[random.OneIn(60) ? random.Between<std::size_t>(0, 5) : 0];
    }
    if (random.OneIn(4)) units.insert(units.size() / 2, 1, u'\xDC00');
    std::u16string sought = units.substr(units.size() / 3, random.Between<std::size_t>(0, 100));
    if (random.OneIn(2) && !sought.empty()) sought[sought.size() / 2] = u'b';
    const Exact text(units);
    const Exact needle(sought);
    const int from = random.Between(-1, static_cast<int>(units.size()));
    for (const CaseSensitivity cs : AllSensitivities) {
      ASSERT_EQ(findLastStr(text, text.length(), needle, needle.length(), from, cs),
                test::ModelLastIndexOf(units, sought, from, Folds(cs)))
          << testing::PrintToString(units) << testing::PrintToString(sought) << from << " " << cs;
    }
  }
}

TEST(SearchRandom, CountAgreesWithTheModel) {
  SeededRandom random;
  for (int round = Rounds(10000); round > 0; --round) {
    const Case c = RandomCase(random);
    for (const CaseSensitivity cs : {TStringCore::CaseInsensitive, TStringCore::CaseSensitive}) {
      ASSERT_EQ(String(c.text).count(String(c.needle), cs), test::ModelCount(c.text, c.needle, Folds(cs)));
    }
  }
}

TEST(SearchRandom, ComparingAgreesWithTheModel) {
  SeededRandom random;
  for (int round = Rounds(20000); round > 0; --round) {
    const Case c = RandomCase(random);
    std::u16string other = c.text;
    for (char16_t& unit : other) unit = random.OneIn(30) ? SearchAlphabet[3] : unit;
    if (random.OneIn(3)) other = c.needle;
    const Exact a(c.text);
    const Exact b(other);
    for (const CaseSensitivity cs : AllSensitivities) {
      const int wanted = test::ModelCompare(c.text, other, Folds(cs));
      ASSERT_EQ(compareText(a, a.length(), b, b.length(), cs), wanted);
      ASSERT_EQ(compareText(a, b, cs), wanted);
      ASSERT_EQ(compareN(a, b, c.start, cs), test::ModelCompare(c.text, other, Folds(cs), c.start));
    }
  }
}

TEST(SearchRandom, SetsAgreeWithTheModel) {
  SeededRandom random;
  constexpr std::u16string_view Ascii = u"abcdefghijklmnopqrstuvwxyz,;.:";
  for (int round = Rounds(20000); round > 0; --round) {
    const Case c = RandomCase(random);
    std::u16string set = RandomText(random, random.OneIn(2) ? SearchAlphabet : Ascii, random.OneIn(2) ? 4 : 20);
    const Exact text(c.text);
    const Exact members(set);
    ASSERT_EQ(findAnyOfCore(text, text.length(), members, members.length(), c.start),
              test::ModelFindAnyOf(c.text, set, c.start))
        << testing::PrintToString(c.text) << testing::PrintToString(set) << c.start;
    ASSERT_EQ(findNotOfCore(text, text.length(), members, members.length(), c.start),
              test::ModelFindNotOf(c.text, set, c.start))
        << testing::PrintToString(c.text) << testing::PrintToString(set) << c.start;
  }
}

TEST(SearchRandom, FieldsAgreeWithTheModel) {
  SeededRandom random;
  for (int round = Rounds(10000); round > 0; --round) {
    const Case c = RandomCase(random);
    const std::u16string sep{test::ModelToNul(c.needle)};
    if (sep.empty()) continue;
    const Exact text(c.text);
    for (const bool dropEmpty : {false, true}) {
      for (const CaseSensitivity cs : {TStringCore::CaseInsensitive, TStringCore::CaseSensitive}) {
        using Spans = std::vector<std::pair<int, int>>;
        Spans wanted;
        for (const test::ModelField& f : test::ModelFields(c.text, sep, dropEmpty, Folds(cs))) {
          wanted.emplace_back(f.offset, f.length);
        }
        Spans found;
        const Exact separator(sep);
        eachField(text, text.length(), separator, separator.length(), dropEmpty, cs,
                  [&](int offset, int length) { found.emplace_back(offset, length); });
        ASSERT_EQ(found, wanted);
      }
    }
  }
}

// Near misses at every place: the search by the ends of the needle hands over to the Two-Way algorithm.
TEST(Search, FoldedSearchThroughNearMissesFindsTheFirstMatch) {
  const Text needle = Text(200, 'a') + QILSYS_UNITS("b") + Text(200, 'a');
  Text text(5000, 'A');
  EXPECT_EQ(findStrCore(text.c_str(), 5000, needle.c_str(), 401, 0, TStringCore::CaseInsensitive), -1);
  text[3000] = 'B';
  text[4500] = 'B';
  EXPECT_EQ(findStrCore(text.c_str(), 5000, needle.c_str(), 401, 0, TStringCore::CaseInsensitive), 2800);
  EXPECT_EQ(findStrCore(text.c_str(), 5000, needle.c_str(), 401, 2800, TStringCore::CaseInsensitive), 2800);
  EXPECT_EQ(findStrCore(text.c_str(), 5000, needle.c_str(), 401, 2801, TStringCore::CaseInsensitive), 4300);
}

// One of these matches stands at the very place where the other algorithm takes over.
TEST(Search, FoldedSearchThroughNearMissesFindsAMatchAtAnyPlace) {
  const Text needle = Text(20, 'a') + QILSYS_UNITS("b") + Text(20, 'a');
  for (std::size_t at = 0; at < 500; ++at) {
    Text text(600, 'A');
    text[at + 20] = 'B';
    ASSERT_EQ(findStrCore(text.c_str(), 600, needle.c_str(), 41, 0, TStringCore::CaseInsensitive),
              static_cast<int>(at));
  }
}

TEST(Search, FailureTableHoldsBorders) {
  std::vector<int> table;
  buildFailureTable(QILSYS_UNITS("aabaaab"), 7, table, TStringCore::CaseSensitive);
  EXPECT_EQ(table, (std::vector<int>{-1, 0, -1, 0, 1, 1, 2}));
  buildFailureTable(QILSYS_UNITS("aABAaab"), 7, table, TStringCore::CaseSensitive);
  EXPECT_EQ(table, (std::vector<int>{-1, -1, -1, -1, 0, 0, -1}));
  buildFailureTable(QILSYS_UNITS("aABAaab"), 7, table, TStringCore::CaseInsensitive);
  EXPECT_EQ(table, (std::vector<int>{-1, 0, -1, 0, 1, 1, 2}));
}

TEST(Search, FailureTableOfNothingIsUntouched) {
  std::vector<int> table{7, 8};
  buildFailureTable(nullptr, 3, table, TStringCore::CaseSensitive);
  buildFailureTable(QILSYS_UNITS("abc"), 0, table, TStringCore::CaseSensitive);
  buildFailureTable(QILSYS_UNITS("abc"), -1, table, TStringCore::CaseSensitive);
  EXPECT_EQ(table, (std::vector<int>{7, 8}));
}

TEST(Search, KmpSearchRefusesWhatCannotMatch) {
  const std::vector<int> table{-1, -1};
  EXPECT_EQ(kmpSearch(nullptr, 2, QILSYS_UNITS("ab"), 2, table, TStringCore::CaseSensitive), -1);
  EXPECT_EQ(kmpSearch(QILSYS_UNITS("ab"), 2, nullptr, 2, table, TStringCore::CaseSensitive), -1);
  EXPECT_EQ(kmpSearch(QILSYS_UNITS("ab"), 0, QILSYS_UNITS("ab"), 2, table, TStringCore::CaseSensitive), -1);
  EXPECT_EQ(kmpSearch(QILSYS_UNITS("ab"), 2, QILSYS_UNITS("ab"), 0, table, TStringCore::CaseSensitive), -1);
  EXPECT_EQ(kmpSearch(QILSYS_UNITS("ab"), 1, QILSYS_UNITS("ab"), 2, table, TStringCore::CaseSensitive), -1);
  EXPECT_EQ(kmpSearch(QILSYS_UNITS("xAB"), 3, QILSYS_UNITS("ab"), 2, table, TStringCore::CaseSensitive), -1);
  EXPECT_EQ(kmpSearch(QILSYS_UNITS("xAB"), 3, QILSYS_UNITS("ab"), 2, table, TStringCore::CaseInsensitive), 1);
}

}  // namespace
}  // namespace qilsys::search
