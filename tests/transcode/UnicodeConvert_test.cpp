// The conversions and measures of Unicode.h on chosen texts; UnicodeBulk_test.cpp compares them with ICU.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "qilsys/Unicode.h"
#include "support/TextForms.h"

namespace {

using qilsys::test::As;
using qilsys::test::ForEachUnitType;
using qilsys::test::Foreign;
using qilsys::test::RowName;

/// The result of a conversion with exactly the room that it needs, and its terminator.
template <class T, class Convert>
std::basic_string<T> Exact(size_t length, Convert convert) {
  std::vector<T> target(length + 1, static_cast<T>(0x55));
  EXPECT_EQ(convert(target.data(), static_cast<int>(target.size())), static_cast<int>(length));
  EXPECT_EQ(target.back(), T{});
  return std::basic_string<T>(target.data(), length);
}

int Size(const auto& text) { return static_cast<int>(text.size()); }

// ---- Well-formed text is the same in all directions

struct TextRow {
  const char* name;
  std::string utf8;
  std::u16string utf16;
  std::u32string utf32;
};

class UnicodeText : public testing::TestWithParam<TextRow> {};

TEST_P(UnicodeText, FromUtf8) {
  const TextRow& row = GetParam();
  const auto wanted = As<TCodeUnit>(row.utf16);
  EXPECT_EQ(Exact<TCodeUnit>(
                wanted.size(),
                [&](TCodeUnit* t, int c) { return Unicode::Utf8ToUtf16(row.utf8.data(), Size(row.utf8), t, c); }),
            wanted);
  EXPECT_EQ(
      Exact<char32_t>(row.utf32.size(),
                      [&](char32_t* t, int c) { return Unicode::Utf8ToUtf32(row.utf8.data(), Size(row.utf8), t, c); }),
      row.utf32);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf16(row.utf8.data(), Size(row.utf8)), Size(wanted));
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf32(row.utf8.data(), Size(row.utf8)), Size(row.utf32));
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8(row.utf8.data(), Size(row.utf8)), Size(row.utf8));
  EXPECT_EQ(Unicode::Utf8ToUtf16(row.utf8.data(), Size(row.utf8), nullptr, 0), Size(wanted));
  EXPECT_EQ(Unicode::Utf8ToUtf32(row.utf8.data(), Size(row.utf8), nullptr, 0), Size(row.utf32));
}

TEST_P(UnicodeText, FromUtf8ToWide) {
  const TextRow& row = GetParam();
  const auto wanted = Foreign(row.utf32, row.utf16);
  EXPECT_EQ(Exact<TForeignUnit>(
                wanted.size(),
                [&](TForeignUnit* t, int c) { return Unicode::Utf8ToUtf16(row.utf8.data(), Size(row.utf8), t, c); }),
            wanted);
  EXPECT_EQ(Unicode::Utf8ToUtf16(row.utf8.data(), Size(row.utf8), static_cast<TForeignUnit*>(nullptr), 0),
            Size(wanted));
  EXPECT_EQ(Exact<TForeignUnit>(
                wanted.size(),
                [&](TForeignUnit* t, int c) { return Unicode::Utf32ToUtf16(row.utf32.data(), Size(row.utf32), t, c); }),
            wanted);
  EXPECT_EQ(Unicode::Utf32ToUtf16(row.utf32.data(), Size(row.utf32), static_cast<TForeignUnit*>(nullptr), 0),
            Size(wanted));
}

TEST_P(UnicodeText, FromUtf16) {
  const TextRow& row = GetParam();
  ForEachUnitType([&](auto zero) {
    const auto source = As<decltype(zero)>(row.utf16);
    EXPECT_EQ(Exact<char>(row.utf8.size(),
                          [&](char* t, int c) { return Unicode::Utf16ToUtf8(source.data(), Size(source), t, c); }),
              row.utf8);
    EXPECT_EQ(
        Exact<char32_t>(row.utf32.size(),
                        [&](char32_t* t, int c) { return Unicode::Utf16ToUtf32(source.data(), Size(source), t, c); }),
        row.utf32);
    EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(source.data(), Size(source)), Size(row.utf8));
    EXPECT_EQ(Unicode::MeasureUtf16ToUtf32(source.data(), Size(source)), Size(row.utf32));
    if (source.empty()) return;
    EXPECT_EQ(Unicode::Utf16ToUtf8(source.data(), Size(source), nullptr, 0), Size(row.utf8));
    EXPECT_EQ(Unicode::Utf16ToUtf32(source.data(), Size(source), nullptr, 0), Size(row.utf32));
  });
}

