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

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double Smallest = std::numeric_limits<double>::denorm_min();
constexpr double LargestSubnormal = std::numeric_limits<double>::min() - Smallest;
constexpr int Kept = 77;  // What errno held before.

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
  errno = Kept;
  const char* end = nullptr;
  const double value = qilsys::numbers::StringToDouble(row.text.c_str(), &end);
  const int error = errno;
  EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(row.value)) << value;
  EXPECT_EQ(static_cast<std::size_t>(end - row.text.c_str()), row.used);
  EXPECT_EQ(error, row.error);
}

const Row Rows[] = {
    {"Plain", "1.5", 1.5, 3, Kept},
    {"Empty", "", 0, 0, Kept},
    {"SpaceOnly", " \t", 0, 0, Kept},
    {"SpaceInFront", " \t\n\v\f\r12abc", 12, 8, Kept},
    {"Minus", "-1", -1, 2, Kept},
    {"Plus", "+1", 1, 2, Kept},
    {"SignAlone", "-", 0, 0, Kept},
    {"TwoSigns", "--1", 0, 0, Kept},
    {"PlusMinus", "+-1", 0, 0, Kept},
    {"SignAndSpace", "- 1", 0, 0, Kept},
    {"NegativeZero", "-0.0", -0.0, 4, Kept},
    {"PointAlone", ".", 0, 0, Kept},
    {"PointInFront", ".5", 0.5, 2, Kept},
    {"PointBehind", "5.", 5, 2, Kept},
    {"Comma", "1,5", 1, 1, Kept},
    {"ExponentWithoutDigits", "1e", 1, 1, Kept},
    {"ExponentSignAlone", "1e+", 1, 1, Kept},
    {"ExponentAlone", "e5", 0, 0, Kept},
    {"ExponentOfFortran", "1d5", 1, 1, Kept},
    {"PlusInExponent", "1e+3", 1000, 4, Kept},
    {"Hexadecimal", "0x1.8p1", 3, 7, Kept},
    {"HexadecimalUpper", "-0XAP-1", -5, 7, Kept},
    {"HexadecimalPointInFront", "0x.8", 0.5, 4, Kept},
    {"HexadecimalPrefixAlone", "0x", 0, 1, Kept},
    {"HexadecimalPointAlone", "0x.", 0, 1, Kept},
    {"HexadecimalOtherLetter", "0xg", 0, 1, Kept},
    {"HexadecimalSignBehindPrefix", "0x-1", 0, 1, Kept},
    {"HexadecimalPlusInExponent", "0x1p+1", 2, 6, Kept},
    {"HexadecimalMinusInExponent", "0x1p-1", 0.5, 6, Kept},
    {"HexadecimalPlusMinusInExponent", "0x1p+-1", 1, 3, Kept},
    {"HexadecimalPlusMinusUpper", "0X10P+-4", 16, 4, Kept},
    {"HexadecimalMinusPlusInExponent", "0x1p-+1", 1, 3, Kept},
    {"HexadecimalPlusPlusInExponent", "0x1p++1", 1, 3, Kept},
    {"HexadecimalMinusMinusInExponent", "0x1p--1", 1, 3, Kept},
    {"HexadecimalSignsBehindTheNumber", "0x1zp+-1", 1, 3, Kept},
    {"HexadecimalExponentSignAlone", "0x1p+", 1, 3, Kept},
    {"PlusMinusInExponent", "1e+-5", 1, 1, Kept},
    {"HexadecimalTooLarge", "0x1p1024", Infinity, 8, ERANGE},
    {"HexadecimalTooSmall", "0x1p-1080", 0, 9, ERANGE},
    {"Largest", "1.7976931348623157e308", std::numeric_limits<double>::max(), 22, Kept},
    {"SmallestNormal", "2.2250738585072014e-308", std::numeric_limits<double>::min(), 23, Kept},
    {"RoundsUpToTheSmallestNormal", "2.2250738585072012e-308", std::numeric_limits<double>::min(), 23, Kept},
    {"Subnormal", "1e-320", 1e-320, 6, ERANGE},
    {"ExactHexadecimalSubnormal", "0x1p-1074", Smallest, 9, Kept},
    {"ExactHexadecimalSubnormalOfManyDigits", "-0x0.fffffffffffffp-1022", -LargestSubnormal, 24, Kept},
    {"ExactHexadecimalSubnormalWithZeros", "0x00.0018000p-1061", 3 * Smallest, 18, Kept},
    {"ExactHexadecimalSubnormalBehindPoint", "0x.000cp-1060", 3 * Smallest, 13, Kept},
    {"HexadecimalSubnormalOfOneBitMore", "0x1.8p-1074", 2 * Smallest, 11, ERANGE},
    {"HexadecimalSubnormalOfOneDigitMore", "0x1.00000000000000000001p-1074", Smallest, 30, ERANGE},
    {"HexadecimalRoundsUpToTheSmallestNormal", "0x0.fffffffffffff8p-1022", std::numeric_limits<double>::min(), 24,
     Kept},
    {"ExactDecimalSubnormal", Decimals(Smallest), Smallest, 1076, Kept},
    {"ExactDecimalSubnormalOfMostDigits", Decimals(LargestSubnormal), LargestSubnormal, 1076, Kept},
    {"ExactDecimalSubnormalWithZeros", "000" + Decimals(Smallest) + "00e0", Smallest, 1083, Kept},
    {"DecimalSubnormalOfOneDigitMore", Decimals(Smallest) + "01", Smallest, 1078, ERANGE},
    {"DecimalSubnormalOfOneDigitLess", Decimals(LargestSubnormal).substr(0, 1075), LargestSubnormal, 1075, ERANGE},
    {"DecimalSubnormalWithExponent", Decimals(Smallest) + "e-1", 0, 1079, ERANGE},
    {"SmallestSubnormal", "4.9406564584124654e-324", Smallest, 23, ERANGE},
    {"TooSmall", "-1e-400", -0.0, 7, ERANGE},
    {"TooLarge", "1e400", Infinity, 5, ERANGE},
    {"NegativeTooLarge", "-1e400", -Infinity, 6, ERANGE},
    {"ExponentBeyondIntegers", "1e99999999999999999999", Infinity, 22, ERANGE},
    {"NegativeExponentBeyondIntegers", "1e-99999999999999999999", 0, 23, ERANGE},
    {"ZeroWithLargeExponent", "0e999999", 0, 8, Kept},
    {"TooLargeWithoutExponent", std::string(400, '9'), Infinity, 400, ERANGE},
    {"TooSmallWithoutExponent", "." + std::string(400, '0') + "1", 0, 402, ERANGE},
    {"LongButPlain", "1" + std::string(300, '0') + "e-300", 1, 306, Kept},
    {"LongFraction", "0." + std::string(400, '0') + "1e401", 1, 407, Kept},
    {"HalfwayRoundsToEven", "9007199254740993", 9007199254740992, 16, Kept},
    {"JustAboveHalfway", "9007199254740993.0000000000000000000000000000001", 9007199254740994, 48, Kept},
    {"Infinity", "inf", Infinity, 3, Kept},
    {"NegativeInfinity", "-INFINITY", -Infinity, 9, Kept},
};
INSTANTIATE_TEST_SUITE_P(Rows, StringToDouble, testing::ValuesIn(Rows), qilsys::test::RowName<Row>);

TEST(StringToDoubleLocale, NeverTakesPart) {
  const qilsys::test::CommaLocale locale;
  if (!locale.Active()) GTEST_SKIP() << "no locale with a decimal comma on this machine, and none could be compiled";
  const char* end = nullptr;
  EXPECT_EQ(qilsys::numbers::StringToDouble("1.5", &end), 1.5);
  EXPECT_EQ(qilsys::numbers::StringToDouble("1,5", &end), 1.0);
}

}  // namespace
