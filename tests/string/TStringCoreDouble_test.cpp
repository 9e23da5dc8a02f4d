#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/CommaLocale.h"
#include "support/Random.h"
#include "support/StringText.h"

namespace {

using qilsys::test::Narrow;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

struct DoubleRow {
  const char* name;
  double value;
  char format;
  int precision;
  bool decimalForm;
  const char* wanted;
};

class TStringCoreDouble : public testing::TestWithParam<DoubleRow> {};

TEST_P(TStringCoreDouble, GivesTheText) {
  const DoubleRow& row = GetParam();
  EXPECT_EQ(Narrow(TStringCore::number(row.value, row.format, row.precision, row.decimalForm)), row.wanted);
  TStringCore text(u"before");
  EXPECT_EQ(Narrow(text.setNum(row.value, row.format, row.precision, row.decimalForm)), row.wanted);
}

constexpr DoubleRow DoubleRows[] = {
    {"Infinity", Infinity, 'f', 3, true, "inf"},
    {"NegativeInfinity", -Infinity, 'g', 3, true, "-inf"},
    {"InfinityUpper", Infinity, 'E', 3, false, "inf"},
    {"NotANumber", NotANumber, 'g', 6, true, "nan"},
    {"NegativeNotANumber", -NotANumber, 'G', 6, false, "nan"},
    {"DecimalFormDropsZeros", 1.5, 'f', 3, true, "1.5"},
    {"DecimalFormKeepsOneZero", 2.0, 'f', 3, true, "2.0"},
    {"DecimalFormAddsPointZero", 2.0, 'g', 6, true, "2.0"},
    {"DecimalFormAddsBeforeExponent", 1e6, 'g', 6, true, "1.0e+06"},
    {"DecimalFormAddsBeforeUpperExponent", 1e6, 'G', 6, true, "1.0E+06"},
    {"DecimalFormLeavesPoint", 1.5, 'g', 6, true, "1.5"},
    {"DecimalFormLosesZerosOfWholeNumber", 100.0, 'f', 0, true, "1"},
    {"DecimalFormZero", 0.0, 'f', 0, true, "0"},
    {"DecimalFormNegativeZero", -0.0, 'f', 2, true, "0.0"},
    {"DecimalFormScientific", 1.5e10, 'e', 5, true, "1.5e+10"},
    {"DecimalFormScientificWhole", 1e10, 'e', 5, true, "1.0e+10"},
    {"DecimalFormScientificNoDigits", 1e10, 'e', 0, true, "1e+10"},
    {"DecimalFormUpperFixed", 2.5, 'F', 4, true, "2.5"},
    {"PlainFixed", 1.5, 'f', 3, false, "1.500"},
    {"PlainGeneral", 2.0, 'g', 6, false, "2"},
    {"NegativeZero", -0.0, 'f', 1, false, "0.0"},
    {"NegativeZeroGeneral", -0.0, 'g', 6, false, "0"},
    {"NegativeZeroScientific", -0.0, 'e', 2, false, "0.00e+00"},
    {"NegativeZeroUpperScientific", -0.0, 'E', 2, false, "0.00E+00"},
    {"RoundsToNegativeZero", -1e-300, 'f', 2, false, "0.00"},
    {"StaysNegative", -0.01, 'f', 2, false, "-0.01"},
    {"SmallScientificStaysNegative", -1e-300, 'e', 2, false, "-1.00e-300"},
    {"TwoExponentDigits", 1e6, 'e', 0, false, "1e+06"},
    {"ThreeExponentDigits", 1e100, 'e', 0, false, "1e+100"},
    {"OtherFormatIsFixed", 1.5, 'x', 2, false, "1.50"},
    {"OtherFormatIsFixedWithDefault", 1.5, 'q', -1, false, "1.500000"},
    {"NulFormatIsFixed", 1.5, '\0', 1, false, "1.5"},
    {"HighBitFormatIsFixed", 1.5, static_cast<char>(0xE5), 1, false, "1.5"},
    {"NegativePrecisionFixed", 1.5, 'f', -1, false, "1.500000"},
    {"NegativePrecisionUpperFixed", 1.5, 'F', -7, false, "1.500000"},
    {"NegativePrecisionScientific", 1.5, 'e', -1, false, "1.500000e+00"},
    {"NegativePrecisionGeneral", 1.0 / 3, 'g', -1, false, "0.333333"},
    {"LowestPrecisionGeneral", 1.0 / 3, 'G', std::numeric_limits<int>::min(), false, "0.333333"},
    {"TooLong", 1.0, 'f', 2000, false, ""},
    {"TooLongDecimalForm", 1.0, 'e', 2000, true, ""},
    {"HugePrecisionGeneral", 1.5, 'g', std::numeric_limits<int>::max(), false, "1.5"},
    {"Subnormal", 4.9406564584124654e-324, 'g', 6, false, "4.94066e-324"},
};
INSTANTIATE_TEST_SUITE_P(Rows, TStringCoreDouble, testing::ValuesIn(DoubleRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TStringCoreDoubleDefaults, AreGeneralWithSixDigits) {
  EXPECT_EQ(Narrow(TStringCore::number(1.0 / 3)), "0.333333");
  EXPECT_EQ(Narrow(TStringCore::number(2.0)), "2");
  EXPECT_EQ(Narrow(TStringCore().setNum(0.5F)), "0.5");
}

TEST(TStringCoreDoubleLimit, FillsThePrintBuffer) {
  EXPECT_EQ(TStringCore::number(1.0, 'f', 1021).length(), 1023);
  EXPECT_EQ(TStringCore::number(1.0, 'f', 1022).length(), 0);
  EXPECT_EQ(TStringCore::number(-0.0, 'f', 1020).length(), 1022);
}

// A print of the C runtime with the sign of a shown zero taken off; its exponents have two digits at least already.
std::string RuntimePlain(double value, char format, int precision) {
  const char pattern[] = {'%', '.', '*', format, '\0'};
  char buffer[2048];
  std::snprintf(buffer, sizeof buffer, pattern, precision, value);
  std::string text(buffer);
  const std::string mantissa = text.substr(0, text.find_first_of("eE"));
  if (text[0] == '-' && mantissa.find_first_not_of("-0.") == std::string::npos) text.erase(0, 1);
  return text;
}

TEST(TStringCoreDoubleModel, AgreesWithTheRuntimeForAnyBitPattern) {
  qilsys::test::SeededRandom random;
  const char formats[] = {'e', 'E', 'f', 'F', 'g', 'G'};
  for (int round = 0; round < qilsys::test::Rounds(10000); ++round) {
    const auto value = std::bit_cast<double>(random.Between<std::uint64_t>(0, ~std::uint64_t{0}));
    if (!std::isfinite(value)) continue;
    const char format = formats[random.Between(0, 5)];
    const int precision = random.Between(0, 30);
    ASSERT_EQ(Narrow(TStringCore::number(value, format, precision)), RuntimePlain(value, format, precision));
  }
}

// Small numbers with few digits, where zeros at the end of the mantissa are common.
TEST(TStringCoreDoubleModel, DecimalFormDropsOnlyZeros) {
  qilsys::test::SeededRandom random;
  for (int round = 0; round < qilsys::test::Rounds(5000); ++round) {
    const double value = random.Between(-100000, 100000) / 1000.0;
    std::string wanted = RuntimePlain(value, 'f', 5);
    while (wanted.back() == '0' && wanted[wanted.size() - 2] != '.') wanted.pop_back();
    ASSERT_EQ(Narrow(TStringCore::number(value, 'f', 5, true)), wanted);
  }
}

TEST(TStringCoreDoubleLocale, PrintsAPointUnderACommaLocale) {
  const qilsys::test::CommaLocale locale;
  if (!locale.Active()) GTEST_SKIP() << "no locale with a decimal comma on this machine, and none could be compiled";
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%.1f", 1.5);
  ASSERT_STREQ(buffer, "1,5");
  EXPECT_EQ(Narrow(TStringCore::number(1.5, 'f', 2)), "1.50");
  EXPECT_EQ(Narrow(TStringCore::number(1.5, 'g', 6, true)), "1.5");
  EXPECT_EQ(Narrow(TStringCore::number(1234567.5, 'f', 1)), "1234567.5");
}

}  // namespace
