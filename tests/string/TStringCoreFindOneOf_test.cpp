#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/SearchModels.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

struct Row {
  const char* name;
  std::u16string text;
  std::u16string set;
  int start;
  int oneOf;
  int notOf;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class FindOneOf : public testing::TestWithParam<Row> {};

TEST_P(FindOneOf, EveryForm) {
  const Row& row = GetParam();
  const TStringCore text = String(row.text);
  EXPECT_EQ(text.findOneOf(String(row.set), row.start), row.oneOf);
  EXPECT_EQ(text.findOneNotOf(String(row.set), row.start), row.notOf);
  EachRawForm(row.set, [&](const auto* set) {
    EXPECT_EQ(text.findOneOf(set, row.start), row.oneOf);
    EXPECT_EQ(text.findOneNotOf(set, row.start), row.notOf);
  });
  EXPECT_EQ(TStringCore::findOneOf(row.text.c_str(), row.set.c_str(), row.start), row.oneOf);
}

TEST_P(FindOneOf, FromAnIterator) {
  const Row& row = GetParam();
  const TStringCore text = String(row.text);
  if (row.start < 0 || row.start > text.length() || CodePoint::IsLowSurrogate(text.at(row.start))) return;
  const auto from = text.createFromIndex(row.start);
  if (row.oneOf > 0 && CodePoint::IsLowSurrogate(text.at(row.oneOf))) {
    EXPECT_THROW((void)text.findOneOf(String(row.set), from), std::runtime_error);
    return;
  }
  const auto wanted = text.createFromIndex(from == text.codepoint_cend() ? -1 : row.oneOf);
  EXPECT_TRUE(text.findOneOf(String(row.set), from) == wanted);
  EachRawForm(row.set, [&](const auto* set) { EXPECT_TRUE(text.findOneOf(set, from) == wanted); });
}

INSTANTIATE_TEST_SUITE_P(
    Table, FindOneOf,
    testing::Values(Row{"First", u"abc", u"ca", 0, 0, 1}, Row{"FromStart", u"abca", u"a", 1, 3, 1},
                    Row{"None", u"abc", u"xyz", 0, -1, 0}, Row{"AllMembers", u"abc", u"cba", 0, 0, -1},
                    Row{"NegativeStart", u"abc", u"a", -1, -1, -1}, Row{"StartAtTheLength", u"abc", u"a", 3, -1, -1},
                    Row{"StartPastTheLength", u"abc", u"a", 9, -1, -1}, Row{"EmptySet", u"abc", u"", 1, -1, 1},
                    Row{"EmptyText", u"", u"a", 0, -1, -1}, Row{"BothEmpty", u"", u"", 0, -1, -1},
                    Row{"AsciiSetSkipsOthers", u"\u0161\u2C61a", u"a", 0, 2, 0},
                    Row{"ManyAsciiUnits", u"..........x", u"abcdefghijklmnopqrstuvwxyz", 0, 10, 0},
                    Row{"ManyAsciiUnitsNotOf", u"hello.", u"abcdefghijklmnopqrstuvwxyz", 0, 0, 5},
                    Row{"NineUnitsBesideLatin", u"\u00E1\u00E9i", u"abcdefghi", 0, 2, 0},
                    Row{"CaseCounts", u"Aa", u"a", 0, 1, 0}, Row{"NonAscii", u"ab\u00E4", u"\u00E4", 0, 2, 0},
                    Row{"NonAsciiAndAscii", u"xb\u00E4",
                        u"\u00E4"
                        u"b",
                        0, 1, 0},
                    Row{"Supplementary", u"a\xD801\xDC00", u"\xD801\xDC00", 0, 1, 0},
                    Row{"SupplementaryNotOf",
                        u"\xD801\xDC00"
                        u"a",
                        u"\xD801\xDC00", 0, 0, 2},
                    Row{"HalfOfAPairIsNoMember", u"\xD801\xDC00", u"\xD801", 0, -1, 0},
                    Row{"LoneSurrogateIsReplacement", u"a\xD801", u"\uFFFD", 0, 1, 0},
                    Row{"LoneSurrogatesAreAllTheSame", u"a\xDC00", u"\xD801", 0, 1, 0},
                    Row{"StartInsideAPair", u"\xD801\xDC00", u"\uFFFD", 1, 1, -1},
                    Row{"ManyCodePoints", u"xyz\u0431", u"\u0430\u0431\u0432\u0433\u0434\u0435\u0436\u0437\u0438", 0, 3,
                        0},
                    Row{"LongText", u"................................................x...", u"xyz", 3, 48, 3},
                    Row{"LongTextNotOf", u"................................................x...", u".", 3, 3, 48}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(FindOneOfNul, AsciiSetEndsAtItsNul) {
  EXPECT_EQ(TStringCore(u"xb").findOneOf(String({u"a\0b", 3})), -1);
  EXPECT_EQ(String({u"x\0", 2}).findOneOf(String({u"a\0b", 3})), -1);
  EXPECT_EQ(TStringCore(u"x").findOneOf(String({u"\0x", 2})), -1);
}

TEST(FindOneOfNul, OtherSetsUseTheirFullLength) {
  const TStringCore set = String({u"\u00E4\0b", 3});
  EXPECT_EQ(TStringCore(u"xb").findOneOf(set), 1);
  EXPECT_EQ(String({u"x\0", 2}).findOneOf(set), 1);
}

TEST(FindOneOfNul, NotOfUsesTheFullLength) {
  EXPECT_EQ(String({u"a\0b", 3}).findOneNotOf(String({u"a\0", 2})), 2);
  EXPECT_EQ(String({u"a\0b", 3}).findOneNotOf(u"a"), 1);
}

TEST(FindOneOfNull, FindsNothing) {
  const TStringCore text(u"abc");
  EXPECT_EQ(text.findOneOf(nullptr), -1);
  EXPECT_EQ(text.findOneOf(nullptr, 1), -1);
  EXPECT_TRUE(text.findOneOf(nullptr, text.codepoint_cbegin()) == text.codepoint_cend());
  EXPECT_EQ(TStringCore::findOneOf(nullptr, u"a", 0), -1);
  EXPECT_EQ(TStringCore::findOneOf(u"a", nullptr, 0), -1);
  EXPECT_EQ(text.findOneNotOf(nullptr, 1), 1);
  EXPECT_EQ(TStringCore().findOneNotOf(nullptr), -1);
}

TEST(FindOneOfIterator, EndFindsNothing) {
  const TStringCore text(u"abc");
  EXPECT_TRUE(text.findOneOf(u"abc", text.codepoint_cend()) == text.codepoint_cend());
}

TEST(FindChar, IsASetOfOne) {
  EXPECT_EQ(TStringCore::findChar(u"abc", u'c', 0), 2);
  EXPECT_EQ(TStringCore::findChar(L"abc", L'c', 0), 2);
  EXPECT_EQ(TStringCore::findChar(u"abca", u'a', 1), 3);
  EXPECT_EQ(TStringCore::findChar(u"abc", u'\0', 0), -1);
  EXPECT_EQ(TStringCore::findChar(L"abc", L'\0', 0), -1);
  EXPECT_EQ(TStringCore::findChar(nullptr, u'a', 0), -1);
  EXPECT_EQ(TStringCore::findChar(u"abc", u'c', -1), -1);
  EXPECT_EQ(TStringCore::findChar(u"abc", u'c', 9), -1);
}

TEST(FindOneNotOfUnit, FirstThatDiffers) {
  const TStringCore text(u"aab");
  EXPECT_EQ(text.findOneNotOf(u'a'), 2);
  EXPECT_EQ(text.findOneNotOf(L'a', 1), 2);
  EXPECT_EQ(text.findOneNotOf(u'b', 2), -1);
  EXPECT_EQ(text.findOneNotOf(u'a', -1), -1);
  EXPECT_EQ(text.findOneNotOf(u'a', 3), -1);
  EXPECT_EQ(TStringCore().findOneNotOf(u'a'), -1);
  EXPECT_EQ(TStringCore(u"aaa").findOneNotOf(u'a'), -1);
}

struct StaticRow {
  const char* name;
  std::u16string text;
  std::u16string set;
  int start;
  int wanted;
};

void PrintTo(const StaticRow& row, std::ostream* out) { *out << row.name; }

class StaticFindOneNotOf : public testing::TestWithParam<StaticRow> {};

TEST_P(StaticFindOneNotOf, BothForms) {
  const StaticRow& row = GetParam();
  EXPECT_EQ(TStringCore::findOneNotOf(row.text.c_str(), row.set.c_str(), row.start), row.wanted);
  EXPECT_EQ(TStringCore::findOneNotOf(Wide(row.text).c_str(), Wide(row.set).c_str(), row.start), row.wanted);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StaticFindOneNotOf,
    testing::Values(StaticRow{"EmptyText", u"", u"a", 0, -1}, StaticRow{"StartAtTheNul", u"abc", u"a", 3, -1},
                    StaticRow{"StartPastTheNul", u"abc", u"a", 100, -1},
                    StaticRow{"NegativeStart", u"abc", u"a", -1, -1}, StaticRow{"EmptySet", u"abc", u"", 1, 1},
                    StaticRow{"FromTheStartOfTheText", u"xxab", u"a", 2, 3},
                    StaticRow{"RunOfOneUnitUpToTheTerminator", u"aaa", u"a", 0, 3},
                    StaticRow{"RunOfOneUnitFromAStart", u"baaa", u"a", 1, 4},
                    StaticRow{"LongerSetUpToTheTerminator", u"aba", u"ab", 0, -1},
                    StaticRow{"LongerSet", u"abc", u"ab", 0, 2},
                    StaticRow{"NonAsciiTextAgainstAscii", u"a\u00E4", u"ab", 0, 1},
                    StaticRow{"OneNonAsciiUnitUpToTheTerminator", u"\u00E4\u00E4", u"\u00E4", 0, -1},
                    StaticRow{"NonAsciiSet",
                              u"\u00E4"
                              u"bc",
                              u"b\u00E4", 0, 2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(StaticFindOneNotOfNull, Text) {
  EXPECT_EQ(TStringCore::findOneNotOf(nullptr, u"a", 0), -1);
  EXPECT_EQ(TStringCore::findOneNotOf(u"abc", nullptr, 1), 1);
}

TEST(StaticFindOneNotOfUnit, LengthOfTheRun) {
  EXPECT_EQ(TStringCore::findOneNotOf(u"aab", u'a'), 2);
  EXPECT_EQ(TStringCore::findOneNotOf(L"aab", L'a'), 2);
  EXPECT_EQ(TStringCore::findOneNotOf(u"baa", u'a'), 0);
  EXPECT_EQ(TStringCore::findOneNotOf(u"aaa", u'a'), 3);
  EXPECT_EQ(TStringCore::findOneNotOf(u"", u'a'), 0);
  EXPECT_EQ(TStringCore::findOneNotOf(u"abc", u'\0'), 0);
  EXPECT_EQ(TStringCore::findOneNotOf(L"abc", L'\0'), 0);
  EXPECT_EQ(TStringCore::findOneNotOf(u"", u'\0'), -1);
  EXPECT_EQ(TStringCore::findOneNotOf(nullptr, u'\0'), -1);
  EXPECT_EQ(TStringCore::findOneNotOf(nullptr, u'a'), 0);
}

TEST(StaticFindOneNotOf, AgreesWithTheModel) {
  SeededRandom random;
  for (int round = Rounds(5000); round > 0; --round) {
    const std::u16string text{ModelToNul(RandomText(random, SearchAlphabet, 12))};
    const std::u16string set{ModelToNul(RandomText(random, SearchAlphabet, 4))};
    const int start = random.Between(-1, static_cast<int>(text.size()) + 1);
    int wanted = ModelFindNotOf(text, set, start);
    const bool isRun = set.size() == 1 && set[0] < 0x80 && start >= 0 && start < static_cast<int>(text.size());
    if (wanted < 0 && isRun) wanted = static_cast<int>(text.size());
    ASSERT_EQ(TStringCore::findOneNotOf(text.c_str(), set.c_str(), start), wanted)
        << testing::PrintToString(text) << testing::PrintToString(set) << start;
  }
}

}  // namespace
}  // namespace qilsys::test
