// Sets of units and code points: removal, replacement and trimming.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/Literals.h"
#include "support/RowName.h"
#include "support/StringText.h"
#include "support/TStringCoreForTest.h"

using namespace std::string_literals;
using qilsys::test::UnitsOf;

namespace {

struct RemovalRow {
  const char* name;
  std::u16string text;
  std::u16string set;
  int start;
  std::u16string left;
  char16_t terminator;  // What the static form writes behind the text it leaves.
};

class RemoveAnyOf : public testing::TestWithParam<RemovalRow> {};

TEST_P(RemoveAnyOf, FromAString) {
  const RemovalRow& row = GetParam();
  TStringCore text = TStringCore::fromStdU16String(row.text);
  text.removeAnyOf(row.set.c_str(), row.start);
  EXPECT_EQ(UnitsOf(text), row.left);
  EXPECT_EQ(text.constData()[text.length()], 0);
}

TEST_P(RemoveAnyOf, FromASharedString) {
  const RemovalRow& row = GetParam();
  TStringCore text = TStringCore::fromStdU16String(row.text);
  text.reserve(50);
  const TStringCore other = text;
  text.removeAnyOf(TStringCore::fromStdU16String(row.set), row.start);
  EXPECT_EQ(UnitsOf(text), row.left);
  EXPECT_EQ(UnitsOf(other), row.text);
  EXPECT_EQ(text.isShared(), row.left == row.text);
}

TEST_P(RemoveAnyOf, FromABuffer) {
  const RemovalRow& row = GetParam();
  std::u16string buffer = row.text;
  const int length = TStringCore::removeAnyOf(buffer.data(), row.set.c_str(), row.start);
  EXPECT_EQ(buffer.substr(0, static_cast<std::size_t>(length)), row.left);
  EXPECT_EQ(buffer.data()[length], row.terminator);
}

INSTANTIATE_TEST_SUITE_P(
    Sets, RemoveAnyOf,
    testing::Values(
        RemovalRow{"OneUnit", u"abcabc", u"b", 0, u"acac", 0},
        RemovalRow{"OneUnitFromStart", u"abcabc", u"b", 2, u"abcac", 0},
        RemovalRow{"OneUnitAll", u"bbb", u"b", 0, u"", 0},
        RemovalRow{"OneWideUnit", u"a\u00E9c", u"\u00E9", 0, u"ac", 0},
        RemovalRow{"Ascii", u"abc\u00E9abc", u"ac", 0, u"b\u00E9b", 0},
        RemovalRow{"AsciiFromStart", u"abcabc", u"ac", 3, u"abcb", 0},
        RemovalRow{"NotAscii", u"abc", u"b\u00E9", 0, u"ac", u'0'},
        RemovalRow{"NotAsciiNoMatch", u"abc", u"x\u00E9", 0, u"abc", 0},
        RemovalRow{"Surrogates", u"a\U0001F600b\U0001F601", u"\U0001F600b", 0, u"a\U0001F601", 0},
        RemovalRow{"SurrogatesKeepLoneHalves", u"\xD83D\U0001F600\xDE00", u"\U0001F600", 0, u"\xD83D\xDE00", 0},
        RemovalRow{"LoneSurrogateIsReplacement", u"a\xFFFD\xD800z", u"\xDC00", 0, u"az", 0},
        RemovalRow{"EmptySet", u"abc", u"", 0, u"abc", 0}, RemovalRow{"NegativeStart", u"abc", u"a", -1, u"abc", 0},
        RemovalRow{"StartPastTheEnd", u"abc", u"a", 9, u"abc", 0}, RemovalRow{"EmptyText", u"", u"a", 0, u"", 0}),
    qilsys::test::RowName<RemovalRow>);

TEST(RemoveAnyOfTest, NullsChangeNothing) {
  EXPECT_EQ(TStringCore::removeAnyOf(static_cast<TCodeUnit*>(nullptr), QILSYS_UNITS("a")), 0);
  TCodeUnit buffer[] = QILSYS_UNITS("abc");
  EXPECT_EQ(TStringCore::removeAnyOf(buffer, nullptr), 3);
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").removeAnyOf(nullptr)), u"abc");
}

TEST(RemoveAnyOfTest, TheWriterOfTheDigitZero) {
  TCodeUnit buffer[] = QILSYS_UNITS("abc");
  EXPECT_EQ(TStringCore::removeAnyOf(buffer, QILSYS_UNITS("b\u00E9")), 2);
  EXPECT_EQ(buffer[2], 0x30);
}

TEST(RemoveAnyOfTest, ASetInTheOwnTextIsCopiedFirst) {
  for (const std::u16string set : {u"ab", u"b", u"b\u00E9", u"\U0001F600b"}) {
    TStringCore text = TStringCore::fromStdU16String(set + u"xyz" + set);
    text.removeAnyOf(text);
    EXPECT_EQ(UnitsOf(text), u"");
    text = TStringCore::fromStdU16String(u"xyz" + set);
    text.removeAnyOf(text.constData() + 3);
    EXPECT_EQ(UnitsOf(text), u"xyz");
  }
}

TEST(RemoveAnyOfTest, WithoutAHitABlockStaysShared) {
  TStringCore text(u'x', 40);
  const TStringCore other = text;
  text.removeAnyOf(u"ab").removeAnyOf(u"a").removeAnyOf(u"a\u00E9").removeAnyOf(u"\U0001F600");
  EXPECT_TRUE(text.isShared());
}

// ---- Replacement

struct ReplacementRow {
  const char* name;
  std::u16string text;
  std::u16string set;
  char16_t unit;
  int start;
  std::u16string result;
};

class ReplaceAnyOf : public testing::TestWithParam<ReplacementRow> {};

TEST_P(ReplaceAnyOf, InAString) {
  const ReplacementRow& row = GetParam();
  TStringCore text = TStringCore::fromStdU16String(row.text);
  EXPECT_EQ(UnitsOf(text.replaceAnyOf(row.set.c_str(), row.unit, row.start)), row.result);
  text = TStringCore::fromStdU16String(row.text);
  EXPECT_EQ(UnitsOf(text.replaceAnyOf(TStringCore::fromStdU16String(row.set), row.unit, row.start)), row.result);
}

TEST_P(ReplaceAnyOf, InABuffer) {
  const ReplacementRow& row = GetParam();
  std::u16string buffer = row.text;
  const int length = TStringCore::replaceAnyOf(buffer.data(), row.set.c_str(), row.unit, row.start);
  EXPECT_EQ(buffer.substr(0, static_cast<std::size_t>(length)), row.result);
  EXPECT_EQ(buffer.data()[length], 0);
}

INSTANTIATE_TEST_SUITE_P(
    Sets, ReplaceAnyOf,
    testing::Values(ReplacementRow{"Ascii", u"abcabc", u"ac", u'x', 0, u"xbxxbx"},
                    ReplacementRow{"FromStart", u"abcabc", u"ac", u'x', 3, u"abcxbx"},
                    ReplacementRow{"AsciiThenWide", u"a\u00E9b\u00E8c", u"a\u00E9\u00E8", u'x', 0, u"xxbxc"},
                    ReplacementRow{"WideThenAscii", u"a\u00E9b", u"\u00E9b", u'x', 0, u"axx"},
                    ReplacementRow{"PairsShrink", u"a\U0001F600b\U0001F601", u"\U0001F600", u'x', 0, u"axb\U0001F601"},
                    ReplacementRow{"WideUnit", u"abc", u"b", u'\u00E9', 0, u"a\u00E9c"},
                    ReplacementRow{"LoneSurrogatesStay", u"\xD800z\U0001F600\xDC00", u"z\U0001F600", u'x', 0,
                                   u"\xD800xx\xDC00"},
                    ReplacementRow{"EmptySet", u"abc", u"", u'x', 0, u"abc"},
                    ReplacementRow{"NegativeStart", u"abc", u"a", u'x', -1, u"abc"},
                    ReplacementRow{"StartAtTheEnd", u"abc", u"a", u'x', 3, u"abc"}),
    qilsys::test::RowName<ReplacementRow>);

TEST(ReplaceAnyOfTest, NullsChangeNothing) {
  EXPECT_EQ(TStringCore::replaceAnyOf(static_cast<TCodeUnit*>(nullptr), QILSYS_UNITS("a"), QILSYS_UNITS('x')), 0);
  TCodeUnit buffer[] = QILSYS_UNITS("abc");
  EXPECT_EQ(TStringCore::replaceAnyOf(buffer, nullptr, u'x'), 3);
}

TEST(ReplaceAnyOfTest, AlwaysDetaches) {
  TStringCore text(u'x', 40);
  const TStringCore other = text;
  text.replaceAnyOf(u"ab", u'y');
  EXPECT_FALSE(text.isShared());
}

TEST(ReplaceAnyOfTest, ASetInTheOwnTextIsCopiedFirst) {
  TStringCore text(u"abcab");
  text.replaceAnyOf(text.constData() + 3, QILSYS_UNITS('x'));
  EXPECT_EQ(UnitsOf(text), u"xxcxx");
  TCodeUnit buffer[] = QILSYS_UNITS("cab");
  EXPECT_EQ(TStringCore::replaceAnyOf(buffer, buffer + 1, u'x'), 3);
  EXPECT_EQ(std::basic_string<TCodeUnit>(buffer), QILSYS_UNITS("cxx"));
}

// ---- Trim

struct TrimRow {
  const char* name;
  std::u16string text;
  std::u16string left;
  std::u16string right;
  std::u16string both;
};

class TrimSpace : public testing::TestWithParam<TrimRow> {};

TEST_P(TrimSpace, EitherAndBothSides) {
  const auto text = [] { return TStringCore::fromStdU16String(GetParam().text); };
  EXPECT_EQ(UnitsOf(text().trimLeft()), GetParam().left);
  EXPECT_EQ(UnitsOf(text().trimRight()), GetParam().right);
  EXPECT_EQ(UnitsOf(text().trim()), GetParam().both);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, TrimSpace,
    testing::Values(TrimRow{"Plain", u" \t a b \n ", u"a b \n ", u" \t a b", u"a b"},
                    TrimRow{"Empty", u"", u"", u"", u""}, TrimRow{"AllSpace", u" \t\n", u"", u"", u""},
                    TrimRow{"NoSpace", u"ab", u"ab", u"ab", u"ab"},
                    TrimRow{"WideSpace", u"\u2003\u3000a\u00A0", u"a\u00A0", u"\u2003\u3000a", u"a"},
                    TrimRow{"PairAtTheEnd", u" \U0001F600 ", u"\U0001F600 ", u" \U0001F600", u"\U0001F600"},
                    TrimRow{"LowAfterSpace", u"a \xDC00", u"a \xDC00", u"a", u"a"},
                    TrimRow{"OnlyLow", u"\xDC00", u"\xDC00", u"\xDC00", u"\xDC00"}),
    qilsys::test::RowName<TrimRow>);

TEST(Trim, AllWhiteSpaceGivesTheBlockUp) {
  TStringCore text(u' ', 40);
  text.trimLeft();
  EXPECT_TRUE(qilsys::test::TStringCoreForTest::IsInline(text));
  EXPECT_EQ(text.capacity(), 15);
}

TEST(Trim, OneUnit) {
  EXPECT_EQ(UnitsOf(TStringCore(u"xxaxbxx").trimLeft(u'x')), u"axbxx");
  EXPECT_EQ(UnitsOf(TStringCore(u"xxaxbxx").trimRight(u'x')), u"xxaxb");
  EXPECT_EQ(UnitsOf(TStringCore(u"xxaxbxx").trim(u'x')), u"axb");
  EXPECT_EQ(UnitsOf(TStringCore(u"zzz").trim(u'z')), u"");
  EXPECT_EQ(UnitsOf(TStringCore().trimLeft(TCodeUnit{0})), u"");
  EXPECT_EQ(UnitsOf(TStringCore(u"\0a\0", 3).trimLeft(TCodeUnit{0})), u"\0a\0"s);
  EXPECT_EQ(UnitsOf(TStringCore(u"\0a\0", 3).trimRight(TCodeUnit{0})), u"\0a"s);
}

TEST(Trim, AByteIsSignExtended) {
  EXPECT_EQ(UnitsOf(TStringCore(u"\xFFE9z\xFFE9").trim('\xE9')), u"z");
  EXPECT_EQ(UnitsOf(TStringCore(u"\u00E9z\u00E9").trim('\xE9')), u"\u00E9z\u00E9");
  EXPECT_EQ(UnitsOf(TStringCore(u"xzx").trimLeft('x').trimRight('x')), u"z");
}

TEST(Trim, ASet) {
  EXPECT_EQ(UnitsOf(TStringCore(u"xyaxybyx").trim(u"yx")), u"axyb");
  EXPECT_EQ(UnitsOf(TStringCore(u"xyaxybyx").trimLeft(u"yx")), u"axybyx");
  EXPECT_EQ(UnitsOf(TStringCore(u"xyaxybyx").trimRight(u"yx")), u"xyaxyb");
  EXPECT_EQ(UnitsOf(TStringCore(u"xyaxybyx").trim(TStringCore(u"yx"))), u"axyb");
  EXPECT_EQ(UnitsOf(TStringCore(u"xyaxybyx").trimLeft(TStringCore(u"yx"))), u"axybyx");
  EXPECT_EQ(UnitsOf(TStringCore(u"xyaxybyx").trimRight(TStringCore(u"yx"))), u"xyaxyb");
  EXPECT_EQ(UnitsOf(TStringCore(u"xxa").trimLeft(u"x")), u"a");
  EXPECT_EQ(UnitsOf(TStringCore(u"axx").trimRight(u"x")), u"a");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").trim(nullptr)), u"abc");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").trim(u"")), u"abc");
}

