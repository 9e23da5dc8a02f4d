#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "support/RowName.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

constexpr auto CaseSensitive = TStringCore::CaseSensitive;
constexpr auto CaseInsensitive = TStringCore::CaseInsensitive;

struct Row {
  const char* name;
  std::u16string text;
  std::u16string needle;
  int start;
  int sensitive;
  int insensitive;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class IndexOf : public testing::TestWithParam<Row> {};

TEST_P(IndexOf, EveryForm) {
  const Row& row = GetParam();
  const TStringCore text = String(row.text);
  const auto length = static_cast<int>(row.text.size());
  const auto needleLen = static_cast<int>(row.needle.size());
  for (const auto cs : {CaseSensitive, CaseInsensitive}) {
    const int wanted = cs == CaseSensitive ? row.sensitive : row.insensitive;
    EXPECT_EQ(text.indexOf(String(row.needle), row.start, cs), wanted);
    EachRawForm(row.needle, [&](const auto* needle) { EXPECT_EQ(text.indexOf(needle, row.start, cs), wanted); });
    const TStringCore needle = String(row.needle);
    EXPECT_EQ(TStringCore::findStr(text, length, needle, needleLen, row.start, cs), wanted);
    EXPECT_EQ(TStringCore::findStr(text, length, needle, row.start, cs), wanted);
    EXPECT_EQ(TStringCore::findStr(row.text.c_str(), row.needle.c_str(), row.start, cs), wanted);
    if (row.start != 0) continue;
    EXPECT_EQ(text.contains(String(row.needle), cs), wanted >= 0);
    EXPECT_EQ(text.contains(Wide(row.needle).c_str(), cs), wanted >= 0);
    EXPECT_EQ(text.contains(row.needle.c_str(), cs), row.sensitive >= 0);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, IndexOf,
    testing::Values(
        Row{"EmptyNeedleAtItsStart", u"abc", u"", 1, 1, 1}, Row{"EmptyNeedleAtTheEnd", u"abc", u"", 3, -1, -1},
        Row{"EmptyInEmpty", u"", u"", 0, -1, -1}, Row{"LastUnitFromTheEnd", u"abc", u"c", -1, 2, 2},
        Row{"FromTheEnd", u"abcabc", u"abc", -3, 3, 3}, Row{"BeforeTheText", u"abc", u"a", -4, -1, -1},
        Row{"FromTheFirstByMinusLength", u"abc", u"a", -3, 0, 0}, Row{"PastTheText", u"abc", u"a", 3, -1, -1},
        Row{"FarPastTheText", u"abc", u"a", 0x7FFFFFFF, -1, -1},
        Row{"FarBeforeTheText", u"abc", u"a", -0x7FFFFFFF - 1, -1, -1},
        Row{"NeedleLongerThanText", u"ab", u"abc", 0, -1, -1}, Row{"NeedleIsText", u"abc", u"abc", 0, 0, 0},
        Row{"NeedleLongerThanRest", u"abcab", u"abc", 3, -1, -1}, Row{"Case", u"xAbC", u"aBc", 0, -1, 1},
        Row{"CaseAboveAscii", u"x\u00E4", u"\u00C4", 0, -1, 1}, Row{"Kelvin", u"x\u212Ay", u"k", 0, -1, 1},
        Row{"KelvinNeedle", u"xK", u"\u212A", 0, -1, 1}, Row{"Iota", u"\u0345\u1FBE", u"\u0399", 1, -1, 1},
        Row{"SupplementaryNeverFolds", u"x\xD801\xDC28", u"\xD801\xDC00", 0, -1, -1},
        Row{"SupplementarySameCase", u"x\xD801\xDC28", u"\xD801\xDC28", 0, 1, 1},
        Row{"LoneHighInAPair", u"x\xD801\xDC28", u"\xD801", 0, 1, 1},
        Row{"LoneLowInAPair", u"x\xD801\xDC28", u"\xDC28", 0, 2, 2},
        Row{"NearMisses", u"aaaaaaaaaaaaaaaaaaaaaaaaab", u"aab", 0, 23, 23},
        Row{"LastUnitRepeats", u"abcabdabcabb", u"abcabb", 0, 6, 6},
        Row{"InALongText", u"................................................needle...", u"NEEDLE", 0, -1, 48}),
    qilsys::test::RowName<Row>);

TEST(IndexOfNul, NeedleEndsAtItsFirstNul) {
  const TStringCore needle = String({u"b\0x", 3});
  EXPECT_EQ(TStringCore(u"abc").indexOf(needle), 1);
  EXPECT_FALSE(TStringCore(u"abc").contains(needle));
  EXPECT_TRUE(String({u"ab\0x", 4}).contains(needle));
}

TEST(IndexOfNul, NeedleThatBeginsWithNulIsEmpty) {
  const TStringCore nul = String({u"\0x", 2});
  EXPECT_EQ(TStringCore(u"abc").indexOf(nul, 1), 1);
  EXPECT_TRUE(TStringCore(u"abc").contains(nul));
  EXPECT_FALSE(TStringCore().contains(nul));
}

TEST(IndexOfNul, TextIsSearchedBehindItsNuls) {
  const TStringCore text = String({u"a\0b", 3});
  EXPECT_EQ(text.indexOf(u"b"), 2);
  EXPECT_EQ(text.indexOf(L"B", 0, CaseInsensitive), 2);
  EXPECT_EQ(text.indexOf(u'\0'), 1);
}

TEST(Contains, EmptyNeedle) {
  EXPECT_FALSE(TStringCore().contains(u""));
  EXPECT_FALSE(TStringCore().contains(L""));
  EXPECT_FALSE(TStringCore().contains(TStringCore()));
  EXPECT_TRUE(TStringCore(u"a").contains(u""));
  EXPECT_TRUE(TStringCore(u"a").contains(L""));
  EXPECT_TRUE(TStringCore(u"a").contains(nullptr));
  EXPECT_FALSE(TStringCore().contains(nullptr));
}

TEST(Contains, Char16FormIgnoresItsArgument) {
  const TStringCore text(u"a");
  EXPECT_FALSE(text.contains(u"A", CaseInsensitive));
  EXPECT_TRUE(text.contains(L"A", CaseInsensitive));
  EXPECT_TRUE(text.contains(TStringCore(u"A"), CaseInsensitive));
}

TEST(Contains, WideFormEndsTheTextAtItsFirstNul) {
  const TStringCore text = String({u"a\0b", 3});
  EXPECT_FALSE(text.contains(L"b"));
  EXPECT_TRUE(text.contains(L"a"));
  EXPECT_TRUE(text.contains(u"b"));
  EXPECT_TRUE(text.contains(TStringCore(u"b")));
}

TEST(Contains, OneUnit) {
  const TStringCore text = String({u"a\0b", 3});
  EXPECT_TRUE(text.contains(u'b'));
  EXPECT_TRUE(text.contains(L'b'));
  EXPECT_TRUE(text.contains(u'\0'));
  EXPECT_FALSE(text.contains(u'c'));
  EXPECT_FALSE(TStringCore().contains(u'\0'));
}

TEST(FindStr, NullHasNoLength) {
  const TCodeUnit* const null = nullptr;
  EXPECT_EQ(TStringCore::findStr(nullptr, u"a"), -1);
  EXPECT_EQ(TStringCore::findStr(null, null), -1);
  EXPECT_EQ(TStringCore::findStr(u"abc", null, 1), 1);
  EXPECT_EQ(TStringCore::findStr(L"abc", static_cast<const wchar_t*>(nullptr), 1), 1);
  EXPECT_EQ(TStringCore::findStr(null, 5, u"a", 1, 0), -1);
  EXPECT_EQ(TStringCore::findStr(null, 5, null, 0, 2), 2);
  EXPECT_EQ(TStringCore(u"abc").indexOf(nullptr, 2), 2);
  EXPECT_EQ(TStringCore(u"abc").indexOf(null, 3), -1);
}

TEST(FindStr, NegativeLengths) {
  for (const auto cs : {CaseSensitive, CaseInsensitive}) {
    EXPECT_EQ(TStringCore::findStr(u"abc", -1, u"a", 1, 0, cs), -1);
    EXPECT_EQ(TStringCore::findStr(u"abc", -1, u"a", 1, -1, cs), -1);
    EXPECT_EQ(TStringCore::findStr(u"abc", -0x7FFFFFFF - 1, u"a", 1, -1, cs), -1);
    EXPECT_EQ(TStringCore::findStr(L"abc", -1, L"a", 1, 0, cs), -1);
    EXPECT_EQ(TStringCore::findStr(u"abc", 3, u"a", -1, 0, cs), -1);
    EXPECT_EQ(TStringCore::findStr(L"abc", 3, L"a", -1, 0, cs), -1);
  }
}

// The first unit of the needle is looked at before its length.
TEST(FindStr, LengthZeroOfTextThatIsNotEmpty) {
  EXPECT_EQ(TStringCore::findStr(u"abc", 3, u"x", 0, 1, CaseSensitive), 1);
  EXPECT_EQ(TStringCore::findStr(u"abc", 3, u"x", 0, 1, CaseInsensitive), -1);
  EXPECT_EQ(TStringCore::findStr(u"abc", 3, u"", 0, 1, CaseInsensitive), 1);
  EXPECT_EQ(TStringCore::findStr(L"abc", 3, L"x", 0, 1, CaseSensitive), 1);
  EXPECT_EQ(TStringCore::findStr(L"abc", 3, L"x", 0, 1, CaseInsensitive), -1);
}

TEST(FindStr, LengthsOutrankNuls) {
  EXPECT_EQ(TStringCore::findStr(u"a\0bc", 4, u"\0b", 2, 1), 1);
  EXPECT_EQ(TStringCore::findStr(u"abc", 2, u"c", 1, 0), -1);
  EXPECT_EQ(TStringCore::findStr(u"abcd", 4, u"cx", 1, 0), 2);
  EXPECT_EQ(TStringCore::findStr(u"ab\0b\0x", 6, u"b\0x", 3, 0), 3);
}

TEST(FindStr, LengthsThatWouldWrapFindNothing) {
  EXPECT_EQ(TStringCore::findStr(u"abc", 3, u"abc", 0x7FFFFFFF, 2), -1);
  EXPECT_EQ(TStringCore::findStr(u"abc", 3, u"abc", 0x7FFFFFFF, 2, CaseInsensitive), -1);
}

TEST(IndexOfUnit, Scan) {
  const TStringCore text(u"abcb");
  EXPECT_EQ(text.indexOf(u'b'), 1);
  EXPECT_EQ(text.indexOf(L'b', 2), 3);
  EXPECT_EQ(text.indexOf(u'b', -1), 3);
  EXPECT_EQ(text.indexOf(u'b', -5), -1);
  EXPECT_EQ(text.indexOf(u'b', 4), -1);
  EXPECT_EQ(text.indexOf(u'\0'), -1);
  EXPECT_EQ(TStringCore().indexOf(u'a'), -1);
}

TEST(IndexOfUnit, StaticForm) {
  EXPECT_EQ(TStringCore::indexOf(nullptr, 3, u'a'), -1);
  EXPECT_EQ(TStringCore::indexOf(u"abc", -1, u'c'), 2);
  EXPECT_EQ(TStringCore::indexOf(L"abc", -1, L'c'), 2);
  EXPECT_EQ(TStringCore::indexOf(u"abc", 2, u'c'), -1);
  EXPECT_EQ(TStringCore::indexOf(u"a\0c", 3, u'c', 1), 2);
  EXPECT_EQ(TStringCore::indexOf(u"abc", 3, u'b', -2), 1);
  EXPECT_EQ(TStringCore::indexOf(u"abc", 0, u'a'), -1);
}

TEST(WideUnit, ThatNeedsTwoUnitsActsAsTheirText) {
  if constexpr (sizeof(wchar_t) > 2) {
    const auto wide = static_cast<wchar_t>(0x10400);
    const TStringCore text(u"x\xD801\xDC00y\xD801\xDC00");
    EXPECT_EQ(text.indexOf(wide), 1);
    EXPECT_TRUE(text.contains(wide));
    EXPECT_EQ(text.count(wide), 2);
    EXPECT_EQ(text.lastIndexOf(wide), 4);
    EXPECT_TRUE(text.endsWith(wide));
    EXPECT_FALSE(text.startsWith(wide));
    EXPECT_EQ(text.find(wide).codeUnitIndex, 1);
  }
}

TEST(Count, Units) {
  const TStringCore text = String({u"a\0a\0b", 5});
  EXPECT_EQ(text.count(u'a'), 2);
  EXPECT_EQ(text.count(L'a'), 2);
  EXPECT_EQ(text.count(u'\0'), 2);
  EXPECT_EQ(text.count(u'c'), 0);
}

struct CountRow {
  const char* name;
  std::u16string text;
  std::u16string needle;
  int sensitive;
  int insensitive;
};

void PrintTo(const CountRow& row, std::ostream* out) { *out << row.name; }

class Count : public testing::TestWithParam<CountRow> {};

TEST_P(Count, EveryForm) {
  const CountRow& row = GetParam();
  for (const auto cs : {CaseSensitive, CaseInsensitive}) {
    const int wanted = cs == CaseSensitive ? row.sensitive : row.insensitive;
    EXPECT_EQ(String(row.text).count(String(row.needle), cs), wanted);
    EachRawForm(row.needle, [&](const auto* needle) { EXPECT_EQ(String(row.text).count(needle, cs), wanted); });
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, Count,
    testing::Values(CountRow{"Overlapping", u"aaa", u"aa", 2, 2}, CountRow{"OverlappingFour", u"aaaa", u"aa", 3, 3},
                    CountRow{"EmptyNeedle", u"aaa", u"", 0, 0}, CountRow{"EmptyText", u"", u"a", 0, 0},
                    CountRow{"LongerThanText", u"a", u"aa", 0, 0}, CountRow{"Whole", u"abc", u"abc", 1, 1},
                    CountRow{"Case", u"aAaA", u"Aa", 1, 3},
                    CountRow{"LowSurrogateStepsByOne", u"\xDC00\xDC00\xDC00", u"\xDC00", 3, 3},
                    CountRow{"HighSurrogateStepsByTwo", u"\xD800\xD800\xD800", u"\xD800", 2, 2},
                    CountRow{"Pairs", u"\xD801\xDC00\xD801\xDC00", u"\xD801\xDC00", 2, 2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CountNul, TextEndsAtItsFirstNul) {
  const TStringCore text = String({u"a\0a", 3});
  EXPECT_EQ(text.count(u"a"), 1);
  EXPECT_EQ(text.count(TStringCore(u"a")), 1);
  EXPECT_EQ(text.count(nullptr), 0);
}

struct EndsRow {
  const char* name;
  std::u16string text;
  std::u16string needle;
  bool starts, startsFolded, ends, endsFolded;
};

void PrintTo(const EndsRow& row, std::ostream* out) { *out << row.name; }

class Ends : public testing::TestWithParam<EndsRow> {};

TEST_P(Ends, EveryForm) {
  const EndsRow& row = GetParam();
  const TStringCore text = String(row.text);
  const auto check = [&](const auto& needle) {
    EXPECT_EQ(text.startsWith(needle), row.starts);
    EXPECT_EQ(text.startsWith(needle, CaseInsensitive), row.startsFolded);
    EXPECT_EQ(text.endsWith(needle), row.ends);
    EXPECT_EQ(text.endsWith(needle, CaseInsensitive), row.endsFolded);
  };
  check(String(row.needle));
  EachRawForm(row.needle, check);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Ends,
    testing::Values(EndsRow{"EmptyNeedle", u"abc", u"", false, false, false, false},
                    EndsRow{"EmptyNeedleOfEmptyText", u"", u"", false, false, false, false},
                    EndsRow{"EmptyText", u"", u"a", false, false, false, false},
                    EndsRow{"Whole", u"abc", u"abc", true, true, true, true},
                    EndsRow{"Longer", u"abc", u"abcd", false, false, false, false},
                    EndsRow{"Start", u"abcd", u"ab", true, true, false, false},
                    EndsRow{"End", u"abcd", u"cd", false, false, true, true},
                    EndsRow{"Case", u"abab", u"AB", false, true, false, true},
                    EndsRow{"CaseAboveAscii", u"\u00E4x\u00E4", u"\u00C4", false, true, false, true},
                    EndsRow{"SupplementaryNeverFolds", u"\xD801\xDC28", u"\xD801\xDC00", false, false, false, false},
                    EndsRow{"LongText", u"abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz",
                            u"ABCDEFGHIJKLMNOPQRSTUVWXYZ", false, true, false, true}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(EndsNul, ComparingEndsAtACommonNul) {
  EXPECT_TRUE(String({u"a\0b", 3}).startsWith(String({u"a\0c", 3})));
  EXPECT_TRUE(String({u"a\0b", 3}).endsWith(String({u"a\0c", 3})));
  EXPECT_FALSE(String({u"a\0b", 3}).startsWith(u"ab"));
}

TEST(EndsNull, IsFalse) {
  EXPECT_FALSE(TStringCore(u"a").startsWith(nullptr));
  EXPECT_FALSE(TStringCore(u"a").endsWith(nullptr));
  EXPECT_FALSE(TStringCore().startsWith(nullptr));
  EXPECT_FALSE(TStringCore(u"a").endsWith(static_cast<const TForeignUnit*>(nullptr)));
}

TEST(EndsUnit, FirstAndLastUnit) {
  const TStringCore text(u"ab");
  EXPECT_TRUE(text.startsWith(u'a'));
  EXPECT_TRUE(text.startsWith(L'a'));
  EXPECT_FALSE(text.startsWith(u'b'));
  EXPECT_TRUE(text.endsWith(u'b'));
  EXPECT_TRUE(text.endsWith(L'b'));
  EXPECT_FALSE(text.endsWith(u'a'));
  EXPECT_FALSE(TStringCore().startsWith(u'\0'));
  EXPECT_FALSE(TStringCore().endsWith(u'\0'));
}

class LastIndexOf : public testing::TestWithParam<Row> {};

TEST_P(LastIndexOf, EveryForm) {
  const Row& row = GetParam();
  const TStringCore text = String(row.text);
  for (const auto cs : {CaseSensitive, CaseInsensitive}) {
    const int wanted = cs == CaseSensitive ? row.sensitive : row.insensitive;
    EXPECT_EQ(text.lastIndexOf(String(row.needle), row.start, cs), wanted);
    EachRawForm(row.needle, [&](const auto* needle) { EXPECT_EQ(text.lastIndexOf(needle, row.start, cs), wanted); });
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, LastIndexOf,
    testing::Values(Row{"Last", u"abcabc", u"abc", -1, 3, 3}, Row{"First", u"abcabc", u"abc", 2, 0, 0},
                    Row{"AtFrom", u"abcabc", u"abc", 3, 3, 3}, Row{"FromAboveTheLength", u"abcabc", u"abc", 99, 3, 3},
                    Row{"FromTheEnd", u"abcabc", u"abc", -4, 0, 0}, Row{"BeforeTheText", u"abc", u"a", -4, -1, -1},
                    Row{"MinusLengthIsTheFirst", u"abc", u"a", -3, 0, 0}, Row{"EmptyText", u"", u"a", -1, -1, -1},
                    Row{"EmptyNeedle", u"abc", u"", -1, -1, -1}, Row{"Longer", u"ab", u"abc", -1, -1, -1},
                    Row{"Case", u"abAB", u"ab", -1, 0, 2},
                    Row{"SupplementaryFolds", u"x\xD801\xDC28y", u"\xD801\xDC00", -1, -1, 1},
                    Row{"StartsOnALowSurrogate", u"\xD801\xDC28", u"\xD801", 1, -1, -1},
                    Row{"OnlyLowSurrogates", u"\xDC00\xDC00", u"\xDC00", -1, -1, -1},
                    Row{"LoneHighIsReplacement", u"a\xD801", u"\uFFFD", -1, 1, 1},
                    Row{"LowSurrogateEndsTheNeedle", u"a\uFFFDx", u"\xDC00y", -1, 1, 1},
                    Row{"HighSurrogateHidesTheNext", u"a\xD800x", u"\xD800y", -1, 1, 1}),
    qilsys::test::RowName<Row>);

TEST(LastIndexOfNul, NeedleEndsAtItsFirstNul) {
  EXPECT_EQ(TStringCore(u"abab").lastIndexOf(String({u"b\0x", 3})), 3);
  EXPECT_EQ(TStringCore(u"abab").lastIndexOf(String({u"\0x", 2})), -1);
  EXPECT_EQ(TStringCore(u"abab").lastIndexOf(nullptr), -1);
}

TEST(LastIndexOfUnit, ScansDownToTheFirst) {
  const TStringCore text(u"abcb");
  EXPECT_EQ(text.lastIndexOf(u'b'), 3);
  EXPECT_EQ(text.lastIndexOf(L'b', 2), 1);
  EXPECT_EQ(text.lastIndexOf(u'b', -2), 1);
  EXPECT_EQ(text.lastIndexOf(u'a', -4), 0);
  EXPECT_EQ(text.lastIndexOf(u'a', -5), -1);
  EXPECT_EQ(text.lastIndexOf(u'x'), -1);
}

TEST(LastIndexOfUnit, ReadsTheTerminator) {
  EXPECT_EQ(TStringCore(u"abc").lastIndexOf(u'\0'), 3);
  EXPECT_EQ(TStringCore(u"abc").lastIndexOf(u'\0', 2), -1);
  EXPECT_EQ(TStringCore().lastIndexOf(u'\0'), 0);
  EXPECT_EQ(TStringCore().lastIndexOf(u'a'), -1);
  EXPECT_EQ(String({u"a\0b", 3}).lastIndexOf(u'\0', 2), 1);
}

TEST(LastIndexOfUnit, AboveTheLengthStartsAtTheTerminator) {
  EXPECT_EQ(TStringCore(u"abc").lastIndexOf(u'c', 1000), 2);
  EXPECT_EQ(TStringCore(u"abc").lastIndexOf(u'\0', 0x7FFFFFFF), 3);
  EXPECT_EQ(TStringCore(u"abcdefghijklmnopqrstuvwxyz").lastIndexOf(u'\0', 1000), 26);
}

}  // namespace
}  // namespace qilsys::test
