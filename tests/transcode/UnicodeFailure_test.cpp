// What the functions of namespace Unicode raise, with every text.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "qilsys/Unicode.h"
#include "support/StringFailure.h"
#include "support/TextForms.h"

namespace {

using qilsys::test::MessageOf;
using qilsys::test::RowName;

char g_bytes[8];
TCodeUnit g_units[8];
TForeignUnit g_wide[8];
char32_t g_points[8];

struct FailureRow {
  const char* name;
  std::function<void()> call;
  const char* text;
};

class UnicodeFailure : public testing::TestWithParam<FailureRow> {};

TEST_P(UnicodeFailure, Raises) { EXPECT_EQ(MessageOf(GetParam().call), GetParam().text); }

constexpr const TCodeUnit* NoUnits = nullptr;
constexpr const TForeignUnit* NoWide = nullptr;

const FailureRow NullSource[] = {
    {"MeasureUtf8ToUtf16", [] { Unicode::MeasureUtf8ToUtf16(nullptr, 1); },
     "String source is nullptr, encountered in Unicode::MeasureUtf8ToUtf16"},
    {"MeasureUtf8ToUtf16_Empty", [] { Unicode::MeasureUtf8ToUtf16(nullptr, 0); },
     "String source is nullptr, encountered in Unicode::MeasureUtf8ToUtf16"},
    {"MeasureUtf8ToUtf32", [] { Unicode::MeasureUtf8ToUtf32(nullptr, 1); },
     "String source is nullptr, encountered in Unicode::MeasureUtf8ToUtf32"},
    {"MeasureUtf32ToUtf8", [] { Unicode::MeasureUtf32ToUtf8(nullptr, 1); },
     "String source is nullptr, encountered in Unicode::MeasureUtf32ToUtf8"},
    {"MeasureUtf32ToUtf16", [] { Unicode::MeasureUtf32ToUtf16(nullptr, 1); },
     "String source is nullptr, encountered in Unicode::MeasureUtf32ToUtf16"},
    {"MeasureUtf16ToUtf8", [] { Unicode::MeasureUtf16ToUtf8(NoUnits, 1); },
     "String source is nullptr, encountered in Unicode::Utf16ToUtf8"},
    {"MeasureUtf16ToUtf8_Wide", [] { Unicode::MeasureUtf16ToUtf8(NoWide, 1); },
     "String source is nullptr, encountered in Unicode::Utf16ToUtf8"},
    {"MeasureUtf16ToUtf32", [] { Unicode::MeasureUtf16ToUtf32(NoUnits, 1); },
     "String source is nullptr, encountered in Unicode::Utf16ToUtf32"},
    {"MeasureUtf16ToUtf32_Wide", [] { Unicode::MeasureUtf16ToUtf32(NoWide, 1); },
     "String source is nullptr, encountered in Unicode::Utf16ToUtf32"},
    {"Utf8ToUtf16", [] { Unicode::Utf8ToUtf16(nullptr, 1, g_units, 8); },
     "String source is nullptr, encountered in Unicode::Utf8ToUtf16"},
    {"Utf8ToUtf16_NoTarget", [] { Unicode::Utf8ToUtf16(nullptr, 1, nullptr, 0); },
     "String source is nullptr, encountered in Unicode::Utf8ToUtf16"},
    {"Utf8ToUtf16_Wide", [] { Unicode::Utf8ToUtf16(nullptr, 1, g_wide, 8); },
     "String source is nullptr, encountered in Unicode::Utf8ToUtf16"},
    {"Utf16ToUtf8", [] { Unicode::Utf16ToUtf8(NoUnits, 1, g_bytes, 8); },
     "String source is nullptr, encountered in Unicode::Utf16ToUtf8"},
    {"Utf16ToUtf8_Wide", [] { Unicode::Utf16ToUtf8(NoWide, 1, g_bytes, 8); },
     "String source is nullptr, encountered in Unicode::Utf16ToUtf8"},
    {"Utf16ToUtf32", [] { Unicode::Utf16ToUtf32(NoUnits, 1, g_points, 8); },
     "String source is nullptr, encountered in Unicode::Utf16ToUtf32"},
    {"Utf16ToUtf32_Wide", [] { Unicode::Utf16ToUtf32(NoWide, 1, g_points, 8); },
     "String source is nullptr, encountered in Unicode::Utf16ToUtf32"},
    {"Utf32ToUtf16", [] { Unicode::Utf32ToUtf16(nullptr, 1, g_units, 8); },
     "String source is nullptr, encountered in Unicode::Utf32ToUtf16"},
    {"Utf32ToUtf16_Wide", [] { Unicode::Utf32ToUtf16(nullptr, 1, g_wide, 8); },
     "String source is nullptr, encountered in Unicode::Utf32ToUtf16"},
    {"Utf8ToUtf32", [] { Unicode::Utf8ToUtf32(nullptr, 1, g_points, 8); },
     "String source is nullptr, encountered in Unicode::Utf8ToUtf32"},
    {"Utf32ToUtf8", [] { Unicode::Utf32ToUtf8(nullptr, 1, g_bytes, 8); },
     "String source is nullptr, encountered in Unicode::Utf32ToUtf8"},
};

INSTANTIATE_TEST_SUITE_P(NullSource, UnicodeFailure, testing::ValuesIn(NullSource), RowName<FailureRow>);

const FailureRow NegativeLength[] = {
    {"MeasureUtf8ToUtf16", [] { Unicode::MeasureUtf8ToUtf16("a", -1); },
     "Nonsense string length: -1 encountered in Unicode::MeasureUtf8ToUtf16"},
    {"MeasureUtf8ToUtf32", [] { Unicode::MeasureUtf8ToUtf32("a", -2147483647 - 1); },
     "Nonsense string length: -2147483648 encountered in Unicode::MeasureUtf8ToUtf32"},
    {"MeasureUtf32ToUtf8", [] { Unicode::MeasureUtf32ToUtf8(U"a", -1); },
     "Nonsense string length: -1 encountered in Unicode::MeasureUtf32ToUtf8"},
    {"MeasureUtf32ToUtf16", [] { Unicode::MeasureUtf32ToUtf16(U"a", -1); },
     "Nonsense string length: -1 encountered in Unicode::MeasureUtf32ToUtf16"},
    {"MeasureUtf16ToUtf8", [] { Unicode::MeasureUtf16ToUtf8(u"a", -1); },
     "Nonsense string length: -1 encountered in Unicode::MeasureUtf16ToUtf8"},
    {"MeasureUtf16ToUtf8_Wide", [] { Unicode::MeasureUtf16ToUtf8(L"a", -1); },
     "Nonsense string length: -1 encountered in Unicode::MeasureUtf16ToUtf8"},
    {"MeasureUtf16ToUtf32", [] { Unicode::MeasureUtf16ToUtf32(u"a", -1); },
     "Nonsense string length: -1 encountered in Unicode::MeasureUtf16ToUtf32"},
    {"MeasureUtf16ToUtf32_Wide", [] { Unicode::MeasureUtf16ToUtf32(L"a", -1); },
     "Nonsense string length: -1 encountered in Unicode::MeasureUtf16ToUtf32"},
    {"Utf8ToUtf16", [] { Unicode::Utf8ToUtf16("a", -1, g_units, 8); },
     "Nonsense string length: -1 encountered in Unicode::Utf8ToUtf16"},
    {"Utf8ToUtf16_NoTarget", [] { Unicode::Utf8ToUtf16("a", -1, nullptr, 0); },
     "Nonsense string length: -1 encountered in Unicode::Utf8ToUtf16"},
    {"Utf8ToUtf16_Wide", [] { Unicode::Utf8ToUtf16("a", -1, g_wide, 8); },
     "Nonsense string length: -1 encountered in Unicode::Utf8ToUtf16"},
    {"Utf16ToUtf8", [] { Unicode::Utf16ToUtf8(u"a", -7, g_bytes, 8); },
     "Nonsense string length: -7 encountered in Unicode::Utf16ToUtf8"},
    {"Utf16ToUtf8_Wide", [] { Unicode::Utf16ToUtf8(L"a", -7, g_bytes, 8); },
     "Nonsense string length: -7 encountered in Unicode::Utf16ToUtf8"},
    {"Utf16ToUtf32", [] { Unicode::Utf16ToUtf32(u"a", -1, g_points, 8); },
     "Nonsense string length: -1 encountered in Unicode::Utf16ToUtf32"},
    {"Utf16ToUtf32_Wide", [] { Unicode::Utf16ToUtf32(L"a", -1, g_points, 8); },
     "Nonsense string length: -1 encountered in Unicode::Utf16ToUtf32"},
    {"Utf32ToUtf16", [] { Unicode::Utf32ToUtf16(U"a", -1, g_units, 8); },
     "Nonsense string length: -1 encountered in Unicode::Utf32ToUtf16"},
    {"Utf32ToUtf16_Wide", [] { Unicode::Utf32ToUtf16(U"a", -1, g_wide, 8); },
     "Nonsense string length: -1 encountered in Unicode::Utf32ToUtf16"},
    {"Utf8ToUtf32", [] { Unicode::Utf8ToUtf32("a", -1, g_points, 8); },
     "Nonsense string length: -1 encountered in Unicode::Utf8ToUtf32"},
    {"Utf32ToUtf8", [] { Unicode::Utf32ToUtf8(U"a", -1, g_bytes, 8); },
     "Nonsense string length: -1 encountered in Unicode::Utf32ToUtf8"},
};

INSTANTIATE_TEST_SUITE_P(NegativeLength, UnicodeFailure, testing::ValuesIn(NegativeLength), RowName<FailureRow>);

const FailureRow Target[] = {
    {"Utf8ToUtf16_TooSmall", [] { Unicode::Utf8ToUtf16("abc", 3, g_units, 2); },
     "ICU error 15 encountered while Unicode::Utf8ToUtf16 was trying to use t_u_strFromUTF8WithSub"},
    {"Utf8ToUtf16_WithoutLength", [] { Unicode::Utf8ToUtf16("abc", g_units, 2); },
     "ICU error 15 encountered while Unicode::Utf8ToUtf16 was trying to use t_u_strFromUTF8WithSub"},
    {"Utf8ToUtf16_Wide_TooSmall", [] { Unicode::Utf8ToUtf16("abc", 3, g_wide, 2); },
     "ICU error 15 encountered while Unicode::Utf8ToUtf16 was trying to use t_u_strFromUTF8WithSub"},
    {"Utf16ToUtf8_TooSmall", [] { Unicode::Utf16ToUtf8(u"\u00E9", 1, g_bytes, 1); },
     "ICU error 15 encountered while Unicode::Utf16ToUtf8 was trying to use t_u_strToUTF8WithSub"},
    {"Utf16ToUtf8_Wide_TooSmall", [] { Unicode::Utf16ToUtf8(L"\u00E9", 1, g_bytes, 1); },
     "ICU error 15 encountered while Unicode::Utf16ToUtf8 was trying to use t_u_strToUTF8WithSub"},
    {"Utf16ToUtf32_TooSmall", [] { Unicode::Utf16ToUtf32(u"ab", 2, g_points, 1); },
     "ICU error 15 encountered while Unicode::Utf16ToUtf32 was trying to use t_u_strToUTF32WithSub"},
    {"Utf16ToUtf32_Wide_TooSmall", [] { Unicode::Utf16ToUtf32(L"ab", 2, g_points, 1); },
     "ICU error 15 encountered while Unicode::Utf16ToUtf32 was trying to use t_u_strToUTF32WithSub"},
    {"Utf32ToUtf16_TooSmall", [] { Unicode::Utf32ToUtf16(U"\U0001F600", 1, g_units, 1); },
     "ICU error 15 encountered while Unicode::Utf32ToUtf16 was trying to use u_strFromUTF32WithSub"},
    {"Utf32ToUtf16_Wide_TooSmall", [] { Unicode::Utf32ToUtf16(U"ab", 2, g_wide, 1); },
     "ICU error 15 encountered while Unicode::Utf32ToUtf16 was trying to use u_strFromUTF32WithSub"},
    {"Utf8ToUtf16_NoRoomForNul", [] { Unicode::Utf8ToUtf16("abc", 3, g_units, 3); },
     "ICU error -124 encountered while Unicode::Utf8ToUtf16 was trying to use t_u_strFromUTF8WithSub"},
    {"Utf8ToUtf16_Wide_NoRoomForNul", [] { Unicode::Utf8ToUtf16("abc", 3, g_wide, 3); },
     "ICU error -124 encountered while Unicode::Utf8ToUtf16 was trying to use t_u_strFromUTF8WithSub"},
    {"Utf16ToUtf8_NoRoomForNul", [] { Unicode::Utf16ToUtf8(u"abc", 3, g_bytes, 3); },
     "ICU error -124 encountered while Unicode::Utf16ToUtf8 was trying to use t_u_strToUTF8WithSub"},
    {"Utf16ToUtf8_Wide_NoRoomForNul", [] { Unicode::Utf16ToUtf8(L"abc", 3, g_bytes, 3); },
     "ICU error -124 encountered while Unicode::Utf16ToUtf8 was trying to use t_u_strToUTF8WithSub"},
    {"Utf16ToUtf32_NoRoomForNul", [] { Unicode::Utf16ToUtf32(u"abc", 3, g_points, 3); },
     "ICU error -124 encountered while Unicode::Utf16ToUtf32 was trying to use t_u_strToUTF32WithSub"},
    {"Utf32ToUtf16_NoRoomForNul", [] { Unicode::Utf32ToUtf16(U"abc", 3, g_units, 3); },
     "ICU error -124 encountered while Unicode::Utf32ToUtf16 was trying to use u_strFromUTF32WithSub"},
    {"Utf32ToUtf16_Wide_NoRoomForNul", [] { Unicode::Utf32ToUtf16(U"abc", 3, g_wide, 3); },
     "ICU error -124 encountered while Unicode::Utf32ToUtf16 was trying to use u_strFromUTF32WithSub"},
    {"Utf8ToUtf16_NegativeCapacity", [] { Unicode::Utf8ToUtf16("abc", 3, g_units, -1); },
     "ICU error 1 encountered while Unicode::Utf8ToUtf16 was trying to use t_u_strFromUTF8WithSub"},
    {"Utf8ToUtf16_Wide_NegativeCapacity", [] { Unicode::Utf8ToUtf16("abc", 3, g_wide, -1); },
     "ICU error 1 encountered while Unicode::Utf8ToUtf16 was trying to use t_u_strFromUTF8WithSub"},
    {"Utf16ToUtf8_NegativeCapacity", [] { Unicode::Utf16ToUtf8(u"abc", 3, g_bytes, -1); },
     "ICU error 1 encountered while Unicode::Utf16ToUtf8 was trying to use t_u_strToUTF8WithSub"},
    {"Utf16ToUtf8_EmptyWithoutTarget", [] { Unicode::Utf16ToUtf8(u"", 0, nullptr, 0); },
     "ICU error -124 encountered while Unicode::Utf16ToUtf8 was trying to use t_u_strToUTF8WithSub"},
    {"Utf16ToUtf8_Wide_EmptyWithoutTarget", [] { Unicode::Utf16ToUtf8(L"", 0, nullptr, 0); },
     "ICU error -124 encountered while Unicode::Utf16ToUtf8 was trying to use t_u_strToUTF8WithSub"},
    {"Utf16ToUtf32_EmptyWithoutTarget", [] { Unicode::Utf16ToUtf32(u"", 0, nullptr, 0); },
     "ICU error -124 encountered while Unicode::Utf16ToUtf32 was trying to use t_u_strToUTF32WithSub"},
    {"Utf32ToUtf8_TooSmall", [] { Unicode::Utf32ToUtf8(U"abcd", 4, g_bytes, 4); },
     "Error insufficient destinationCapacity (4) was passed into Unicode::Utf32ToUtf8."},
    {"Utf32ToUtf8_NoCapacity", [] { Unicode::Utf32ToUtf8(U"a", 1, g_bytes, 0); },
     "Error insufficient destinationCapacity (0) was passed into Unicode::Utf32ToUtf8."},
    {"Utf32ToUtf8_SubstituteTooLong", [] { Unicode::Utf32ToUtf8(U"\uFFFD", 1, g_bytes, 3); },
     "Error insufficient destinationCapacity (3) was passed into Unicode::Utf32ToUtf8."},
    {"Utf8ToUtf32_TooSmall", [] { Unicode::Utf8ToUtf32("abcd", 4, g_points, 4); },
     "Error unable to process the entire source string in function Unicode::Utf8ToUtf32"},
    {"Utf8ToUtf32_NegativeCapacity", [] { Unicode::Utf8ToUtf32("a", 1, g_points, -2147483647 - 1); },
     "Error unable to process the entire source string in function Unicode::Utf8ToUtf32"},
};

INSTANTIATE_TEST_SUITE_P(Target, UnicodeFailure, testing::ValuesIn(Target), RowName<FailureRow>);

TEST(UnicodeFailureNot, MeasureUtf8ToUtf8NeverRaises) {
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8(nullptr, 3), 0);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8("abc", -1), 0);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf8("abc", 0), 0);
}

TEST(UnicodeFailureNot, MeasuringAnEmptyTextAsksNobody) {
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(u"a", 0), 0);
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(L"a", 0), 0);
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf32(u"a", 0), 0);
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(u""), 0);
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(L""), 0);
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf32(L""), 0);
  EXPECT_EQ(Unicode::MeasureUtf8ToUtf16("a", 0), 0);
  EXPECT_EQ(Unicode::MeasureUtf32ToUtf8(U"a", 0), 0);
}

TEST(UnicodeFailureNot, AnEmptyTextFitsWhereOneElementIs) {
  TCodeUnit unit = 7;
  EXPECT_EQ(Unicode::Utf8ToUtf16("", 0, &unit, 1), 0);
  EXPECT_EQ(unit, 0);
  char32_t point = 7;
  EXPECT_EQ(Unicode::Utf8ToUtf32("", 0, &point, 1), 0);
  EXPECT_EQ(point, U'\0');
  char byte = 7;
  EXPECT_EQ(Unicode::Utf32ToUtf8(U"", 0, &byte, 1), 0);
  EXPECT_EQ(byte, '\0');
}

}  // namespace