TEST_P(UnicodeText, FromWide) {
  const TextRow& row = GetParam();
  const auto source = Foreign(row.utf32, row.utf16);
  EXPECT_EQ(Exact<char>(row.utf8.size(),
                        [&](char* t, int c) { return Unicode::Utf16ToUtf8(source.data(), Size(source), t, c); }),
            row.utf8);
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf32(source.data(), Size(source)), Size(row.utf32));
}

TEST_P(UnicodeText, FromUtf32) {
  const TextRow& row = GetParam();
  const auto wanted = As<TCodeUnit>(row.utf16);
  EXPECT_EQ(Exact<TCodeUnit>(
                wanted.size(),
                [&](TCodeUnit* t, int c) { return Unicode::Utf32ToUtf16(row.utf32.data(), Size(row.utf32), t, c); }),
            wanted);
  EXPECT_EQ(Unicode::MeasureUtf32ToUtf16(row.utf32.data(), Size(row.utf32)), Size(wanted));
  EXPECT_EQ(Unicode::MeasureUtf32ToUtf8(row.utf32.data(), Size(row.utf32)), Size(row.utf8));
  EXPECT_EQ(Unicode::Utf32ToUtf16(row.utf32.data(), Size(row.utf32), nullptr, 0), Size(wanted));
  EXPECT_EQ(Unicode::Utf32ToUtf8(row.utf32.data(), Size(row.utf32), nullptr, 0), Size(row.utf8));
}

TEST_P(UnicodeText, FromUtf32ToUtf8) {
  const TextRow& row = GetParam();
  EXPECT_EQ(Exact<char>(row.utf8.size(),
                        [&](char* t, int c) { return Unicode::Utf32ToUtf8(row.utf32.data(), Size(row.utf32), t, c); }),
            row.utf8);
}

TEST_P(UnicodeText, WithoutLengthUpToTheNul) {
  const TextRow& row = GetParam();
  if (row.utf32.find(U'\0') != std::u32string::npos) return;
  TCodeUnit units[256];
  char bytes[256];
  char32_t points[256];
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8(row.utf8.c_str()), Size(row.utf8));
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf16(row.utf8.c_str()), Size(row.utf16));
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf32(row.utf8.c_str()), Size(row.utf32));
  EXPECT_EQ(Unicode::MeasureUtf32ToUtf8(row.utf32.c_str()), Size(row.utf8));
  EXPECT_EQ(Unicode::MeasureUtf32ToUtf16(row.utf32.c_str()), Size(row.utf16));
  EXPECT_EQ(Unicode::Utf8ToUtf16(row.utf8.c_str(), units, 256), Size(row.utf16));
  EXPECT_EQ(Unicode::Utf8ToUtf32(row.utf8.c_str(), points, 256), Size(row.utf32));
  EXPECT_EQ(Unicode::Utf32ToUtf16(row.utf32.c_str(), units, 256), Size(row.utf16));
  EXPECT_EQ(Unicode::Utf32ToUtf8(row.utf32.c_str(), bytes, 256), Size(row.utf8));
  ForEachUnitType([&](auto zero) {
    const auto source = As<decltype(zero)>(row.utf16);
    EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(source.c_str()), Size(row.utf8));
    EXPECT_EQ(Unicode::MeasureUtf16ToUtf32(source.c_str()), Size(row.utf32));
    EXPECT_EQ(Unicode::Utf16ToUtf8(source.c_str(), bytes, 256), Size(row.utf8));
    EXPECT_EQ(Unicode::Utf16ToUtf32(source.c_str(), points, 256), Size(row.utf32));
  });
}

std::string Bytes(std::u8string_view text) { return std::string(text.begin(), text.end()); }

