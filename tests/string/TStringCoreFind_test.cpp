#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/SearchModels.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

constexpr auto CaseSensitive = TStringCore::CaseSensitive;
constexpr auto CaseInsensitive = TStringCore::CaseInsensitive;

const TStringCore Text(u"abcabc");
const TStringCore Pairs(
    u"a\xD801\xDC00"
    u"b\xD801\xDC28"
    u"c");

TEST(Find, GivesAnIteratorAtTheMatch) {
  EXPECT_EQ(Text.find(u"ca").codeUnitIndex, 2);
  EXPECT_EQ(Text.find(L"ca").codeUnitIndex, 2);
  EXPECT_EQ(Text.find(u"CA", CaseInsensitive).codeUnitIndex, 2);
  EXPECT_EQ(Text.find(L"CA", CaseInsensitive).codeUnitIndex, 2);
  EXPECT_EQ(Text.find(u'c').codeUnitIndex, 2);
  EXPECT_EQ(Text.find(L'c').codeUnitIndex, 2);
  EXPECT_EQ(*Text.find(u'c'), U'c');
}

TEST(Find, CodePointIndexIsKnownOnlyAtTheFirst) {
  EXPECT_EQ(Text.find(u"abc").codePointIndex, 0);
  EXPECT_EQ(Text.find(u"bc").codePointIndex, -1);
}

TEST(Find, NothingFoundIsTheEnd) {
  EXPECT_TRUE(Text.find(u"x") == Text.codepoint_cend());
  EXPECT_TRUE(Text.find(u"CA") == Text.codepoint_cend());
  EXPECT_TRUE(Text.find(u'x') == Text.codepoint_cend());
  const TStringCore empty;
  EXPECT_TRUE(empty.find(u"x") == empty.codepoint_cend());
  EXPECT_TRUE(empty.find(u"") == empty.codepoint_cend());
  EXPECT_TRUE(empty.find(nullptr) == empty.codepoint_cend());
}

TEST(Find, StartsAtAnIterator) {
  const auto from = Text.createFromIndex(3);
  EXPECT_EQ(Text.find(u"bc", from).codeUnitIndex, 4);
  EXPECT_EQ(Text.find(L"bc", from).codeUnitIndex, 4);
  EXPECT_EQ(Text.find(u"BC", from, CaseInsensitive).codeUnitIndex, 4);
  EXPECT_EQ(Text.find(u"", from).codeUnitIndex, 3);
  EXPECT_EQ(Text.find(u'c', from).codeUnitIndex, 5);
  EXPECT_EQ(Text.find(L'c', from).codeUnitIndex, 5);
}

TEST(Find, TheEndIteratorStartsAtTheLastUnit) {
  const auto end = Text.codepoint_cend();
  EXPECT_EQ(Text.find(u"c", end).codeUnitIndex, 5);
  EXPECT_EQ(Text.find(u'c', end).codeUnitIndex, 5);
  EXPECT_TRUE(Text.find(u"b", end) == end);
  EXPECT_EQ(Text.find(u"", end).codeUnitIndex, 5);
}

TEST(Find, InsideACodePointRaises) {
  EXPECT_THROW((void)Pairs.find(u"\xDC00"), std::runtime_error);
  EXPECT_THROW((void)Pairs.find(char16_t{0xDC00}), std::runtime_error);
  EXPECT_EQ(Pairs.find(u"\xD801\xDC28").codeUnitIndex, 4);
}

TEST(FindLast, EdgeCases) {
  const TStringCore x(u"x");
  EXPECT_TRUE(x.findLast(u'x', x.codepoint_cbegin()) == x.codepoint_cend());
  EXPECT_TRUE(x.findLast(u'x') == x.codepoint_cbegin());
  EXPECT_TRUE(x.findLast(L'x') == x.codepoint_cbegin());
  EXPECT_TRUE(x.findLast(TStringCore(u"x"), x.codepoint_cbegin()) == x.codepoint_cend());
  EXPECT_TRUE(x.findLast(TStringCore(u"x")) == x.codepoint_cbegin());
  EXPECT_TRUE(x.findLast(TStringCore()) == x.codepoint_cend());
  const TStringCore empty;
  EXPECT_TRUE(empty.findLast(x) == empty.codepoint_cend());
  EXPECT_TRUE(empty.findLast(u'x') == empty.codepoint_cend());
  EXPECT_TRUE(empty.findLast(u'\0') == empty.codepoint_cend());
}

