#include "numbers/StringToDouble.h"

#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "support/CommaLocale.h"
#include "support/RowName.h"

namespace {

constexpr double s_infinity = std::numeric_limits<double>::infinity();
constexpr double s_smallest = std::numeric_limits<double>::denorm_min();
constexpr double s_largestSubnormal = std::numeric_limits<double>::min() - s_smallest;
constexpr int s_kept = 77;  // What errno held before.

/// A subnormal number to its last digit, which stands 1074 places behind the point, by paper and pencil: halving.
std::string Decimals(double value) {
  std::string digits(1074, '0');
  std::uint64_t multiple = std::bit_cast<std::uint64_t>(value);
  // value is multiple / 2^1074: halve what has been read of the multiple, from its lowest bit on.
  for (int place = 0; place < 1074; ++place, multiple >>= 1) {
    int rest = static_cast<int>(multiple & 1);
    for (char& digit : digits) {
      const int tens = rest * 10 + (digit - '0');
      digit = static_cast<char>('0' + tens / 2);
      rest = tens % 2;
    }
  }
  return "0." + digits;
}

struct Row {
  const char* name;
  std::string text;
  double value;
  std::size_t used;
  int error;
};
void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class StringToDouble : public testing::TestWithParam<Row> {};

TEST_P(StringToDouble, GivesValueEndAndErrno) {
  const Row& row = GetParam();
  errno = s_kept;
  const char* end = nullptr;
  const double value = qilsys::numbers::StringToDouble(row.text.c_str(), &end);
  const int error = errno;
  EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(row.value)) << value;
  EXPECT_EQ(static_cast<std::size_t>(end - row.text.c_str()), row.used);
  EXPECT_EQ(error, row.error);
}