template <class T>
std::basic_string<T> Repeated(const std::basic_string<T>& text, int times) {
  std::basic_string<T> result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

INSTANTIATE_TEST_SUITE_P(Rows, UnicodeText,
                         testing::Values(TextRow{"Empty", "", u"", U""}, TextRow{"One", "a", u"a", U"a"},
                                         TextRow{"InlineLimit", "abcdefghijklmn", u"abcdefghijklmn", U"abcdefghijklmn"},
                                         TextRow{"EmbeddedNul", std::string("a\0b", 3), std::u16string(u"a\0b", 3),
                                                 std::u32string(U"a\0b", 3)},
                                         TextRow{"TwoBytes", Bytes(u8"\u0080\u07FF"), u"\u0080\u07FF", U"\u0080\u07FF"},
                                         TextRow{"ThreeBytes", Bytes(u8"\u0800\uD7FF\uE000\uFFFD\uFFFF"),
                                                 u"\u0800\uD7FF\uE000\uFFFD\uFFFF", U"\u0800\uD7FF\uE000\uFFFD\uFFFF"},
                                         TextRow{"FourBytes", Bytes(u8"\U00010000\U0010FFFF"), u"\U00010000\U0010FFFF",
                                                 U"\U00010000\U0010FFFF"},
                                         TextRow{"Mixed", Bytes(u8"a\u00E9\u20AC\U0001F600z"),
                                                 u"a\u00E9\u20AC\U0001F600z", U"a\u00E9\u20AC\U0001F600z"},
                                         TextRow{"LongMixed", Repeated(Bytes(u8"a\u00E9\u20AC\U0001F600z"), 20),
                                                 Repeated(std::u16string(u"a\u00E9\u20AC\U0001F600z"), 20),
                                                 Repeated(std::u32string(U"a\u00E9\u20AC\U0001F600z"), 20)}),
                         RowName<TextRow>);

// ---- Ill-formed text

TEST(UnicodeIllFormed, LoneSurrogatesBecomeTheReplacement) {
  ForEachUnitType([](auto zero) {
    using U = decltype(zero);
    const auto source = As<U>(std::u16string{u'a', 0xD800, u'b', 0xDC00, 0xD800});
    char bytes[32];
    EXPECT_EQ(Unicode::Utf16ToUtf8(source.data(), Size(source), bytes, 32), 11);
    EXPECT_EQ(std::string(bytes),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(source.data(), Size(source)), 11);
    char32_t points[8];
    EXPECT_EQ(Unicode::Utf16ToUtf32(source.data(), Size(source), points, 8), 5);
    EXPECT_EQ(std::u32string(points), U"a\uFFFDb\uFFFD\uFFFD");
  });
}

TEST(UnicodeIllFormed, WideSurrogateElementsInARowAreAPair) {
  ForEachUnitType([](auto zero) {
    using U = decltype(zero);
    const auto source = As<U>(std::u16string{0xD83D, 0xDE00});
    char bytes[8];
    EXPECT_EQ(Unicode::Utf16ToUtf8(source.data(), 2, bytes, 8), 4);
    EXPECT_EQ(std::string(bytes), "\xF0\x9F\x98\x80");
    EXPECT_EQ(Unicode::MeasureUtf16ToUtf32(source.data(), 2), 1);
  });
}

TEST(UnicodeIllFormed, WideElementsAboveTheLastCodePoint) {
  // Where an element is a unit there are none, and those that stand for them go through.
  const auto source = Foreign(std::u32string{0x110000, 0xFFFFFFFF}, std::u16string{0xFFFD, 0xFFFD});
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(source.c_str(), 2), 6);
  char bytes[8];
  EXPECT_EQ(Unicode::Utf16ToUtf8(source.c_str(), bytes, 8), 6);
  EXPECT_EQ(std::string(bytes), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(UnicodeIllFormed, Utf8ToUtf16SubstitutesTheLongestPartThatCouldBeValid) {
  TCodeUnit units[16];
  EXPECT_EQ(Unicode::Utf8ToUtf16("\xE2\x82"
                                 "A\xF0\x9F\x98\xC0\x80\xED\xA0\x80",
                                 11, units, 16),
            8);
  EXPECT_EQ(std::basic_string<TCodeUnit>(units), As<TCodeUnit>(u"\uFFFDA\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"));
}

// Its own loops keep what ICU rejects.
TEST(UnicodeIllFormed, Utf8ToUtf32KeepsOverlongFormsSurrogatesAndLargeValues) {
  char32_t points[8];
  EXPECT_EQ(Unicode::Utf8ToUtf32("\xC0\x80\xE0\x80\xAF\xED\xA0\x80\xF4\x90\x80\x80\xF7\xBF\xBF\xBF", 16, points, 8), 5);
  const char32_t wanted[] = {0, U'/', 0xD800, 0x110000, 0x1FFFFF, 0};
  EXPECT_EQ(std::u32string(points, 6), std::u32string(wanted, 6));
}

TEST(UnicodeIllFormed, Utf8ToUtf32BrokenAndCutSequences) {
  char32_t points[8];
  EXPECT_EQ(Unicode::Utf8ToUtf32("\xE0"
                                 "Abc",
                                 4, points, 8),
            4);
  EXPECT_EQ(std::u32string(points), U"\uFFFDAbc");
  EXPECT_EQ(Unicode::Utf8ToUtf32("\x80\xFFz", 3, points, 8), 3);
  EXPECT_EQ(std::u32string(points), U"\uFFFD\uFFFDz");
  // A promise that runs past the end ends the source, whatever stands between.
  EXPECT_EQ(Unicode::Utf8ToUtf32("x\xF0"
                                 "Ab",
                                 4, points, 8),
            2);
  EXPECT_EQ(std::u32string(points), U"x\uFFFD");
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf32("x\xF0"
                                        "Ab",
                                        4),
            2);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf16("x\xF0"
                                        "Ab",
                                        4),
            2);
}

