#include "qilsys/CodePoint.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "support/TextForms.h"

namespace {

using qilsys::test::As;
using qilsys::test::ForEachUnitType;
using qilsys::test::ForeignHoldsCodePoints;
using qilsys::test::RowName;

// ---- Classification

TEST(CodePointClass, EveryUnitThroughBothForms) {
  ForEachUnitType([](auto zero) {
    using U = decltype(zero);
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
      const auto unit = static_cast<U>(value);
      const bool low = value >= 0xDC00 && value <= 0xDFFF;
      const bool high = value >= 0xD800 && value <= 0xDBFF;
      ASSERT_EQ(CodePoint::IsASCII(unit), value < 0x80) << value;
      ASSERT_EQ(CodePoint::IsFirstCodeUnit(unit), !low) << value;
      ASSERT_EQ(CodePoint::IsFirstUtf16CodeUnit(unit), !low) << value;
      ASSERT_TRUE(CodePoint::IsSingleCodeUnit(unit)) << value;
      ASSERT_EQ(CodePoint::CountCodeUnits(&unit), low ? 0 : high ? 2 : 1) << value;
    }
  });
}

TEST(CodePointClass, EveryByte) {
  for (int value = 0; value <= 0xFF; ++value) {
    const int expected = value < 0x80   ? 1
                         : value < 0xC0 ? 0
                         : value < 0xE0 ? 2
                         : value < 0xF0 ? 3
                         : value < 0xF8 ? 4
                                        : 0;
    EXPECT_EQ(CodePoint::CountUtf8CodeUnits(static_cast<unsigned char>(value)), expected) << value;
    EXPECT_EQ(CodePoint::_utf8CodeUnits[value >> 3], expected) << value;
    EXPECT_EQ(CodePoint::IsFirstUtf8CodeUnit(static_cast<char>(value)), value < 0x80 || value >= 0xC0) << value;
  }
}

TEST(CodePointClass, EveryUtf32ValueIsFirst) {
  for (const char32_t value :
       {U'\0', U'a', char32_t{0xD800}, char32_t{0xDC00}, char32_t{0x10FFFF}, char32_t{0xFFFFFFFF}})
    EXPECT_TRUE(CodePoint::IsFirstUtf32CodeUnit(value));
}

TEST(CodePointClass, CountsUnitsOfACodePoint) {
  EXPECT_EQ(CodePoint::CountCodeUnits(U'\0'), 1);
  EXPECT_EQ(CodePoint::CountCodeUnits(char32_t{0xFFFF}), 1);
  EXPECT_EQ(CodePoint::CountCodeUnits(char32_t{0x10000}), 2);
  EXPECT_EQ(CodePoint::CountCodeUnits(char32_t{0x110000}), 2);
}

TEST(CodePointClass, NullHasNoUnits) {
  EXPECT_EQ(CodePoint::CountCodeUnits(nullptr), 0);
  EXPECT_EQ(CodePoint::CountCodeUnits(static_cast<const wchar_t*>(nullptr)), 0);
  EXPECT_EQ(CodePoint::CountCodeUnits(static_cast<const char16_t*>(nullptr)), 0);
}

TEST(CodePointClass, ReplacementCharacterIsFFFD) { EXPECT_EQ(CodePoint::ReplacementCharacter, char32_t{0xFFFD}); }

// ---- Reading

struct ReadRow {
  const char* name;
  std::u16string text;
  char32_t codePoint;
  int units;
};

class CodePointRead : public testing::TestWithParam<ReadRow> {};

TEST_P(CodePointRead, GetCodePoint) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(GetParam().text);
    int units = -7;
    EXPECT_EQ(CodePoint::GetCodePoint(text.c_str(), &units), GetParam().codePoint);
    EXPECT_EQ(units, GetParam().units);
    EXPECT_EQ(CodePoint::GetCodePoint(text.c_str(), nullptr), GetParam().codePoint);
  });
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CodePointRead,
    testing::Values(ReadRow{"Empty", u"", 0, 1}, ReadRow{"Ascii", u"a", U'a', 1},
                    ReadRow{"LastBelowSurrogates", u"\uD7FF", 0xD7FF, 1},
                    ReadRow{"FirstAboveSurrogates", u"\uE000", 0xE000, 1},
                    ReadRow{"LastOfPlane0", u"\uFFFF", 0xFFFF, 1}, ReadRow{"FirstPair", {0xD800, 0xDC00}, 0x10000, 2},
                    ReadRow{"LastPair", {0xDBFF, 0xDFFF}, 0x10FFFF, 2}, ReadRow{"LoneHigh", {0xD800}, 0xFFFD, 1},
                    ReadRow{"HighThenText", {0xD83D, u'x'}, 0xFFFD, 1},
                    ReadRow{"HighThenHigh", {0xD83D, 0xD83D, 0xDE00}, 0xFFFD, 1},
                    ReadRow{"LoneLow", {0xDC00}, 0xFFFD, 1}, ReadRow{"LowThenLow", {0xDE00, 0xDE00}, 0xFFFD, 1}),
    RowName<ReadRow>);

