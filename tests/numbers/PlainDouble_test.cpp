#include "numbers/PlainDouble.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "support/Random.h"

namespace qilsys::numbers {
namespace {

constexpr char Formats[] = {'f', 'F', 'g', 'G'};

std::string Runtime(double value, char format, int precision) {
  const char pattern[] = {'%', '.', '*', format, '\0'};
  char buffer[512];
  std::snprintf(buffer, sizeof buffer, pattern, precision, value);
  return buffer;
}

// True if the quick way took the number; then it must agree with the runtime.
bool PrintsAsTheRuntime(double value, char format, int precision) {
  DoubleText text;
  if (!PrintPlainDouble(value, format, precision, text)) {
    EXPECT_EQ(text.length, 0);
    return false;
  }
  EXPECT_EQ(text.View(), Runtime(value, format, precision)) << std::hexfloat << value << ' ' << format << precision;
  return true;
}

TEST(PlainDouble, PrintsNumbersOfFewDecimals) {
  test::SeededRandom random;
  for (int round = 0; round < test::Rounds(20000) && !testing::Test::HasFailure(); ++round) {
    double scale = 1;
    for (int i = random.Between(0, 6); i > 0; --i) scale *= 10;
    const double value = random.Between(-10000000, 10000000) / scale;
    const bool taken = PrintsAsTheRuntime(value, 'f', random.Between(0, 15));
    EXPECT_TRUE(taken || (value != 0 && std::abs(value) < 0.004)) << value;
    PrintsAsTheRuntime(value, 'g', random.Between(0, 15));
  }
}

// Few bits behind the point make numbers that stand in the middle between two texts.
TEST(PlainDouble, RoundsTheMiddleToEven) {
  for (int sixteenths = 0; sixteenths < 1024; ++sixteenths) {
    for (int precision = 0; precision <= 4; ++precision) {
      EXPECT_TRUE(PrintsAsTheRuntime(sixteenths / 16.0, 'f', precision));
      EXPECT_TRUE(PrintsAsTheRuntime(-sixteenths / 16.0, 'F', precision));
      PrintsAsTheRuntime(sixteenths / 16.0, 'g', precision);
    }
  }
}

TEST(PlainDouble, PrintsBothSidesOfEveryPowerOfTen) {
  double power = 1e-5;
  for (int exponent = -5; exponent <= 17; ++exponent, power *= 10) {
    for (const double value : {std::nextafter(power, 0.0), power, std::nextafter(power, 1e300), power * 0.9999996}) {
      for (const char format : Formats) {
        for (int precision = 0; precision <= 17; ++precision) PrintsAsTheRuntime(value, format, precision);
      }
    }
  }
}

TEST(PlainDouble, PrintsAnyNumberOfTheRangeItTakes) {
  test::SeededRandom random;
  int taken = 0;
  const int rounds = test::Rounds(50000);
  for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
    const auto mantissa = static_cast<double>(random.Between<std::uint64_t>(1ULL << 52, (1ULL << 53) - 1));
    const double value = std::ldexp(mantissa, -random.Between(0, 64)) * (random.OneIn(2) ? 1 : -1);
    taken += PrintsAsTheRuntime(value, Formats[random.Between(0, 3)], random.Between(0, 16)) ? 1 : 0;
  }
  EXPECT_GT(taken, rounds / 2);
}

TEST(PlainDouble, LeavesTheRestToTheGeneralPrint) {
  DoubleText text;
  EXPECT_FALSE(PrintPlainDouble(1.5, 'e', 3, text));
  EXPECT_FALSE(PrintPlainDouble(1.5, 'E', 3, text));
  EXPECT_FALSE(PrintPlainDouble(1.5, 'f', 16, text));
  EXPECT_FALSE(PrintPlainDouble(1e300, 'f', 1, text));
  EXPECT_FALSE(PrintPlainDouble(1e-300, 'f', 1, text));
  EXPECT_FALSE(PrintPlainDouble(std::numeric_limits<double>::denorm_min(), 'g', 6, text));
  EXPECT_FALSE(PrintPlainDouble(1234567.5, 'g', 6, text));
  EXPECT_FALSE(PrintPlainDouble(999999.5, 'g', 6, text));
  EXPECT_EQ(text.length, 0);
}

}  // namespace
}  // namespace qilsys::numbers
