#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "support/RowName.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

struct Row {
  const char* name;
  std::u16string a;
  std::u16string b;
  int sensitive;
  int insensitive;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

const Row Rows[] = {
    {"BothEmpty", u"", u"", 0, 0},
    {"EmptyIsLess", u"", u"a", -1, -1},
    {"Equal", u"abc", u"abc", 0, 0},
    {"ShorterIsLess", u"ab", u"abc", -1, -1},
    {"CaseDiffers", u"abc", u"ABC", 1, 0},
    {"LetterAgainstCapital", u"a", u"B", 1, -1},
    {"UnderscoreStandsBetweenTheCases", u"_", u"A", 1, -1},
    {"BracketIsNoLetter", u"[", u"{", -1, -1},
    {"AtIsNoLetter", u"@", u"`", -1, -1},
    {"LetterAboveAscii", u"\u00C4", u"\u00E4", -1, 0},
    {"KelvinSign", u"\u212A", u"k", 1, 0},
    {"LongS", u"S", u"\u017F", -1, 0},
    {"FinalSigma", u"\u03C2", u"\u03A3", 1, 0},
    {"SupplementaryLettersDoNotFold", u"\xD801\xDC00", u"\xD801\xDC28", -1, -1},
    {"SupplementaryBelowPrivateUse", u"\xD800\xDC00", u"\uE000", -1, -1},
    {"LoneSurrogates", u"\xD800", u"\xDC00", -1, -1},
    {"HighestUnit", u"\uFFFF", u"a", 1, 1},
    {"FourteenUnits", u"abcdefghijklmn", u"ABCDEFGHIJKLMN", 1, 0},
    {"FifteenUnits", u"abcdefghijklmno", u"abcdefghijklmnO", 1, 0},
    {"SeventeenUnits", u"abcdefghijklmnopq", u"ABCDEFGHIJKLMNOPR", 1, -1},
    {"LongAboveAscii",
     u"\u00C4\u00D6\u00DC\u00C4\u00D6\u00DC\u00C4\u00D6\u00DC\u00C4\u00D6\u00DC\u00C4\u00D6\u00DC\u00C4\u00D6x",
     u"\u00E4\u00F6\u00FC\u00E4\u00F6\u00FC\u00E4\u00F6\u00FC\u00E4\u00F6\u00FC\u00E4\u00F6\u00FC\u00E4\u00F6y", -1,
     -1},
};

class Compare : public testing::TestWithParam<Row> {};

// Every sensitivity, with the values that no enumerator names.
template <class Check>
void EachSensitivity(const Row& row, Check check) {
  check(TStringCore::CaseSensitive, row.sensitive);
  for (const int other : {0, 2, -1}) check(static_cast<TStringCore::CaseSensitivity>(other), row.insensitive);
}

TEST_P(Compare, StringsAndRawText) {
  const Row& row = GetParam();
  EachSensitivity(row, [&](TStringCore::CaseSensitivity cs, int wanted) {
    const TStringCore a = String(row.a);
    EXPECT_EQ(a.compare(String(row.b), cs), wanted);
    EXPECT_EQ(String(row.b).compare(a, cs), -wanted);
    EachRawForm(row.b, [&](const auto* b) { EXPECT_EQ(a.compare(b, cs), wanted); });
    EXPECT_EQ(TStringCore::compare(row.a.c_str(), row.b.c_str(), cs), wanted);
    EXPECT_EQ(TStringCore::compare(Wide(row.a).c_str(), Wide(row.b).c_str(), cs), wanted);
    for (const int n : {-1, 100}) {
      EXPECT_EQ(TStringCore::compareN(row.a.c_str(), row.b.c_str(), n, cs), wanted);
      EXPECT_EQ(TStringCore::compareN(Wide(row.a).c_str(), Wide(row.b).c_str(), n, cs), wanted);
    }
  });
}

template <class A, class B>
void ExpectOperators(const A& a, const B& b, int order) {
  EXPECT_EQ(a == b, order == 0);
  EXPECT_EQ(a != b, order != 0);
  EXPECT_EQ(a < b, order < 0);
  EXPECT_EQ(a <= b, order <= 0);
  EXPECT_EQ(a > b, order > 0);
  EXPECT_EQ(a >= b, order >= 0);
}

TEST_P(Compare, OperatorsWithTextOnBothSides) {
  const Row& row = GetParam();
  const TStringCore a = String(row.a);
  ExpectOperators(a, String(row.b), row.sensitive);
  EachRawForm(row.b, [&](const auto* b) {
    ExpectOperators(a, b, row.sensitive);
    ExpectOperators(b, a, -row.sensitive);
  });
}

INSTANTIATE_TEST_SUITE_P(Table, Compare, testing::ValuesIn(Rows), qilsys::test::RowName<Row>);

TEST(CompareNul, EndsAtTheFirstNul) {
  const TStringCore a = String({u"ab\0c", 4});
  const TStringCore b = String({u"ab\0D", 4});
  const TStringCore shorter = String(u"ab");
  EXPECT_EQ(a.compare(b), 0);
  EXPECT_EQ(a.compare(shorter), 0);
  EXPECT_EQ(a.compare(u"ab"), 0);
  ExpectOperators(a, b, 0);
  EXPECT_TRUE(a == u"ab");
  EXPECT_TRUE(u"ab" >= a);
}

// Equality looks at the lengths first, order does not.
TEST(CompareNul, EqualityOfStringsTestsTheLengths) {
  const TStringCore a = String({u"ab\0c", 4});
  const TStringCore b = String(u"ab");
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(a != b);
  EXPECT_TRUE(a <= b);
  EXPECT_TRUE(a >= b);
  EXPECT_FALSE(a < b);
}

TEST(CompareNull, CountsAsEmptyText) {
  const TStringCore empty;
  const TStringCore text(u"a");
  const TCodeUnit* const null = nullptr;
  const TForeignUnit* const foreignNull = nullptr;
  EXPECT_EQ(empty.compare(null), 0);
  EXPECT_EQ(empty.compare(nullptr), 0);
  EXPECT_EQ(text.compare(null), 1);
  EXPECT_EQ(text.compare(foreignNull, TStringCore::CaseInsensitive), 1);
  EXPECT_EQ(TStringCore::compare(null, u"a"), -1);
  EXPECT_EQ(TStringCore::compare(u"a", null), 1);
  EXPECT_EQ(TStringCore::compare(u"", null), 0);
  EXPECT_EQ(TStringCore::compare(null, null), 0);
  EXPECT_EQ(TStringCore::compare(nullptr, nullptr), 0);
  EXPECT_EQ(TStringCore::compare(foreignNull, L"a"), -1);
  ExpectOperators(empty, null, 0);
  ExpectOperators(text, null, 1);
  ExpectOperators(null, text, -1);
  ExpectOperators(text, foreignNull, 1);
  EXPECT_TRUE(empty == nullptr);
  EXPECT_TRUE(nullptr != text);
}

TEST(CompareSame, IsEqualAtOnce) {
  const TStringCore text = String({u"a\0b", 3});
  EXPECT_EQ(text.compare(text), 0);
  EXPECT_EQ(text.compare(text.constData()), 0);
  EXPECT_EQ(TStringCore::compareN(text, text, 3), 0);
  ExpectOperators(text, text, 0);
}

TEST(CompareN, ComparesAtMostThatManyUnits) {
  EXPECT_EQ(TStringCore::compareN(u"abc", u"abd", 2), 0);
  EXPECT_EQ(TStringCore::compareN(u"abc", u"abd", 3), -1);
  EXPECT_EQ(TStringCore::compareN(L"abc", L"abd", 2), 0);
  EXPECT_EQ(TStringCore::compareN(L"abc", L"abd", 3), -1);
  EXPECT_EQ(TStringCore::compareN(u"abc", u"xyz", 0), 0);
  EXPECT_EQ(TStringCore::compareN(u"ABc", u"abD", 2, TStringCore::CaseInsensitive), 0);
  EXPECT_EQ(TStringCore::compareN(u"ab", u"abc", 3), -1);
  EXPECT_EQ(TStringCore::compareN(u"ab\0x", u"ab\0y", 4), 0);
  EXPECT_EQ(TStringCore::compareN(u"abc", u"abd", -7), -1);
}

TEST(CompareN, NullCountsAsEmptyText) {
  EXPECT_EQ(TStringCore::compareN(nullptr, u"a", 1), -1);
  EXPECT_EQ(TStringCore::compareN(nullptr, u"", 1), 0);
  EXPECT_EQ(TStringCore::compareN(u"a", nullptr, 1), 1);
  EXPECT_EQ(TStringCore::compareN(u"", nullptr, 1), 0);
  EXPECT_EQ(TStringCore::compareN(nullptr, nullptr, 1), 0);
  EXPECT_EQ(TStringCore::compareN(nullptr, u"a", 0), 0);
  EXPECT_EQ(TStringCore::compareN(nullptr, u"a", -1), -1);
}

struct UnitRow {
  const char* name;
  std::u16string s;
  bool isEqual;  // s == c, for c = 'b'
  bool isLess;   // s < c
};

void PrintTo(const UnitRow& row, std::ostream* out) { *out << row.name; }

class CompareUnit : public testing::TestWithParam<UnitRow> {};

template <class Unit>
void ExpectUnitOperators(const UnitRow& row, Unit c) {
  const TStringCore s = String(row.s);
  EXPECT_EQ(s == c, row.isEqual);
  EXPECT_EQ(s != c, !row.isEqual);
  EXPECT_EQ(c != s, !row.isEqual);
  EXPECT_EQ(c == s, row.isEqual);
  EXPECT_EQ(s < c, row.isLess);
  EXPECT_EQ(s <= c, row.isLess || row.isEqual);
  EXPECT_EQ(s > c, !row.isLess && !row.isEqual);
  EXPECT_EQ(s >= c, !row.isLess);
  EXPECT_EQ(c < s, !row.isLess);
  EXPECT_EQ(c <= s, !row.isLess && !row.isEqual);
  EXPECT_EQ(c > s, row.isLess || row.isEqual);
  EXPECT_EQ(c >= s, row.isLess);
}

TEST_P(CompareUnit, EveryOperatorByTheTable) {
  ExpectUnitOperators(GetParam(), u'b');
  ExpectUnitOperators(GetParam(), L'b');
}

INSTANTIATE_TEST_SUITE_P(Table, CompareUnit,
                         testing::Values(UnitRow{"Empty", u"", false, true}, UnitRow{"ThatUnit", u"b", true, false},
                                         UnitRow{"Below", u"a", false, true}, UnitRow{"Above", u"c", false, false},
                                         UnitRow{"ThatUnitAndMore", u"bc", false, false},
                                         UnitRow{"BelowAndMore", u"az", false, true},
                                         UnitRow{"Nul", std::u16string(1, u'\0'), false, true},
                                         UnitRow{"HighestUnit", u"\uFFFF", false, false}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CompareUnitLopsided, OneUnitAgainstItself) {
  const TStringCore s(u"a");
  EXPECT_TRUE(u'a' < s);
  EXPECT_TRUE(u'a' > s);
  EXPECT_FALSE(u'a' <= s);
  EXPECT_FALSE(u'a' >= s);
}

TEST(CompareUnitLopsided, TwoUnitsAgainstTheFirst) {
  const TStringCore s(u"ab");
  EXPECT_FALSE(s == u'a');
  EXPECT_FALSE(s < u'a');
}

}  // namespace
}  // namespace qilsys::test
