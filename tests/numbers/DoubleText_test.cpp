#include "numbers/DoubleText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "support/Random.h"

namespace qilsys::numbers {
namespace {

std::string Printed(double value, char format, int precision) {
  return std::string(PrintDouble(value, format, precision).View());
}

// What the C runtime prints, by the rule that a text which does not fit with its terminator is no text.
std::string Runtime(double value, char format, int precision) {
  const char pattern[] = {'%', '.', '*', format, '\0'};
  char buffer[DoubleText::PrintLimit];
  const int wanted = std::snprintf(buffer, sizeof buffer, pattern, precision, value);
  return wanted < DoubleText::PrintLimit ? std::string(buffer) : std::string();
}

double AnyFinite(test::SeededRandom& random) {
  for (;;) {
    const auto value = std::bit_cast<double>(random.Between<std::uint64_t>(0, ~std::uint64_t{0}));
    if (std::isfinite(value)) return value;
  }
}

struct PrintRow {
  const char* name;
  double value;
  char format;
  int precision;
};

class DoubleTextPrint : public testing::TestWithParam<PrintRow> {};

TEST_P(DoubleTextPrint, GivesWhatTheRuntimePrints) {
  const PrintRow& row = GetParam();
  EXPECT_EQ(Printed(row.value, row.format, row.precision), Runtime(row.value, row.format, row.precision));
}

constexpr double Max = std::numeric_limits<double>::max();
constexpr double MinSubnormal = std::numeric_limits<double>::denorm_min();
constexpr PrintRow PrintRows[] = {
    {"Zero", 0.0, 'g', 6},
    {"NegativeZero", -0.0, 'f', 3},
    {"UpperExponent", 1e100, 'E', 3},
    {"UpperGeneral", 1e-100, 'G', 3},
    {"UpperFixed", 1.25, 'F', 1},
    {"HalfToEven", 2.5, 'f', 0},
    {"LargestFixed", Max, 'f', 20},
    {"SmallestExact", MinSubnormal, 'e', 900},
    {"SmallestGeneralAllDigits", MinSubnormal, 'g', 767},
    {"GeneralBeyondAllDigits", -MinSubnormal, 'g', 2000},
    {"GeneralPrecisionZero", 123.0, 'g', 0},
    {"FixedJustFits", 1.0, 'f', 1021},
    {"FixedJustTooLong", 1.0, 'f', 1022},
    {"FixedPrecisionAtLimit", 1.0, 'f', 1023},
    {"FixedPrecisionAboveLimit", 1.0, 'f', 5000},
    {"NegativeFixedJustFits", -1.0, 'f', 1020},
    {"NegativeFixedJustTooLong", -1.0, 'f', 1021},
    {"LargestFixedJustFits", Max, 'f', 713},
    {"LargestFixedJustTooLong", Max, 'f', 714},
    {"ScientificJustFits", 1.0, 'e', 1017},
    {"ScientificJustTooLong", 1.0, 'e', 1018},
    {"LongExponentJustFits", 1e300, 'e', 1016},
    {"LongExponentJustTooLong", 1e300, 'e', 1017},
};
INSTANTIATE_TEST_SUITE_P(Rows, DoubleTextPrint, testing::ValuesIn(PrintRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(DoubleText, PrintsAsTheRuntimeForAnyBitPattern) {
  test::SeededRandom random;
  const char formats[] = {'e', 'E', 'f', 'F', 'g', 'G'};
  for (int round = 0; round < test::Rounds(20000); ++round) {
    const double value = AnyFinite(random);
    const char format = formats[random.Between(0, 5)];
    const int precision = random.OneIn(8) ? random.Between(0, 1100) : random.Between(0, 25);
    ASSERT_EQ(Printed(value, format, precision), Runtime(value, format, precision))
        << std::hexfloat << value << ' ' << format << ' ' << std::dec << precision;
  }
}

TEST(DoubleText, PrintsNegativePrecisionAsTheDefault) {
  for (const char format : {'e', 'E', 'f', 'g', 'G'}) {
    EXPECT_EQ(Printed(1.0 / 3, format, -1), Runtime(1.0 / 3, format, 6)) << format;
    EXPECT_EQ(Printed(1e30 / 3, format, std::numeric_limits<int>::min()), Runtime(1e30 / 3, format, 6)) << format;
  }
}

TEST(DoubleText, PrintsGeneralAtTheLargestPrecision) {
  EXPECT_EQ(Printed(1.5, 'g', std::numeric_limits<int>::max()), "1.5");
  EXPECT_EQ(Printed(1.5, 'f', std::numeric_limits<int>::max()), "");
  EXPECT_EQ(Printed(1.5, 'e', std::numeric_limits<int>::max()), "");
}

struct StepRow {
  const char* name;
  void (*step)(DoubleText&);
  const char* before;
  const char* after;
};

class DoubleTextStep : public testing::TestWithParam<StepRow> {};

TEST_P(DoubleTextStep, GivesTheTidyText) {
  DoubleText text{std::string_view(GetParam().before)};
  GetParam().step(text);
  EXPECT_EQ(text.View(), GetParam().after);
}

constexpr StepRow StepRows[] = {
    {"ExponentOfEmpty", TidyExponent, "", ""},
    {"ExponentAbsent", TidyExponent, "1.5", "1.5"},
    {"ExponentOneDigitOfThree", TidyExponent, "1e+006", "1e+06"},
    {"ExponentTwoDigitsOfThree", TidyExponent, "1e+012", "1e+12"},
    {"ExponentThreeDigits", TidyExponent, "1e+100", "1e+100"},
    {"ExponentTwoDigits", TidyExponent, "1e-06", "1e-06"},
    {"ExponentThreeZeros", TidyExponent, "1e+000", "1e+00"},
    {"ExponentTwoZeros", TidyExponent, "1e+00", "1e+00"},
    {"ExponentTwoDigitsOfFour", TidyExponent, "1e-0012", "1e-12"},
    {"ExponentOneDigitOfFour", TidyExponent, "1E-0003", "1E-03"},
    {"ExponentWithoutSign", TidyExponent, "1e006", "1e06"},
    {"ExponentThreeDigitsOfFour", TidyExponent, "1e+0123", "1e+123"},
    {"ExponentAtTheStart", TidyExponent, "e+006", "e+006"},
    {"ExponentWithoutDigits", TidyExponent, "1e", "1e"},
    {"PointZeroBeforeExponent", DropPointZero, "1.0e+06", "1e+06"},
    {"PointZeroShortMantissa", DropPointZero, ".0e+06", ".0e+06"},
    {"PointZeroWithoutExponent", DropPointZero, "1.0", "1.0"},
    {"PointZeroOtherDigits", DropPointZero, "1.10e+06", "1.10e+06"},
    {"AddPointZeroAtEnd", AddPointZero, "2", "2.0"},
    {"AddPointZeroBeforeExponent", AddPointZero, "1e+06", "1.0e+06"},
    {"AddPointZeroToNone", AddPointZero, "1.5", "1.5"},
    {"AddPointZeroToPointAndExponent", AddPointZero, "1.5e+06", "1.5e+06"},
    {"TrailingZerosOfEmpty", DropTrailingZeros, "", ""},
    {"TrailingZeros", DropTrailingZeros, "1.500", "1.5"},
    {"TrailingZerosKeepOne", DropTrailingZeros, "2.000", "2.0"},
    {"TrailingZerosWithoutPoint", DropTrailingZeros, "100", "1"},
    {"TrailingZerosOfZero", DropTrailingZeros, "0", "0"},
    {"TrailingZerosOfPointZero", DropTrailingZeros, "0.0000", "0.0"},
    {"TrailingZerosOfExponent", DropTrailingZeros, "1.2500e+10", "1.25e+10"},
    {"TrailingZerosAllOfExponent", DropTrailingZeros, "1.000e+10", "1.0e+10"},
    {"TrailingZerosNone", DropTrailingZeros, "1e+10", "1e+10"},
    {"TrailingZerosNegative", DropTrailingZeros, "-10", "-1"},
    {"SignOfZero", DropNegativeZeroSign, "-0", "0"},
    {"SignOfPointZero", DropNegativeZeroSign, "-0.00", "0.00"},
    {"SignOfZeroWithExponent", DropNegativeZeroSign, "-0.0e+00", "0.0e+00"},
    {"SignOfZeroWithUpperExponent", DropNegativeZeroSign, "-0E+00", "0E+00"},
    {"SignOfSmall", DropNegativeZeroSign, "-0.01", "-0.01"},
    {"SignOfPositive", DropNegativeZeroSign, "0.0", "0.0"},
};
INSTANTIATE_TEST_SUITE_P(Rows, DoubleTextStep, testing::ValuesIn(StepRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qilsys::numbers
