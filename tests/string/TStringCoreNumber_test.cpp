#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <type_traits>

#include "qilsys/TStringCore.h"
#include "support/Random.h"
#include "support/StringText.h"

namespace {

using qilsys::test::Narrow;
using qilsys::test::UnitsOf;

struct IntegerRow {
  const char* name;
  long long value;
  int base;
  int width;
  char16_t fill;
  const char* wanted;
};

class TStringCoreNumber : public testing::TestWithParam<IntegerRow> {};

TEST_P(TStringCoreNumber, GivesTheText) {
  const IntegerRow& row = GetParam();
  EXPECT_EQ(Narrow(TStringCore::number(row.value, row.base, row.width, row.fill)), row.wanted);
}

constexpr IntegerRow IntegerRows[] = {
    {"Zero", 0, 10, 0, u' ', "0"},
    {"ZeroBase2", 0, 2, 0, u' ', "0"},
    {"ZeroBase64", 0, 64, 0, u' ', "A"},
    {"SixtyFourBase64", 64, 64, 0, u' ', "BA"},
    {"LastDigitsBase64", 62 * 64 + 63, 64, 0, u' ', "+/"},
    {"MinusOneBase64", -1, 64, 0, u' ', "P//////////"},
    {"Hex", 255, 16, 0, u' ', "ff"},
    {"NegativeHex", -255, 16, 0, u' ', "ffffffffffffff01"},
    {"MinusOneHex", -1, 16, 0, u' ', "ffffffffffffffff"},
    {"Base36", 35, 36, 0, u' ', "z"},
    {"ZeroFillAfterSign", -42, 10, 6, u'0', "-00042"},
    {"BlankFillBeforeSign", -42, 10, 6, u' ', "   -42"},
    {"OtherFillBeforeSign", -42, 10, 6, u'*', "***-42"},
    {"ZeroFillPositive", 42, 10, 6, u'0', "000042"},
    {"BlankFillPositive", 42, 10, 6, u' ', "    42"},
    {"WidthOfText", -42, 10, 3, u'0', "-42"},
    {"WidthOneMore", -42, 10, 4, u'0', "-042"},
    {"WidthOneMoreBlank", -42, 10, 4, u' ', " -42"},
    {"WidthBelowText", -42, 10, 1, u'0', "-42"},
    {"NegativeWidth", 42, 10, -6, u'0', "42"},
    {"LowestWidth", -42, 10, INT_MIN, u'0', "-42"},
    {"FillHex", 255, 16, 8, u'0', "000000ff"},
    {"FillNegativeHex", -255, 16, 18, u'0', "00ffffffffffffff01"},
    {"FillBase64", 1, 64, 4, u'.', "...B"},
    {"WidthPastInline", 7, 10, 20, u' ', "                   7"},
    {"Lowest", LLONG_MIN, 10, 0, u' ', "-9223372036854775808"},
    {"Highest", LLONG_MAX, 10, 0, u' ', "9223372036854775807"},
    {"LowestBase2", LLONG_MIN, 2, 0, u' ', "1000000000000000000000000000000000000000000000000000000000000000"},
    {"FourteenUnits", -1234567890123, 10, 0, u' ', "-1234567890123"},
    {"FifteenUnits", -12345678901234, 10, 0, u' ', "-12345678901234"},
};
INSTANTIATE_TEST_SUITE_P(Rows, TStringCoreNumber, testing::ValuesIn(IntegerRows),
                         [](const auto& row) { return std::string(row.param.name); });

template <class T>
class TStringCoreNumberOfType : public testing::Test {};
using IntegerTypes =
    testing::Types<short, unsigned short, int, unsigned int, long, unsigned long, long long, unsigned long long>;
TYPED_TEST_SUITE(TStringCoreNumberOfType, IntegerTypes);

TYPED_TEST(TStringCoreNumberOfType, PrintsBothLimits) {
  using Limits = std::numeric_limits<TypeParam>;
  EXPECT_EQ(Narrow(TStringCore::number(Limits::min())), std::to_string(Limits::min()));
  EXPECT_EQ(Narrow(TStringCore::number(Limits::max())), std::to_string(Limits::max()));
}

TYPED_TEST(TStringCoreNumberOfType, WidensToSixtyFourBits) {
  const TypeParam allOnes = static_cast<TypeParam>(~TypeParam{0});
  const std::string wanted(std::is_signed_v<TypeParam> ? 16 : sizeof(TypeParam) * 2, 'f');
  EXPECT_EQ(Narrow(TStringCore::number(allOnes, 16)), wanted);
}

TYPED_TEST(TStringCoreNumberOfType, SetsTheText) {
  TStringCore text(u"what was there before, in a block");
  TStringCore& same = text.setNum(std::numeric_limits<TypeParam>::max());
  EXPECT_EQ(&same, &text);
  EXPECT_EQ(Narrow(text), std::to_string(std::numeric_limits<TypeParam>::max()));
  EXPECT_EQ(Narrow(text.setNum(TypeParam{35}, 36)), "z");
}

TYPED_TEST(TStringCoreNumberOfType, TakesAWideFill) {
  EXPECT_EQ(UnitsOf(TStringCore::number(TypeParam{7}, 10, 3, L'*')), u"**7");
  EXPECT_EQ(UnitsOf(TStringCore::number(TypeParam{7}, 10, 3, u'*')), u"**7");
}

TEST(TStringCoreNumberFill, TakesAnyUnit) {
  EXPECT_EQ(UnitsOf(TStringCore::number(-7, 10, 4, u'\xD83D')), u"\xD83D\xD83D-7");
  EXPECT_EQ(UnitsOf(TStringCore::number(7, 16, 3, u'\xDE00')), u"\xDE00\xDE00\x0037");
  EXPECT_EQ(UnitsOf(TStringCore::number(7, 10, 2, u'\0')), std::u16string(u"\0007", 2));
}

TEST(TStringCoreNumberFill, ReplacesAWideFillOfTwoUnits) {
  const bool canNeedTwo = sizeof(wchar_t) > sizeof(char16_t);
  const auto fill = static_cast<wchar_t>(canNeedTwo ? 0x1F600 : 0xD83D);
  EXPECT_EQ(UnitsOf(TStringCore::number(7, 10, 3, fill)), canNeedTwo ? u"\xFFFD\xFFFD\x0037" : u"\xD83D\xD83D\x0037");
}

TEST(TStringCoreNumberBase, RaisesOutsideTheRange) {
  for (const int base : {INT_MIN, -10, -1, 0, 1, 37, 63, 65, INT_MAX}) {
    try {
      TStringCore::number(1, base);
      FAIL() << base;
    } catch (const TStringCore::Exception& e) {
      EXPECT_EQ(Narrow(e.message), "TStringCore::number: base out of range.");
    }
    EXPECT_THROW(TStringCore::number(1ULL, base), TStringCore::Exception) << base;
  }
  EXPECT_NO_THROW(TStringCore::number(1, 64));
}

TEST(TStringCoreNumberBase, LeavesTheTextWhereSetNumRaises) {
  TStringCore text(u"kept");
  EXPECT_THROW(text.setNum(1, 37), TStringCore::Exception);
  EXPECT_EQ(Narrow(text), "kept");
}

TEST(TStringCoreNumberWidth, RaisesAboveTheStringLimit) {
  EXPECT_THROW(TStringCore::number(1, 10, INT_MAX), TStringCore::CapacityException);
  EXPECT_THROW(TStringCore::number(-1, 10, INT_MAX, u'0'), TStringCore::CapacityException);
  EXPECT_THROW(TStringCore::number(1, 16, INT_MAX), TStringCore::CapacityException);
}

// The text by the plain rule: digits from the last to the first, the sign before or after the fill, then turned round.
std::u16string Model(long long value, int base, int width, char16_t fill) {
  const std::u16string alphabet = base == 64 ? u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"
                                             : u"0123456789abcdefghijklmnopqrstuvwxyz";
  const bool negative = base == 10 && value < 0;
  auto rest = negative ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  std::u16string text;
  do {
    text.push_back(alphabet[rest % static_cast<unsigned>(base)]);
    rest /= static_cast<unsigned>(base);
  } while (rest != 0);
  if (negative && fill != u'0') text.push_back(u'-');
  const int room = negative && fill == u'0' ? width - 1 : width;
  while (static_cast<int>(text.size()) < room) text.push_back(fill);
  if (negative && fill == u'0') text.push_back(u'-');
  return std::u16string(text.rbegin(), text.rend());
}

TEST(TStringCoreNumberModel, AgreesForAnyNumberBaseWidthAndFill) {
  qilsys::test::SeededRandom random;
  const char16_t fills[] = {u' ', u'0', u'1', u'a', u'-', u'\xD800', u'\xDC00', u'\x4E00'};
  for (int round = 0; round < qilsys::test::Rounds(20000); ++round) {
    const long long value = random.Between(LLONG_MIN, LLONG_MAX) >> random.Between(0, 63);
    const int drawn = random.Between(1, 37);
    const int base = drawn == 37 ? 64 : random.OneIn(2) || drawn == 1 ? 10 : drawn;
    const int width = random.Between(-3, 80);
    const char16_t fill = fills[random.Between(0, 7)];
    ASSERT_EQ(UnitsOf(TStringCore::number(value, base, width, fill)), Model(value, base, width, fill))
        << value << " base " << base << " width " << width << " fill " << static_cast<unsigned>(fill);
  }
}

const void* Address(std::uintptr_t value) { return reinterpret_cast<const void*>(value); }

TEST(TStringCorePointer, PrintsEveryForm) {
  EXPECT_EQ(Narrow(TStringCore::pointer(Address(0xABC), false, false)), "abc");
  EXPECT_EQ(Narrow(TStringCore::pointer(Address(0xABC), true, false)), "0xabc");
  EXPECT_EQ(Narrow(TStringCore::pointer(Address(0xABC), false, true)), "0000000000000abc");
  EXPECT_EQ(Narrow(TStringCore::pointer(Address(0xABC), true, true)), "0x0000000000000abc");
  EXPECT_EQ(Narrow(TStringCore::pointer(nullptr, true, false)), "0x0");
  EXPECT_EQ(Narrow(TStringCore::pointer(Address(~std::uintptr_t{0}), true, false)), "0xffffffffffffffff");
}

}  // namespace