TEST(UnicodeIllFormed, MeasureUtf8CountsWhatQualifies) {
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf16("\xF0\x9F\x98"
                                        "abcd",
                                        7),
            5);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf16("\xF7\xBF\xBF\xBF", 4), 2);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf32("\xF7\xBF\xBF\xBF", 4), 1);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf16("\x80\x80", 2), 2);
}

TEST(UnicodeIllFormed, MeasureUtf8ToUtf8CountsThreeForWhatIsBroken) {
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8("\x80", 1), 3);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8("\xE2\x82", 2), 3);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8("\xE2\x82"
                                       "A",
                                       3),
            4);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8("\xF7\xBF\xBF\xBF", 4), 4);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8("\xC0\x80", 2), 2);
}

TEST(UnicodeIllFormed, Utf32ToUtf8) {
  const char32_t source[] = {0xD800, 0x110000, 0xFFFFFFFF, U'a', 0};
  char bytes[16];
  EXPECT_EQ(Unicode::Utf32ToUtf8(source, bytes, 16), 10);
  EXPECT_EQ(std::string(bytes),
            "\xED\xA0\x80\xEF\xBF\xBD\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(Unicode::MeasureUtf32ToUtf8(source), 10);
}

TEST(UnicodeIllFormed, Utf32ToUtf16) {
  const char32_t source[] = {0xD800, 0x110000, U'a', 0};
  TCodeUnit units[8];
  EXPECT_EQ(Unicode::Utf32ToUtf16(source, units, 8), 3);
  EXPECT_EQ(std::basic_string<TCodeUnit>(units), As<TCodeUnit>(u"\uFFFD\uFFFDa"));
  EXPECT_EQ(Unicode::MeasureUtf32ToUtf16(source), 3);
}

TEST(UnicodeRoom, Utf32ToUtf8KeepsAByteForTheTerminator) {
  char bytes[] = "UUUUUU";
  EXPECT_EQ(Unicode::Utf32ToUtf8(U"abc", 3, bytes, 4), 3);
  EXPECT_EQ(std::string(bytes, 6), std::string("abc\0UU", 6));
}

TEST(UnicodeRoom, Utf8ToUtf32KeepsAnElementForTheTerminator) {
  char32_t points[] = U"UUUUUU";
  EXPECT_EQ(Unicode::Utf8ToUtf32("abc", 3, points, 4), 3);
  EXPECT_EQ(std::u32string(points, 6), std::u32string(U"abc\0UU", 6));
}

}  // namespace