TEST(CodePointReading, NullIsZeroAndNoUnits) {
  int units = -7;
  EXPECT_EQ(CodePoint::GetCodePoint(nullptr, &units), char32_t{0});
  EXPECT_EQ(units, 0);
  ForEachUnitType([](auto zero) {
    int count = -7;
    EXPECT_EQ(CodePoint::GetCodePoint(static_cast<const decltype(zero)*>(nullptr), &count), char32_t{0});
    EXPECT_EQ(count, 0);
  });
}

TEST(CodePointReading, LoneHighCountsOneWhereFirstUnitPromisesTwo) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(std::u16string{0xD83D});
    int units = 0;
    EXPECT_EQ(CodePoint::GetCodePoint(text.c_str(), &units), char32_t{0xFFFD});
    EXPECT_EQ(units, 1);
    EXPECT_EQ(CodePoint::CountCodeUnits(text.c_str()), 2);
  });
}

TEST(CodePointReading, WideElementsHoldACodePoint) {
  constexpr int Elements = ForeignHoldsCodePoints ? 1 : 2;
  int units = 0;
  EXPECT_EQ(CodePoint::GetCodePoint(L"\U0001F600", &units), char32_t{0x1F600});
  EXPECT_EQ(units, Elements);
  EXPECT_EQ(CodePoint::CountCodeUnits(L"\U0001F600"), Elements);
  if (!ForeignHoldsCodePoints) return;
  const wchar_t tooLarge[] = {static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1), 0};
  EXPECT_EQ(CodePoint::GetCodePoint(tooLarge, &units), char32_t{0xFFFD});
  EXPECT_EQ(CodePoint::GetCodePoint(tooLarge + 1, &units), char32_t{0xFFFD});
  EXPECT_FALSE(CodePoint::IsASCII(tooLarge[1]));
}

// ---- Navigation

struct NextRow {
  const char* name;
  std::u16string text;
  int current;
  int length;
  int expected;  // -1: null
  int nextUnits;
};

class CodePointNext : public testing::TestWithParam<NextRow> {};

TEST_P(CodePointNext, GetNextCodePointPointer) {
  ForEachUnitType([](auto zero) {
    auto text = As<decltype(zero)>(GetParam().text);
    int units = -7;
    const auto* begin = text.c_str();
    const auto* expected = GetParam().expected < 0 ? nullptr : begin + GetParam().expected;
    EXPECT_EQ(CodePoint::GetNextCodePointPointer(begin, begin + GetParam().current, GetParam().length, &units),
              expected);
    EXPECT_EQ(units, GetParam().nextUnits);
    auto* writable = text.data();
    auto* next =
        CodePoint::GetNextCodePointPointer(writable, writable + GetParam().current, GetParam().length, nullptr);
    static_assert(!std::is_const_v<std::remove_pointer_t<decltype(next)>>);
    EXPECT_EQ(next, expected);
  });
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CodePointNext,
    testing::Values(NextRow{"OneUnit", u"ab", 0, 2, 1, 1}, NextRow{"AtTheLast", u"ab", 1, 2, -1, 0},
                    NextRow{"AtTheEnd", u"ab", 2, 2, -1, 0}, NextRow{"BeforeTheText", u"ab", -1, 2, -1, 0},
                    NextRow{"EmptyText", u"", 0, 0, -1, 0}, NextRow{"NegativeLength", u"ab", 0, -1, -1, 0},
                    NextRow{"OverAPair", {0xD83D, 0xDE00, u'x'}, 0, 3, 2, 1},
                    NextRow{"PairIsTheLast", {0xD83D, 0xDE00}, 0, 2, -1, 0},
                    NextRow{"ToAHigh", {u'x', 0xD83D, 0xDE00}, 0, 3, 1, 2},
                    NextRow{"ToALow", {u'x', 0xDE00, u'y'}, 0, 3, 1, 0},
                    NextRow{"FromALow", {0xDE00, u'x', u'y'}, 0, 3, -1, 0},
                    NextRow{"LoneHighStepsOverTheNext", {0xD83D, u'x', u'y'}, 0, 3, 2, 1},
                    NextRow{"LoneHighBeforeTheLast", {0xD83D, u'x'}, 0, 2, -1, 0},
                    NextRow{"NulIsText", std::u16string(u"a\0b", 3), 0, 3, 1, 1}),
    RowName<NextRow>);

