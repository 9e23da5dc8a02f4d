#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/Random.h"
#include "support/StringText.h"
#include "support/TextForms.h"

namespace {

using qilsys::test::As;
using qilsys::test::Rounds;
using qilsys::test::SeededRandom;
using qilsys::test::UnitsOf;

TStringCore FromUnits(std::u16string_view units) {
  return TStringCore(As<TCodeUnit>(units).data(), static_cast<int>(units.size()));
}

// ---- In

TEST(FromUtf32, NullAndZeroAreEmpty) {
  EXPECT_EQ(TStringCore::fromUtf32(nullptr, 3).length(), 0);
  EXPECT_EQ(TStringCore::fromUtf32(nullptr).length(), 0);
  EXPECT_EQ(TStringCore::fromUtf32(U"abc", 0).length(), 0);
}

TEST(FromUtf32, ConvertsUpToTheLengthOrTheNul) {
  EXPECT_EQ(UnitsOf(TStringCore::fromUtf32(U"a\u00E9\U0001F600z")), u"a\u00E9\U0001F600z");
  EXPECT_EQ(UnitsOf(TStringCore::fromUtf32(U"abc", 2)), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore::fromUtf32(U"a\0b", 3)), std::u16string(u"a\0b", 3));
  const std::u32string full(14, 0x1F600);
  EXPECT_EQ(TStringCore::fromUtf32(full.data(), 14).length(), 28);
}

// The work string is made for two units each, and is what comes back.
TEST(FromUtf32, KeepsTheWorkStringsCapacity) {
  EXPECT_EQ(TStringCore::fromUtf32(U"abcdefg").capacity(), 15);
  EXPECT_EQ(TStringCore::fromUtf32(U"abcdefgh").capacity(), 18);
}

TEST(FromLatin1, WidensEveryByteAtEveryLength) {
  std::string bytes;
  for (int i = 0; i < 300; ++i) bytes += static_cast<char>(i);
  for (int length = 0; length <= 300; ++length) {
    const TStringCore text = TStringCore::fromLatin1(bytes.data(), length);
    ASSERT_EQ(text.length(), length);
    for (int i = 0; i < length; ++i) ASSERT_EQ(text.at(i), i & 0xFF);
    ASSERT_EQ(text.at(length), 0);
  }
}

TEST(FromLatin1, NullZeroAndNegativeLength) {
  EXPECT_EQ(TStringCore::fromLatin1(nullptr, 3).length(), 0);
  EXPECT_EQ(TStringCore::fromLatin1(nullptr).length(), 0);
  EXPECT_EQ(TStringCore::fromLatin1("abc", 0).length(), 0);
  EXPECT_EQ(UnitsOf(TStringCore::fromLatin1("ab\xE9")), u"ab\u00E9");
  EXPECT_EQ(UnitsOf(TStringCore::fromLatin1("a\0b", 3)), std::u16string(u"a\0b", 3));
}

TEST(FromLatin9, MapsItsEightBytes) {
  EXPECT_EQ(UnitsOf(TStringCore::fromLatin9("\xA4\xA6\xA8\xB4\xB8\xBC\xBD\xBE")),
            u"\u20AC\u0160\u0161\u017D\u017E\u0152\u0153\u0178");
}

TEST(FromLatin9, LeavesEveryOtherByte) {
  const std::string mapped = "\xA4\xA6\xA8\xB4\xB8\xBC\xBD\xBE";
  for (int value = 1; value <= 0xFF; ++value) {
    const char byte = static_cast<char>(value);
    if (mapped.find(byte) == std::string::npos) {
      EXPECT_EQ(TStringCore::fromLatin9(&byte, 1).at(0), value);
    }
  }
}

TEST(FromLatin9, StopsAtTheFirstNulWhateverTheLength) {
  EXPECT_EQ(UnitsOf(TStringCore::fromLatin9("a\xA4\0b", 4)), u"a\u20AC");
  EXPECT_EQ(UnitsOf(TStringCore::fromLatin9("\0b", 2)), u"");
  EXPECT_EQ(UnitsOf(TStringCore::fromLatin9("abc", 2)), u"ab");
  EXPECT_EQ(TStringCore::fromLatin9(nullptr, 3).length(), 0);
  EXPECT_EQ(TStringCore::fromLatin9("abc", 0).length(), 0);
}

// The default converter is the system's choice, so the bytes that stand for one text depend on it.
struct LocalText {
  const char* converter;
  std::u16string units;
  std::string bytes;
};