TEST(FindLast, TheLastCodePointOfTheMatchIsAtOrBeforeFrom) {
  EXPECT_EQ(Text.findLast(TStringCore(u"bc")).codeUnitIndex, 4);
  EXPECT_EQ(Text.findLast(TStringCore(u"bc"), Text.createFromIndex(5)).codeUnitIndex, 4);
  EXPECT_EQ(Text.findLast(TStringCore(u"bc"), Text.createFromIndex(4)).codeUnitIndex, 1);
  EXPECT_TRUE(Text.findLast(TStringCore(u"bc"), Text.createFromIndex(1)) == Text.codepoint_cend());
}

TEST(FindLast, FoldsWholeCodePoints) {
  const TStringCore capital(u"\xD801\xDC00");
  EXPECT_EQ(Pairs.findLast(capital).codeUnitIndex, 1);
  EXPECT_EQ(Pairs.findLast(capital, CaseInsensitive).codeUnitIndex, 4);
  EXPECT_EQ(Pairs.findLast(capital, Pairs.createFromIndex(3), CaseInsensitive).codeUnitIndex, 1);
}

TEST(FindLast, CodePointIndexIsKnownFromAKnownIterator) {
  EXPECT_EQ(Text.findLast(TStringCore(u"c")).codePointIndex, -1);
  EXPECT_EQ(Text.findLast(TStringCore(u"c"), Text.codepoint_cbegin() + 4).codePointIndex, 2);
}

TEST(FindLast, UnitScansDownFromTheIterator) {
  EXPECT_EQ(Text.findLast(u'b').codeUnitIndex, 4);
  EXPECT_EQ(Text.findLast(u'b', Text.createFromIndex(3)).codeUnitIndex, 1);
  EXPECT_EQ(Text.findLast(L'b', Text.createFromIndex(4)).codeUnitIndex, 4);
  EXPECT_TRUE(Text.findLast(u'x') == Text.codepoint_cend());
}

TEST(FindLast, NulIsFoundAtTheTerminatorWhichIsTheEnd) {
  const TStringCore text = String({u"a\0b", 3});
  EXPECT_TRUE(text.findLast(u'\0') == text.codepoint_cend());
  EXPECT_EQ(text.findLast(u'\0', text.createFromIndex(2)).codeUnitIndex, 1);
}

TEST(FindLast, UnitInsideACodePointRaises) { EXPECT_THROW((void)Pairs.findLast(char16_t{0xDC28}), std::runtime_error); }

TEST(FindLast, IteratorOfAnotherStringRaises) {
  const TStringCore other(u"other");
  EXPECT_THROW((void)Text.findLast(u'a', other.codepoint_cend()), std::runtime_error);
  EXPECT_THROW((void)Text.findLast(TStringCore(u"a"), other.codepoint_cend()), std::runtime_error);
}

// Backward by code point, as the walk is described, on vectors of code points.
int ModelFindLast(const std::u16string& text, const std::u16string& needle, int fromPoint, bool fold) {
  const std::vector<char32_t> points = ModelCodePoints(text);
  const std::vector<char32_t> wanted = ModelCodePoints(needle);
  if (points.empty() || wanted.empty() || fromPoint == 0) return -1;
  for (int last = fromPoint < 0 ? static_cast<int>(points.size()) - 1 : fromPoint; last >= 0; --last) {
    const int first = last - static_cast<int>(wanted.size()) + 1;
    bool same = first >= 0;
    for (std::size_t i = 0; same && i < wanted.size(); ++i) {
      same = ModelSame(points[static_cast<std::size_t>(first) + i], wanted[i], fold);
    }
    if (same) return first;
  }
  return -1;
}

TEST(FindLast, AgreesWithTheModel) {
  // No lone surrogates: on those the walk of the iterators itself is special.
  constexpr std::u16string_view Alphabet{u"aAb\0\u00E4\u00C4", 6};
  SeededRandom random;
  for (int round = Rounds(5000); round > 0; --round) {
    std::u16string text = RandomText(random, Alphabet, 20);
    if (random.OneIn(2)) text.insert(random.Between<std::size_t>(0, text.size()), u"\xD801\xDC00");
    std::u16string needle = RandomText(random, Alphabet, 2);
    if (random.OneIn(4)) needle += u"\xD801\xDC28";
    const TStringCore string = String(text);
    const int points = static_cast<int>(ModelCodePoints(text).size());
    const int from = random.Between(-1, points - 1);
    for (const auto cs : {CaseSensitive, CaseInsensitive}) {
      const auto start = from < 0 ? string.codepoint_cend() : string.codepoint_cbegin() + from;
      const auto found = string.findLast(String(needle), start, cs);
      const int wanted = ModelFindLast(text, needle, from, cs == CaseInsensitive);
      ASSERT_TRUE(found == (wanted < 0 ? string.codepoint_cend() : string.codepoint_cbegin() + wanted))
          << testing::PrintToString(text) << testing::PrintToString(needle) << from;
    }
  }
}

}  // namespace
}  // namespace qilsys::test