const Row s_rows[] = {
    {"Plain", "1.5", 1.5, 3, s_kept},
    {"Empty", "", 0, 0, s_kept},
    {"SpaceOnly", " \t", 0, 0, s_kept},
    {"SpaceInFront", " \t\n\v\f\r12abc", 12, 8, s_kept},
    {"Minus", "-1", -1, 2, s_kept},
    {"Plus", "+1", 1, 2, s_kept},
    {"SignAlone", "-", 0, 0, s_kept},
    {"TwoSigns", "--1", 0, 0, s_kept},
    {"PlusMinus", "+-1", 0, 0, s_kept},
    {"SignAndSpace", "- 1", 0, 0, s_kept},
    {"NegativeZero", "-0.0", -0.0, 4, s_kept},
    {"PointAlone", ".", 0, 0, s_kept},
    {"PointInFront", ".5", 0.5, 2, s_kept},
    {"PointBehind", "5.", 5, 2, s_kept},
    {"Comma", "1,5", 1, 1, s_kept},
    {"ExponentWithoutDigits", "1e", 1, 1, s_kept},
    {"ExponentSignAlone", "1e+", 1, 1, s_kept},
    {"ExponentAlone", "e5", 0, 0, s_kept},
    {"ExponentOfFortran", "1d5", 1, 1, s_kept},
    {"PlusInExponent", "1e+3", 1000, 4, s_kept},
    {"Hexadecimal", "0x1.8p1", 3, 7, s_kept},
    {"HexadecimalUpper", "-0XAP-1", -5, 7, s_kept},
    {"HexadecimalPointInFront", "0x.8", 0.5, 4, s_kept},
    {"HexadecimalPrefixAlone", "0x", 0, 1, s_kept},
    {"HexadecimalPointAlone", "0x.", 0, 1, s_kept},
    {"HexadecimalOtherLetter", "0xg", 0, 1, s_kept},
    {"HexadecimalSignBehindPrefix", "0x-1", 0, 1, s_kept},
    {"HexadecimalPlusInExponent", "0x1p+1", 2, 6, s_kept},
    {"HexadecimalMinusInExponent", "0x1p-1", 0.5, 6, s_kept},
    {"HexadecimalPlusMinusInExponent", "0x1p+-1", 1, 3, s_kept},
    {"HexadecimalPlusMinusUpper", "0X10P+-4", 16, 4, s_kept},
    {"HexadecimalMinusPlusInExponent", "0x1p-+1", 1, 3, s_kept},
    {"HexadecimalPlusPlusInExponent", "0x1p++1", 1, 3, s_kept},
    {"HexadecimalMinusMinusInExponent", "0x1p--1", 1, 3, s_kept},
    {"HexadecimalSignsBehindTheNumber", "0x1zp+-1", 1, 3, s_kept},
    {"HexadecimalExponentSignAlone", "0x1p+", 1, 3, s_kept},
    {"PlusMinusInExponent", "1e+-5", 1, 1, s_kept},
    {"HexadecimalTooLarge", "0x1p1024", s_infinity, 8, ERANGE},
    {"HexadecimalTooSmall", "0x1p-1080", 0, 9, ERANGE},
    {"Largest", "1.7976931348623157e308", std::numeric_limits<double>::max(), 22, s_kept},
    {"SmallestNormal", "2.2250738585072014e-308", std::numeric_limits<double>::min(), 23, s_kept},
    {"RoundsUpToTheSmallestNormal", "2.2250738585072012e-308", std::numeric_limits<double>::min(), 23, s_kept},
    {"Subnormal", "1e-320", 1e-320, 6, ERANGE},
    {"ExactHexadecimalSubnormal", "0x1p-1074", s_smallest, 9, s_kept},
    {"ExactHexadecimalSubnormalOfManyDigits", "-0x0.fffffffffffffp-1022", -s_largestSubnormal, 24, s_kept},
    {"ExactHexadecimalSubnormalWithZeros", "0x00.0018000p-1061", 3 * s_smallest, 18, s_kept},
    {"ExactHexadecimalSubnormalBehindPoint", "0x.000cp-1060", 3 * s_smallest, 13, s_kept},
    {"HexadecimalSubnormalOfOneBitMore", "0x1.8p-1074", 2 * s_smallest, 11, ERANGE},
    {"HexadecimalSubnormalOfOneDigitMore", "0x1.00000000000000000001p-1074", s_smallest, 30, ERANGE},
    {"HexadecimalRoundsUpToTheSmallestNormal", "0x0.fffffffffffff8p-1022", std::numeric_limits<double>::min(), 24,
     s_kept},
    {"ExactDecimalSubnormal", Decimals(s_smallest), s_smallest, 1076, s_kept},
    {"ExactDecimalSubnormalOfMostDigits", Decimals(s_largestSubnormal), s_largestSubnormal, 1076, s_kept},
    {"ExactDecimalSubnormalWithZeros", "000" + Decimals(s_smallest) + "00e0", s_smallest, 1083, s_kept},
    {"DecimalSubnormalOfOneDigitMore", Decimals(s_smallest) + "01", s_smallest, 1078, ERANGE},
    {"DecimalSubnormalOfOneDigitLess", Decimals(s_largestSubnormal).substr(0, 1075), s_largestSubnormal, 1075, ERANGE},
    {"DecimalSubnormalWithExponent", Decimals(s_smallest) + "e-1", 0, 1079, ERANGE},
    {"SmallestSubnormal", "4.9406564584124654e-324", s_smallest, 23, ERANGE},
    {"TooSmall", "-1e-400", -0.0, 7, ERANGE},
    {"TooLarge", "1e400", s_infinity, 5, ERANGE},
    {"NegativeTooLarge", "-1e400", -s_infinity, 6, ERANGE},
    {"ExponentBeyondIntegers", "1e99999999999999999999", s_infinity, 22, ERANGE},
    {"NegativeExponentBeyondIntegers", "1e-99999999999999999999", 0, 23, ERANGE},
    {"ZeroWithLargeExponent", "0e999999", 0, 8, s_kept},
    {"TooLargeWithoutExponent", std::string(400, '9'), s_infinity, 400, ERANGE},
    {"TooSmallWithoutExponent", "." + std::string(400, '0') + "1", 0, 402, ERANGE},
    {"LongButPlain", "1" + std::string(300, '0') + "e-300", 1, 306, s_kept},
    {"LongFraction", "0." + std::string(400, '0') + "1e401", 1, 407, s_kept},
    {"HalfwayRoundsToEven", "9007199254740993", 9007199254740992, 16, s_kept},
    {"JustAboveHalfway", "9007199254740993.0000000000000000000000000000001", 9007199254740994, 48, s_kept},
    {"Infinity", "inf", s_infinity, 3, s_kept},
    {"NegativeInfinity", "-INFINITY", -s_infinity, 9, s_kept},
};
INSTANTIATE_TEST_SUITE_P(Rows, StringToDouble, testing::ValuesIn(s_rows), qilsys::test::RowName<Row>);

TEST(StringToDoubleLocale, NeverTakesPart) {
  const qilsys::test::CommaLocale locale;
  if (!locale.Active()) GTEST_SKIP() << "no locale with a decimal comma on this machine, and none could be compiled";
  const char* end = nullptr;
  EXPECT_EQ(qilsys::numbers::StringToDouble("1.5", &end), 1.5);
  EXPECT_EQ(qilsys::numbers::StringToDouble("1,5", &end), 1.0);
}

}  // namespace