const LocalText Local[] = {
    {"UTF-8", u"a\u00E9\U0001F600z", "a\xC3\xA9\xF0\x9F\x98\x80z"},
    {"ibm-5348_P100-1997", u"a\u00E9\u20ACz", "a\xE9\x80z"},  // What Windows calls code page 1252.
    {"windows-932", u"a\u3042\uFF71z", "a\x82\xA0\xB1z"},
};

const LocalText* FindLocalText() {
  const std::string converter = ucnv_getDefaultName();
  const auto* row = std::ranges::find_if(Local, [&](const LocalText& text) { return text.converter == converter; });
  return row == std::end(Local) ? nullptr : row;
}

TEST(FromLocal8Bit, DecodesByTheDefaultConverter) {
  const LocalText* local = FindLocalText();
  if (!local) GTEST_SKIP() << "no text is known for the default converter, " << ucnv_getDefaultName();
  EXPECT_EQ(UnitsOf(TStringCore::fromLocal8Bit(local->bytes.c_str())), local->units);
  EXPECT_EQ(UnitsOf(TStringCore::fromLocal8Bit("abc", 2)), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore::fromLocal8Bit("a\0b", 3)), std::u16string(u"a\0b", 3));
  EXPECT_EQ(TStringCore::fromLocal8Bit(nullptr, 3).length(), 0);
  EXPECT_EQ(TStringCore::fromLocal8Bit("abc", 0).length(), 0);
  std::u16string units;
  std::string bytes;
  for (int i = 0; i < 20; ++i) {
    units += local->units;
    bytes += local->bytes;
  }
  EXPECT_EQ(UnitsOf(TStringCore::fromLocal8Bit(bytes.c_str())), units);
}

TEST(FromLocal8Bit, AFinalSubstituteControlIsDropped) {
  EXPECT_EQ(UnitsOf(TStringCore::fromLocal8Bit("ab\x1A")), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore::fromLocal8Bit("a\x1A"
                                               "b")),
            u"a\x1A"
            u"b");
}

// ---- Out