TEST(Trim, ASetOfCodePoints) {
  EXPECT_EQ(UnitsOf(TStringCore(u"\U0001F600a\U0001F601\U0001F600").trimRight(u"\U0001F600\U0001F601")),
            u"\U0001F600a");
  EXPECT_EQ(UnitsOf(TStringCore(u"\U0001F600a\U0001F601").trim(u"\U0001F600\U0001F601")), u"a");
  EXPECT_EQ(UnitsOf(TStringCore(u"a\U0001F602").trimRight(u"\U0001F600\U0001F601")), u"a\U0001F602");
}

TEST(Trim, AWholeTextOfTheSetGivesTheBlockUpOnTheLeft) {
  TStringCore text = TStringCore(u"xy").repeated(20);
  text.trimLeft(u"xy");
  EXPECT_TRUE(text.empty());
  EXPECT_TRUE(qilsys::test::TStringCoreForTest::IsInline(text));
}

TEST(Trim, ASetInTheOwnText) {
  TStringCore text(u"xaxyzyx");
  text.trim(text.constData() + 4);
  EXPECT_EQ(UnitsOf(text), u"a");
  text = u"abc";
  text.trim(text);
  EXPECT_EQ(UnitsOf(text), u"");
}

TEST(Trim, NothingToTrimLeavesASharedBlock) {
  TStringCore text(u'x', 40);
  const TStringCore other = text;
  text.trim().trim(u'y').trim(u"yz").trim(u"y").trim(TStringCore(u"yz")).trim(nullptr);
  EXPECT_TRUE(text.isShared());
}

}  // namespace
