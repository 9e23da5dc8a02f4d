#include "qilsys/TCType.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <vector>

#include "support/TextForms.h"

namespace {

using qilsys::test::ForEachUnitType;
using qilsys::test::ForeignHoldsCodePoints;
using qilsys::test::RowName;

/// One question in each of its forms, beside ICU's own answer.
struct ClassRow {
  const char* name;
  bool (*native)(TCodeUnit);
  bool (*foreign)(TForeignUnit);
  bool (*icu)(UChar32);
};

class CharacterClass : public testing::TestWithParam<ClassRow> {};

TEST_P(CharacterClass, AgreesWithIcuOnEveryUnit) {
  for (UChar32 c = 0; c <= 0xFFFF; ++c) {
    const bool wanted = GetParam().icu(c);
    ASSERT_EQ(GetParam().native(static_cast<TCodeUnit>(c)), wanted) << std::hex << c;
    ASSERT_EQ(GetParam().foreign(static_cast<TForeignUnit>(c)), wanted) << std::hex << c;
  }
}

// Where an element has 16 bits there is no such character; what is left of it is a unit like any other.
TEST_P(CharacterClass, AWideCharacterOfTwoUnitsCountsAsTheReplacement) {
  for (const UChar32 c : {0x10000, 0x10400, 0x1D400, 0x1F600, 0x10FFFF, 0x110000, -1}) {
    const auto element = static_cast<TForeignUnit>(c);
    const bool wanted = GetParam().icu(ForeignHoldsCodePoints ? 0xFFFD : static_cast<UChar32>(element));
    EXPECT_EQ(GetParam().foreign(element), wanted) << std::hex << c;
  }
}

constexpr ClassRow Classes[] = {
    {"Alpha", TCType::isAlpha, TCType::isAlpha, [](UChar32 c) -> bool { return u_isUAlphabetic(c); }},
    {"Digit", TCType::isDigit, TCType::isDigit, [](UChar32 c) -> bool { return u_isdigit(c); }},
    {"Alnum", TCType::isAlnum, TCType::isAlnum,
     [](UChar32 c) -> bool { return u_hasBinaryProperty(c, static_cast<UProperty>(44)); }},
    {"Graph", TCType::isGraph, TCType::isGraph,
     [](UChar32 c) -> bool { return u_hasBinaryProperty(c, static_cast<UProperty>(46)); }},
    {"Print", TCType::isPrint, TCType::isPrint,
     [](UChar32 c) -> bool { return u_hasBinaryProperty(c, static_cast<UProperty>(47)); }},
    {"Blank", TCType::isBlank, TCType::isBlank, [](UChar32 c) -> bool { return u_isblank(c); }},
    {"Cntrl", TCType::isCntrl, TCType::isCntrl, [](UChar32 c) -> bool { return u_charType(c) == 15; }},
    {"Lower", TCType::isLower, TCType::isLower, [](UChar32 c) -> bool { return u_isULowercase(c); }},
    {"Upper", TCType::isUpper, TCType::isUpper, [](UChar32 c) -> bool { return u_isUUppercase(c); }},
    {"Punct", TCType::isPunct, TCType::isPunct, [](UChar32 c) -> bool { return u_ispunct(c); }},
    {"XDigit", TCType::isXDigit, TCType::isXDigit, [](UChar32 c) -> bool { return u_isxdigit(c); }},
    {"Space", TCType::isSpace, TCType::isSpace, [](UChar32 c) -> bool { return u_isUWhiteSpace(c); }},
};

INSTANTIATE_TEST_SUITE_P(Rows, CharacterClass, testing::ValuesIn(Classes), RowName<ClassRow>);

TEST(CharacterClass32, AgreesWithIcuOnEveryCodePoint) {
  for (UChar32 c = 0; c <= 0x110000; ++c) {
    const auto value = static_cast<char32_t>(c);
    ASSERT_EQ(TCType::isAlpha32(value), u_isUAlphabetic(c) != 0) << std::hex << c;
    ASSERT_EQ(TCType::isDigit32(value), u_isdigit(c) != 0) << std::hex << c;
    ASSERT_EQ(TCType::isSpace32(value), u_isUWhiteSpace(c) != 0) << std::hex << c;
  }
}

TEST(CharacterCase, AgreesWithIcuOnEveryUnit) {
  for (UChar32 c = 0; c <= 0xFFFF; ++c) {
    ASSERT_EQ(TCType::ToLower(static_cast<TCodeUnit>(c)), static_cast<TCodeUnit>(u_tolower(c))) << std::hex << c;
    ASSERT_EQ(TCType::ToUpper(static_cast<TCodeUnit>(c)), static_cast<TCodeUnit>(u_toupper(c))) << std::hex << c;
    ASSERT_EQ(TCType::ToLower(static_cast<TForeignUnit>(c)), static_cast<TForeignUnit>(u_tolower(c))) << std::hex << c;
    ASSERT_EQ(TCType::ToUpper(static_cast<TForeignUnit>(c)), static_cast<TForeignUnit>(u_toupper(c))) << std::hex << c;
    ASSERT_LE(u_tolower(c), 0xFFFF) << "no longer one unit: " << std::hex << c;
    ASSERT_LE(u_toupper(c), 0xFFFF) << "no longer one unit: " << std::hex << c;
  }
}

TEST(SpaceAtPointer, AgreesWithIcuOnEveryCodePoint) {
  for (char32_t c = 0; c <= 0x10FFFF; ++c) {
    TCodeUnit text[3] = {};
    int position = 0;
    CodePoint::Utf32ToUtf16(&c, text, position, 2);
    ASSERT_EQ(TCType::isSpace(text), u_isUWhiteSpace(static_cast<UChar32>(c)) != 0) << std::hex << uint32_t{c};
    const TForeignUnit wide[2] = {static_cast<TForeignUnit>(c), 0};
    if (ForeignHoldsCodePoints) {
      ASSERT_EQ(TCType::isSpace(wide), u_isUWhiteSpace(static_cast<UChar32>(c)) != 0) << std::hex << uint32_t{c};
    }
  }
}

TEST(CharacterClassEdge, NoBreakSpaceAndEmSpaceFollowWhiteSpace) {
  EXPECT_TRUE(TCType::isSpace(L'\u00A0'));
  EXPECT_TRUE(TCType::isSpace(u'\u00A0'));
  EXPECT_TRUE(TCType::isSpace(u"\u00A0"));
  EXPECT_TRUE(TCType::isSpace(L"\u00A0"));
  EXPECT_TRUE(TCType::isSpace32(0x2003));
}

TEST(CharacterClassEdge, ArabicIndicThreeIsADigit) {
  EXPECT_TRUE(TCType::isDigit(u'\u0663'));
  EXPECT_TRUE(TCType::isDigit(L'\u0663'));
  EXPECT_TRUE(TCType::isDigit32(0x663));
}

TEST(CharacterClassEdge, OnlyTheWholeCodePointIsALetter) {
  EXPECT_TRUE(TCType::isAlpha32(0x1D400));
  ForEachUnitType([](auto zero) { EXPECT_FALSE(TCType::isAlpha(static_cast<decltype(zero)>(0xD835))); });
}

TEST(CharacterClassEdge, TabIsControlAndSpace) {
  EXPECT_TRUE(TCType::isCntrl(L'\t'));
  EXPECT_TRUE(TCType::isCntrl(u'\t'));
  EXPECT_TRUE(TCType::isSpace(L'\t'));
  EXPECT_TRUE(TCType::isSpace(u'\t'));
}

TEST(CharacterClassEdge, AsciiNextToWhiteSpaceIsNone) {
  for (const char16_t c : {u'\x08', u'\x0E', u'\x1F', u'!', u'\0', u'\x7F'}) EXPECT_FALSE(TCType::isSpace(c)) << int{c};
}

}  // namespace