TEST(ToStandardString, EachForm) {
  const TStringCore text = FromUnits(u"a\u00E9\U0001F600");
  EXPECT_EQ(text.toStdString(), "a\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(text.toStdU16String(), u"a\u00E9\U0001F600");
  EXPECT_EQ(text.toStdUString(), L"a\u00E9\U0001F600");
  EXPECT_EQ(text.toStdWString(), L"a\u00E9\U0001F600");
}

TEST(ToStandardString, TextThatBeginsWithNulIsEmpty) {
  const TStringCore text = FromUnits(std::u16string(u"\0bc", 3));
  EXPECT_EQ(text.toStdString(), "");
  EXPECT_EQ(text.toStdU16String(), u"");
  EXPECT_EQ(text.toStdUString(), L"");
  EXPECT_EQ(text.toStdWString(), L"");
  EXPECT_EQ(FromUnits(std::u16string(u"b\0c", 3)).toStdString(), std::string("b\0c", 3));
}

TEST(ToStandardString, LoneSurrogates) {
  const TStringCore text = FromUnits(std::u16string{u'a', 0xDC00});
  EXPECT_EQ(text.toStdString(), "a\xEF\xBF\xBD");
  EXPECT_EQ(text.toStdU16String(), (std::u16string{u'a', 0xDC00}));
  EXPECT_EQ(text.toStdWString(), (std::wstring{L'a', static_cast<wchar_t>(0xDC00)}));
}

TEST(ToStandardString, RoundTripsOfRandomText) {
  SeededRandom random;
  for (int round = Rounds(2000); round > 0; --round) {
    std::u32string points;
    for (int length = random.Between(0, 90); length > 0; --length)
      points += static_cast<char32_t>(random.OneIn(2) ? random.Between(1, 0xD7FF) : random.Between(0xE000, 0x10FFFF));
    const TStringCore text = TStringCore::fromUtf32(points.data(), static_cast<int>(points.size()));
    ASSERT_EQ(UnitsOf(TStringCore::fromStdString(text.toStdString())), UnitsOf(text));
    ASSERT_EQ(UnitsOf(TStringCore::fromStdWString(text.toStdWString())), UnitsOf(text));
    ASSERT_EQ(UnitsOf(TStringCore::fromStdU16String(text.toStdU16String())), UnitsOf(text));
  }
}

TEST(ToLatin1, SubstitutesAndTells) {
  bool lossy = true;
  EXPECT_EQ(FromUnits(u"a\u00FF").toLatin1(&lossy), "a\xFF");
  EXPECT_FALSE(lossy);
  EXPECT_EQ(FromUnits(u"\u0100").toLatin1(&lossy), "?");
  EXPECT_TRUE(lossy);
  EXPECT_EQ(FromUnits(u"").toLatin1(&lossy), "");
  EXPECT_FALSE(lossy);
  EXPECT_EQ(FromUnits(u"\U0001F600").toLatin1(), "??");
  EXPECT_EQ(FromUnits(std::u16string(u"a\0\u0100", 3)).toLatin1(), std::string("a\0?", 3));
}

TEST(ToLatin9, NeverLooksTheTableUp) {
  bool lossy = false;
  EXPECT_EQ(FromUnits(u"\u20AC").toLatin9(&lossy), "?");
  EXPECT_TRUE(lossy);
  EXPECT_EQ(FromUnits(u"\u00A4\u00BE").toLatin9(&lossy), "\xA4\xBE");
  EXPECT_FALSE(lossy);
  EXPECT_EQ(FromUnits(u"").toLatin9(&lossy), "");
  EXPECT_FALSE(lossy);
}

TEST(ToLatin9, ALossyResultIsCutAtItsFirstNul) {
  EXPECT_EQ(FromUnits(u"a\U0001F600b").toLatin9(), "a?b");
  EXPECT_EQ(FromUnits(std::u16string(u"a\0b", 3)).toLatin9(), std::string("a\0b", 3));
  bool lossy = false;
  EXPECT_EQ(FromUnits(std::u16string(u"a\0\u0100", 3)).toLatin9(&lossy), "a");
  EXPECT_TRUE(lossy);
  EXPECT_EQ(FromUnits(std::u16string{u'a', 0xD800, u'b', 0xDC00}).toLatin9(), "a?b?");
}

TEST(ToLocal8Bit, GoesThroughTheDefaultConverter) {
  const LocalText* local = FindLocalText();
  if (!local) GTEST_SKIP() << "no text is known for the default converter, " << ucnv_getDefaultName();
  bool lossy = true;
  EXPECT_EQ(FromUnits(local->units).toLocal8Bit(&lossy), local->bytes);
  EXPECT_FALSE(lossy);
  lossy = true;
  EXPECT_EQ(FromUnits(u"").toLocal8Bit(&lossy), "");
  EXPECT_FALSE(lossy);
  EXPECT_EQ(FromUnits(std::u16string(u"a\0b", 3)).toLocal8Bit(), "a");
  std::u16string units;
  std::string bytes;
  for (int i = 0; i < 200; ++i) {
    units += local->units;
    bytes += local->bytes;
  }
  EXPECT_EQ(FromUnits(units).toLocal8Bit(), bytes);
}

// ---- To an array

template <qilsys::TextUnit U>
void FillsAnArray() {
  const TStringCore text = FromUnits(u"abc");
  U target[6];
  std::fill(std::begin(target), std::end(target), U{'x'});
  EXPECT_EQ(text.toWCharArray(target, 4), 3);
  EXPECT_EQ(std::basic_string<U>(target), As<U>(u"abc"));
  EXPECT_EQ(target[4], U{'x'});
  EXPECT_EQ(text.toWCharArray(target, 3), -1);
  EXPECT_EQ(target[0], U{});
  target[0] = U{'x'};
  EXPECT_EQ(text.toWCharArray(target, 0), -1);
  EXPECT_EQ(text.toWCharArray(target, -5), -1);
  EXPECT_EQ(target[0], U{'x'});
  EXPECT_EQ(text.toWCharArray(static_cast<U*>(nullptr), 9), -1);
  EXPECT_EQ(TStringCore().toWCharArray(target, 1), 0);
  EXPECT_EQ(FromUnits(std::u16string{0xD800}).toWCharArray(target, 2), 1);
  EXPECT_EQ(target[0], U{0xFFFD});
}

TEST(ToWCharArray, EveryForm) {
  FillsAnArray<TCodeUnit>();
  FillsAnArray<TForeignUnit>();
  EXPECT_EQ(FromUnits(u"abc").toWCharArray(nullptr, 9), -1);
}

TEST(ToWCharArray, CountsTheElementsOfWideText) {
  wchar_t target[8];
  EXPECT_EQ(FromUnits(u"\U0001F600z").toWCharArray(target, 4), sizeof(wchar_t) > 2 ? 2 : 3);
  EXPECT_EQ(std::wstring(target), L"\U0001F600z");
}

TEST(ToWCharVector, HoldsTheTextAndANul) {
  const std::vector<wchar_t> text = FromUnits(u"abc").toWCharVector();
  EXPECT_EQ(text, (std::vector<wchar_t>{L'a', L'b', L'c', L'\0'}));
  EXPECT_EQ(TStringCore().toWCharVector(), (std::vector<wchar_t>{L'\0'}));
  EXPECT_EQ(FromUnits(u"\U0001F600").toWCharVector().size(), 3U);
}

}  // namespace
