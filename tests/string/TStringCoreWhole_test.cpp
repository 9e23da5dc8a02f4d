// Fill, reverse, byte order mark, line endings and case.
#include <gtest/gtest.h>

#include <string>

#include "qilsys/TStringCore.h"
#include "qilsys/Unicode.h"
#include "support/DefaultLocale.h"
#include "support/RowName.h"
#include "support/StringText.h"
#include "support/TStringCoreForTest.h"

using namespace std::string_literals;
using qilsys::test::DefaultLocale;
using qilsys::test::UnitsOf;

namespace {

TEST(TStringCoreFill, SetsEveryUnit) {
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").fill(u'z')), u"zzz");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").fill(u'x', 5)), u"xxxxx");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").fill(u'x', 0)), u"");
  EXPECT_EQ(UnitsOf(TStringCore().fill(u'x')), u"");
  EXPECT_EQ(UnitsOf(TStringCore(u"\U0001F600").fill(u'a', -1)), u"a") << "counted in code points";
  EXPECT_EQ(UnitsOf(TStringCore(u"abc").fill(L'z')), u"zzz");
  if (sizeof(wchar_t) > 2) {
    EXPECT_EQ(UnitsOf(TStringCore(u"abc").fill(static_cast<wchar_t>(0x1F600))), u"\xFFFD\xFFFD\xFFFD");
  }
}

TEST(TStringCoreReverse, KeepsPairs) {
  const auto reversed = [](const char16_t* units) {
    TStringCore text(units);
    text.reverse();
    return UnitsOf(text);
  };
  EXPECT_EQ(reversed(u""), u"");
  EXPECT_EQ(reversed(u"a"), u"a");
  EXPECT_EQ(reversed(u"abc"), u"cba");
  EXPECT_EQ(reversed(u"\U0001F600"), u"\U0001F600");
  EXPECT_EQ(reversed(u"a\U0001F600\U0001F601b"), u"b\U0001F601\U0001F600a");
  EXPECT_EQ(reversed(u"\xD800z\xDC00"), u"\xDC00z\xD800");
  EXPECT_EQ(reversed(u"\xDC00\xD800"), u"\xD800\xDC00");
  EXPECT_EQ(reversed(u"abcdefghijklmnopqrs\U0001F600"), u"\U0001F600srqponmlkjihgfedcba");
}

TEST(TStringCoreBom, IsPutAndTakenOnce) {
  TStringCore text(u"abc");
  EXPECT_FALSE(text.hasBOM());
  EXPECT_EQ(UnitsOf(text.prependBOM()), u"\xFEFF"s + u"abc");
  EXPECT_TRUE(text.hasBOM());
  EXPECT_EQ(text.prependBOM().length(), 4);
  EXPECT_EQ(UnitsOf(text.removeBOM()), u"abc");
  EXPECT_EQ(UnitsOf(text.removeBOM()), u"abc");
  EXPECT_FALSE(TStringCore().hasBOM());
  EXPECT_EQ(UnitsOf(TStringCore().prependBOM()), u"\xFEFF");
}

// ---- Line endings

struct LineRow {
  const char* name;
  std::u16string text;
  std::u16string unix;
  std::u16string dos;
};

class LineEndings : public testing::TestWithParam<LineRow> {};

TEST_P(LineEndings, OfAString) {
  TStringCore text = TStringCore::fromStdU16String(GetParam().text);
  EXPECT_EQ(UnitsOf(text.dosToUnix()), GetParam().unix);
  text = TStringCore::fromStdU16String(GetParam().text);
  EXPECT_EQ(UnitsOf(text.unixToDos()), GetParam().dos);
  text = TStringCore::fromStdU16String(GetParam().text);
  EXPECT_EQ(UnitsOf(text.toNativeLineEndings()), GetParam().dos);
}

TEST_P(LineEndings, OfASharedString) {
  const std::u16string pad(20, u'_');
  const TStringCore whole = TStringCore::fromStdU16String(pad + GetParam().text);
  TStringCore text = whole;
  EXPECT_EQ(UnitsOf(text.dosToUnix()), pad + GetParam().unix);
  text = whole;
  EXPECT_EQ(UnitsOf(text.unixToDos()), pad + GetParam().dos);
  EXPECT_EQ(UnitsOf(whole), pad + GetParam().text);
}

TEST_P(LineEndings, OfABuffer) {
  std::u16string buffer = GetParam().text;
  const int length = TStringCore::dosToUnix(buffer.data());
  EXPECT_EQ(std::u16string(buffer.c_str()), GetParam().unix);
  EXPECT_EQ(static_cast<std::size_t>(length), GetParam().unix.size());
}

