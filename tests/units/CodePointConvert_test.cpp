// The converters of one code point in CodePoint.h.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qilsys/CodePoint.h"
#include "support/TextForms.h"

namespace {

using qilsys::test::As;
using qilsys::test::ForEachUnitType;
using qilsys::test::Foreign;
using qilsys::test::ForeignHoldsCodePoints;
using qilsys::test::RowName;

constexpr int Start = 2;  // Where the tests begin to write, to tell positions from counts.

/// Elements that one conversion wrote from Start on, and what it returned.
template <class T>
struct Written {
  std::basic_string<T> elements;
  int consumed;
  bool operator==(const Written&) const = default;
};

/// Runs a converter into a marked buffer; checks that nothing beyond the new position was touched.
template <class T, class Source, class Convert>
Written<T> RunInto(const Source* source, int capacity, Convert convert) {
  constexpr auto Mark = static_cast<T>(0x55);
  std::vector<T> target(16, Mark);
  int position = Start;
  const int consumed = convert(source, target.data(), position, capacity);
  for (size_t i = static_cast<size_t>(position); i < target.size(); ++i) EXPECT_EQ(target[i], Mark) << i;
  return {std::basic_string<T>(target.data() + Start, target.data() + position), consumed};
}

/// Code points are written without a look at the capacity.
int RoomForElements(const std::basic_string<TForeignUnit>& text) {
  return ForeignHoldsCodePoints ? 0 : Start + static_cast<int>(text.size());
}

std::string Bytes(std::u8string_view text) { return std::string(text.begin(), text.end()); }
const std::string Substitute = "\xEF\xBF\xBD";

struct FromUtf16Row {
  const char* name;
  std::u16string source;
  std::u16string utf16;
  char32_t utf32;
  std::string utf8;
  int consumed;
  int roomInUtf8;  // The capacity from Start that is just enough; 0 where none is asked for.
};

class CodePointFromUtf16 : public testing::TestWithParam<FromUtf16Row> {};

TEST_P(CodePointFromUtf16, ToUtf16) {
  const FromUtf16Row& row = GetParam();
  const int room = Start + static_cast<int>(row.utf16.size());
  ForEachUnitType([&](auto zero) {
    using U = decltype(zero);
    const auto source = As<U>(row.source);
    const Written<TCodeUnit> wanted{As<TCodeUnit>(row.utf16), row.consumed};
    const auto run = [&](auto convert) { return RunInto<TCodeUnit>(source.c_str(), room, convert); };
    EXPECT_EQ(run([](const U* s, TCodeUnit* t, int& p, int c) { return CodePoint::Utf16ToUtf16(s, t, p, c); }), wanted);
    EXPECT_EQ(run([](const U* s, TCodeUnit* t, int& p, int c) { return CodePoint::CopyCodePoint(s, t, p, c); }),
              wanted);
    EXPECT_EQ(run([](const U* s, TCodeUnit* t, int& p, int c) { return CodePoint::TCodeUnitToUtf16(s, t, p, c); }),
              wanted);
    EXPECT_EQ(run([](const U* s, TCodeUnit* t, int& p, int c) { return CodePoint::Utf16ToTCodeUnit(s, t, p, c); }),
              wanted);
  });
}

TEST_P(CodePointFromUtf16, ToWideElements) {
  const auto text = Foreign(std::u32string_view(&GetParam().utf32, 1), GetParam().utf16);
  const Written<TForeignUnit> wanted{text, GetParam().consumed};
  ForEachUnitType([&](auto zero) {
    using U = decltype(zero);
    const auto source = As<U>(GetParam().source);
    EXPECT_EQ(RunInto<TForeignUnit>(
                  source.c_str(), RoomForElements(text),
                  [](const U* s, TForeignUnit* t, int& p, int c) { return CodePoint::Utf16ToUtf16(s, t, p, c); }),
              wanted);
  });
}

TEST_P(CodePointFromUtf16, ToUtf32WithoutALookAtCapacity) {
  ForEachUnitType([](auto zero) {
    using U = decltype(zero);
    const auto source = As<U>(GetParam().source);
    const Written<char32_t> wanted{{GetParam().utf32}, GetParam().consumed};
    const auto run = [&](auto convert) { return RunInto<char32_t>(source.c_str(), 0, convert); };
    EXPECT_EQ(run([](const U* s, char32_t* t, int& p, int c) { return CodePoint::Utf16ToUtf32(s, t, p, c); }), wanted);
    EXPECT_EQ(run([](const U* s, char32_t* t, int& p, int c) { return CodePoint::TCodeUnitToUtf32(s, t, p, c); }),
              wanted);
  });
}

TEST_P(CodePointFromUtf16, ToUtf8AndOneByteShort) {
  const FromUtf16Row& row = GetParam();
  ForEachUnitType([&](auto zero) {
    using U = decltype(zero);
    const auto source = As<U>(row.source);
    const auto convert = [](const U* s, char* t, int& p, int c) { return CodePoint::Utf16ToUtf8(s, t, p, c); };
    EXPECT_EQ(RunInto<char>(source.c_str(), row.roomInUtf8 == 0 ? 0 : Start + row.roomInUtf8, convert),
              (Written<char>{row.utf8, row.consumed}));
    if (row.roomInUtf8 != 0) {
      EXPECT_EQ(RunInto<char>(source.c_str(), Start + row.roomInUtf8 - 1, convert), (Written<char>{"", 0}));
    }
  });
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CodePointFromUtf16,
    testing::Values(FromUtf16Row{"Nul", u"", {u'\0'}, 0, {'\0'}, 1, 0},
                    FromUtf16Row{"Ascii", u"a", u"a", U'a', "a", 1, 0},
                    FromUtf16Row{"LastOfOneByte", u"\x7F", u"\x7F", 0x7F, "\x7F", 1, 0},
                    FromUtf16Row{"FirstOfTwoBytes", u"\x80", u"\x80", 0x80, Bytes(u8"\u0080"), 1, 2},
                    FromUtf16Row{"LastOfTwoBytes", u"\u07FF", u"\u07FF", 0x7FF, Bytes(u8"\u07FF"), 1, 2},
                    FromUtf16Row{"FirstOfThreeBytes", u"\u0800", u"\u0800", 0x800, Bytes(u8"\u0800"), 1, 3},
                    FromUtf16Row{"ReplacementItself", u"\uFFFD", u"\uFFFD", 0xFFFD, Substitute, 1, 3},
                    FromUtf16Row{"LastOfThreeBytes", u"\uFFFF", u"\uFFFF", 0xFFFF, Bytes(u8"\uFFFF"), 1, 3},
                    FromUtf16Row{"FirstPair", {0xD800, 0xDC00}, {0xD800, 0xDC00}, 0x10000, Bytes(u8"\U00010000"), 2, 4},
                    FromUtf16Row{"LastPair", {0xDBFF, 0xDFFF}, {0xDBFF, 0xDFFF}, 0x10FFFF, Bytes(u8"\U0010FFFF"), 2, 4},
                    FromUtf16Row{"LoneHigh", {0xD800, u'x'}, u"\uFFFD", 0xFFFD, Substitute, 1, 4},
                    FromUtf16Row{"LoneLow", {0xDC00, u'x'}, u"\uFFFD", 0xFFFD, Substitute, 1, 4},
                    FromUtf16Row{"HighThenHigh", {0xD800, 0xD800}, u"\uFFFD", 0xFFFD, Substitute, 1, 4}),
    RowName<FromUtf16Row>);

TEST(CodePointConvert, APairNeedsRoomForTwoUnits) {
  const std::u16string pair{0xD83D, 0xDE00};
  const auto convert = [](const TCodeUnit* s, TCodeUnit* t, int& p, int c) {
    return CodePoint::Utf16ToUtf16(s, t, p, c);
  };
  EXPECT_EQ(RunInto<TCodeUnit>(As<TCodeUnit>(pair).c_str(), Start + 1, convert), (Written<TCodeUnit>{{}, 0}));
  EXPECT_EQ(RunInto<TCodeUnit>(As<TCodeUnit>(pair).c_str(), Start + 2, convert).consumed, 2);
}

TEST(CodePointConvert, ASubstituteIsNotWrittenBeyondCapacity) {
  const auto lone = As<TCodeUnit>(std::u16string{0xD800});
  const auto convert = [](const TCodeUnit* s, char* t, int& p, int c) { return CodePoint::Utf16ToUtf8(s, t, p, c); };
  for (const int capacity : {-1, 0, Start, Start + 1, Start + 3})
    EXPECT_EQ(RunInto<char>(lone.c_str(), capacity, convert), (Written<char>{"", 0})) << capacity;
}

// ---- From UTF-32

struct FromUtf32Row {
  const char* name;
  char32_t source;
  std::u16string utf16;
  std::string utf8;
  int roomInUtf8;
};

class CodePointFromUtf32 : public testing::TestWithParam<FromUtf32Row> {};

TEST_P(CodePointFromUtf32, ToUtf16AndOneUnitShort) {
  const auto wanted = As<TCodeUnit>(GetParam().utf16);
  const int units = static_cast<int>(wanted.size());
  const auto convert = [](const char32_t* s, TCodeUnit* t, int& p, int c) {
    return CodePoint::Utf32ToUtf16(s, t, p, c);
  };
  const auto alias = [](const char32_t* s, TCodeUnit* t, int& p, int c) {
    return CodePoint::Utf32ToTCodeUnit(s, t, p, c);
  };
  EXPECT_EQ(RunInto<TCodeUnit>(&GetParam().source, Start + units, convert), (Written<TCodeUnit>{wanted, 1}));
  EXPECT_EQ(RunInto<TCodeUnit>(&GetParam().source, Start + units, alias), (Written<TCodeUnit>{wanted, 1}));
  const Written<TCodeUnit> tight = RunInto<TCodeUnit>(&GetParam().source, Start + 1, convert);
  EXPECT_EQ(tight.consumed, units == 1 ? 1 : 0);
}

TEST_P(CodePointFromUtf32, ToWideElements) {
  const char32_t value = GetParam().source > 0x10FFFF ? 0xFFFD : GetParam().source;
  const auto wanted = Foreign(std::u32string_view(&value, 1), GetParam().utf16);
  const auto convert = [](const char32_t* s, TForeignUnit* t, int& p, int c) {
    return CodePoint::Utf32ToUtf16(s, t, p, c);
  };
  EXPECT_EQ(RunInto<TForeignUnit>(&GetParam().source, RoomForElements(wanted), convert),
            (Written<TForeignUnit>{wanted, 1}));
}

TEST_P(CodePointFromUtf32, ToUtf8AndOneByteShort) {
  const int room = GetParam().roomInUtf8;
  EXPECT_EQ(RunInto<char>(&GetParam().source, room == 0 ? 0 : Start + room, CodePoint::Utf32ToUtf8),
            (Written<char>{GetParam().utf8, 1}));
  if (room != 0) {
    EXPECT_EQ(RunInto<char>(&GetParam().source, Start + room - 1, CodePoint::Utf32ToUtf8), (Written<char>{"", 0}));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CodePointFromUtf32,
    testing::Values(FromUtf32Row{"Ascii", U'a', u"a", "a", 0}, FromUtf32Row{"TwoBytes", 0xE9, u"\u00E9", "\xC3\xA9", 2},
                    FromUtf32Row{"HighSurrogate", 0xD800, {0xD800}, "\xED\xA0\x80", 3},
                    FromUtf32Row{"LowSurrogate", 0xDFFF, {0xDFFF}, "\xED\xBF\xBF", 3},
                    FromUtf32Row{"LastOfPlane0", 0xFFFF, u"\uFFFF", "\xEF\xBF\xBF", 3},
                    FromUtf32Row{"Supplementary", 0x1F600, {0xD83D, 0xDE00}, "\xF0\x9F\x98\x80", 4},
                    FromUtf32Row{"Greatest", 0x10FFFF, {0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF", 4},
                    FromUtf32Row{"JustAbove", 0x110000, u"\uFFFD", Substitute, 4},
                    FromUtf32Row{"AllBits", 0xFFFFFFFF, u"\uFFFD", Substitute, 4}),
    RowName<FromUtf32Row>);

// ---- From UTF-8

struct FromUtf8Row {
  const char* name;
  std::string source;
  char32_t utf32;
  std::u16string utf16;
  std::string utf8;
  int consumed;
  int roomInUtf8;
};

class CodePointFromUtf8 : public testing::TestWithParam<FromUtf8Row> {};

TEST_P(CodePointFromUtf8, ToUtf16) {
  const FromUtf8Row& row = GetParam();
  const auto wanted = As<TCodeUnit>(row.utf16);
  const auto convert = [](const char* s, TCodeUnit* t, int& p, int c) { return CodePoint::Utf8ToUtf16(s, t, p, c); };
  EXPECT_EQ(RunInto<TCodeUnit>(row.source.c_str(), Start + static_cast<int>(wanted.size()), convert),
            (Written<TCodeUnit>{wanted, row.consumed}));
  const bool pair = wanted.size() == 2;
  EXPECT_EQ(RunInto<TCodeUnit>(row.source.c_str(), Start + 1, convert).consumed, pair ? 0 : row.consumed);
}

TEST_P(CodePointFromUtf8, ToWideElements) {
  const auto wanted = Foreign(std::u32string_view(&GetParam().utf32, 1), GetParam().utf16);
  const auto convert = [](const char* s, TForeignUnit* t, int& p, int c) { return CodePoint::Utf8ToUtf16(s, t, p, c); };
  EXPECT_EQ(RunInto<TForeignUnit>(GetParam().source.c_str(), RoomForElements(wanted), convert),
            (Written<TForeignUnit>{wanted, GetParam().consumed}));
}

TEST_P(CodePointFromUtf8, ToUtf32WithoutALookAtCapacity) {
  EXPECT_EQ(RunInto<char32_t>(GetParam().source.c_str(), 0, CodePoint::Utf8ToUtf32),
            (Written<char32_t>{{GetParam().utf32}, GetParam().consumed}));
}

TEST_P(CodePointFromUtf8, ToUtf8AndOneByteShort) {
  const FromUtf8Row& row = GetParam();
  EXPECT_EQ(RunInto<char>(row.source.c_str(), row.roomInUtf8 == 0 ? 0 : Start + row.roomInUtf8, CodePoint::Utf8ToUtf8),
            (Written<char>{row.utf8, row.consumed}));
  if (row.roomInUtf8 != 0) {
    EXPECT_EQ(RunInto<char>(row.source.c_str(), Start + row.roomInUtf8 - 1, CodePoint::Utf8ToUtf8),
              (Written<char>{"", 0}));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CodePointFromUtf8,
    testing::Values(FromUtf8Row{"Ascii", "a", U'a', u"a", "a", 1, 0},
                    FromUtf8Row{"TwoBytes", "\xC3\xA9", 0xE9, u"\u00E9", "\xC3\xA9", 2, 2},
                    FromUtf8Row{"ThreeBytes", "\xE2\x82\xAC", 0x20AC, u"\u20AC", "\xE2\x82\xAC", 3, 3},
                    FromUtf8Row{"FourBytes", "\xF0\x9F\x98\x80", 0x1F600, {0xD83D, 0xDE00}, "\xF0\x9F\x98\x80", 4, 4},
                    FromUtf8Row{"Greatest", "\xF4\x8F\xBF\xBF", 0x10FFFF, {0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF", 4, 4},
                    FromUtf8Row{"AboveTheGreatest", "\xF4\x90\x80\x80", 0xFFFD, u"\uFFFD", "\xF4\x90\x80\x80", 4, 4},
                    FromUtf8Row{"AllBitsOfFour", "\xF7\xBF\xBF\xBF", 0xFFFD, u"\uFFFD", "\xF7\xBF\xBF\xBF", 4, 4},
                    FromUtf8Row{"OverlongNul", "\xC0\x80", 0, {u'\0'}, "\xC0\x80", 2, 2},
                    FromUtf8Row{"OverlongOfThree", "\xE0\x80\xAF", U'/', u"/", "\xE0\x80\xAF", 3, 3},
                    FromUtf8Row{"EncodedSurrogate", "\xED\xA0\x80", 0xD800, {0xD800}, "\xED\xA0\x80", 3, 3},
                    FromUtf8Row{"LoneContinuation", "\x80x", 0xFFFD, u"\uFFFD", Substitute, 1, 4},
                    FromUtf8Row{"F8", "\xF8\x80\x80\x80\x80", 0xFFFD, u"\uFFFD", Substitute, 1, 4},
                    FromUtf8Row{"FF", "\xFFx", 0xFFFD, u"\uFFFD", Substitute, 1, 4},
                    FromUtf8Row{"BrokenByAscii",
                                "\xE0"
                                "A",
                                0xFFFD, u"\uFFFD", Substitute, 1, 4},
                    FromUtf8Row{"BrokenAfterOne",
                                "\xE2\x82"
                                "A",
                                0xFFFD, u"\uFFFD", Substitute, 2, 4},
                    FromUtf8Row{"BrokenAfterTwo", "\xF0\x9F\x98\xC3\xA9", 0xFFFD, u"\uFFFD", Substitute, 3, 4},
                    FromUtf8Row{"CutByNul", "\xF0\x9F", 0xFFFD, u"\uFFFD", Substitute, 2, 4},
                    FromUtf8Row{"LeadThenLead", "\xC3\xC3\xA9", 0xFFFD, u"\uFFFD", Substitute, 1, 4}),
    RowName<FromUtf8Row>);

TEST(CodePointConvert, ABadByteIsReadAgain) {
  const char* source =
      "\xE0"
      "A";
  char32_t target[2] = {};
  int position = 0;
  source += CodePoint::Utf8ToUtf32(source, target, position, 2);
  source += CodePoint::Utf8ToUtf32(source, target, position, 2);
  EXPECT_EQ(position, 2);
  EXPECT_EQ(target[0], char32_t{0xFFFD});
  EXPECT_EQ(target[1], U'A');
  EXPECT_EQ(*source, '\0');
}

}  // namespace