TEST(CodePointNavigation, NullCurrent) {
  int units = -7;
  EXPECT_EQ(CodePoint::GetNextCodePointPointer(nullptr, nullptr, 4, &units), nullptr);
  EXPECT_EQ(units, 0);
  ForEachUnitType([](auto zero) {
    auto text = As<decltype(zero)>(u"ab");
    const auto* begin = text.c_str();
    int count = -7;
    EXPECT_EQ(CodePoint::GetNextCodePointPointer(begin, nullptr, 2, &count), nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(CodePoint::GetNextCodePointPointer(text.data(), nullptr, 2, nullptr), nullptr);
    count = -7;
    EXPECT_EQ(CodePoint::GetPreviousCodePointPointer(begin, nullptr, &count), nullptr);
    EXPECT_EQ(count, 0);
    count = -7;
    EXPECT_EQ(CodePoint::GetLastCodePointPointer(static_cast<const decltype(zero)*>(nullptr), 2, &count), nullptr);
    EXPECT_EQ(count, 0);
  });
  EXPECT_EQ(CodePoint::GetPreviousCodePointPointer(nullptr, nullptr), nullptr);
  EXPECT_EQ(CodePoint::GetLastCodePointPointer(nullptr, 2), nullptr);
}

struct BackRow {
  const char* name;
  std::u16string text;
  int current;
  int expected;  // -1: null
  int units;
};

class CodePointBack : public testing::TestWithParam<BackRow> {};

TEST_P(CodePointBack, GetPreviousAndLast) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(GetParam().text);
    const auto* begin = text.c_str();
    const auto* expected = GetParam().expected < 0 ? nullptr : begin + GetParam().expected;
    int units = -7;
    EXPECT_EQ(CodePoint::GetPreviousCodePointPointer(begin, begin + GetParam().current, &units), expected);
    EXPECT_EQ(units, GetParam().units);
    EXPECT_EQ(CodePoint::GetPreviousCodePointPointer(begin, begin + GetParam().current, nullptr), expected);
    units = -7;
    EXPECT_EQ(CodePoint::GetLastCodePointPointer(begin, GetParam().current, &units), expected);
    EXPECT_EQ(units, GetParam().units);
  });
}

INSTANTIATE_TEST_SUITE_P(Rows, CodePointBack,
                         testing::Values(BackRow{"OneUnit", u"ab", 2, 1, 1}, BackRow{"AtTheStart", u"ab", 0, -1, 0},
                                         BackRow{"ToTheStart", u"ab", 1, 0, 1},
                                         BackRow{"OverAPair", {u'x', 0xD83D, 0xDE00}, 3, 1, 2},
                                         BackRow{"PairIsTheFirst", {0xD83D, 0xDE00}, 2, 0, 2},
                                         BackRow{"RunOfLows", {u'x', u'y', 0xDE00, 0xDE00, 0xDE00}, 5, 1, 4},
                                         BackRow{"LowsReachTheStart", {0xDE00, 0xDE00}, 2, -1, 0},
                                         BackRow{"OneLowAtTheStart", {0xDE00, u'x'}, 1, -1, 0},
                                         BackRow{"OntoALoneHigh", {u'x', 0xD83D}, 2, 1, 1},
                                         BackRow{"InsideAPair", {u'x', 0xD83D, 0xDE00}, 2, 1, 1}),
                         RowName<BackRow>);

TEST(CodePointNavigation, BelowTheStartAndNegativeLength) {
  ForEachUnitType([](auto zero) {
    const auto text = As<decltype(zero)>(u"abc");
    EXPECT_EQ(CodePoint::GetPreviousCodePointPointer(text.c_str() + 2, text.c_str() + 1), nullptr);
    EXPECT_EQ(CodePoint::GetLastCodePointPointer(text.c_str(), -1), nullptr);
  });
}

}  // namespace