INSTANTIATE_TEST_SUITE_P(
    Texts, LineEndings,
    testing::Values(LineRow{"Empty", u"", u"", u""}, LineRow{"None", u"abc", u"abc", u"abc"},
                    LineRow{"CrLf", u"a\r\nb", u"a\nb", u"a\r\nb"}, LineRow{"CrCrLf", u"a\r\r\nb", u"a\nb", u"a\r\nb"},
                    LineRow{"CrLfLf", u"a\r\n\nb", u"a\n\nb", u"a\r\n\r\nb"},
                    LineRow{"Lf", u"a\nb", u"a\nb", u"a\r\nb"}, LineRow{"LfLf", u"\n\n", u"\n\n", u"\r\n\r\n"},
                    LineRow{"LoneCr", u"a\rb", u"a\nb", u"a\r\nb"}, LineRow{"CrAtTheEnd", u"a\r", u"a\n", u"a\r\n"},
                    LineRow{"CrAfterLfOnceBegun", u"a\r\nb\n\rc", u"a\nb\nc", u"a\r\nb\r\nc"}),
    qilsys::test::RowName<LineRow>);

TEST(LineEndingsTest, WhatDoesNotChangeStaysShared) {
  TStringCore unix = TStringCore(u"line\n").repeated(10);
  const TStringCore other = unix;
  unix.dosToUnix();
  EXPECT_TRUE(unix.isShared());
  TStringCore dos = TStringCore(u"line\r\n").repeated(10);
  const TStringCore otherDos = dos;
  dos.unixToDos();
  EXPECT_TRUE(dos.isShared());
}

TEST(LineEndingsTest, TextBehindANulIsKept) {
  TStringCore text(u"a\0\r\nb", 5);
  EXPECT_EQ(UnitsOf(text.dosToUnix()), u"a\0\nb"s);
  EXPECT_EQ(UnitsOf(text.unixToDos()), u"a\0\r\nb"s);
  EXPECT_EQ(TStringCore::dosToUnix(static_cast<TCodeUnit*>(nullptr)), 0);
}

// ---- Case

TEST(TStringCoreCase, MapsAscii) {
  EXPECT_EQ(UnitsOf(TStringCore(u"aBc[@`{Z").toLower()), u"abc[@`{z");
  EXPECT_EQ(UnitsOf(TStringCore(u"aBc[@`{z").toUpper()), u"ABC[@`{Z");
  EXPECT_EQ(UnitsOf(TStringCore().toLower()), u"");
  EXPECT_EQ(UnitsOf(TStringCore(u"A\0B", 3).toLower()), u"a\0b"s);
  const TStringCore text(u"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");
  EXPECT_EQ(UnitsOf(text.toLower()), u"abcdefghijklmnopqrstuvwxyz0123456789");
  EXPECT_EQ(text.toLower().capacity(), text.length() + 1) << "reserved, not grown";
}

TEST(TStringCoreCase, MapsUnicode) {
  EXPECT_EQ(UnitsOf(TStringCore(u"\u00C4\u0160").toLower()), u"\u00E4\u0161");
  EXPECT_EQ(UnitsOf(TStringCore(u"\u00E4\u0161").toUpper()), u"\u00C4\u0160");
  EXPECT_EQ(UnitsOf(TStringCore(u"\U00010400").toLower()), u"\U00010428");
  EXPECT_EQ(UnitsOf(TStringCore(u"stra\u00DFe").toUpper()), u"STRASSE");
  EXPECT_EQ(UnitsOf(TStringCore(u"\xD800").toLower()), u"\xD800");
}

TEST(TStringCoreCase, ResultsThatGrowPastTheFirstRoom) {
  TStringCore text(u'\u0390', 40);
  std::u16string upper;
  for (int i = 0; i < 40; ++i) upper += u"\u0399\u0308\u0301";
  EXPECT_EQ(UnitsOf(text.toUpper()), upper);
}

TEST(TStringCoreCase, FollowsTheDefaultLocaleForAsciiToo) {
  for (const char* name : {"tr", "tr_TR", "az"}) {
    const qilsys::test::DefaultLocale locale(name);
    EXPECT_EQ(UnitsOf(TStringCore(u"TITLE").toLower()), u"t\u0131tle");
    EXPECT_EQ(UnitsOf(TStringCore(u"title").toUpper()), u"T\u0130TLE");
  }
  const qilsys::test::DefaultLocale locale("en_US");
  EXPECT_EQ(UnitsOf(TStringCore(u"TITLE").toLower()), u"title");
}

}  // namespace
