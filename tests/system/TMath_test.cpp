#include "qilsys/TMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "support/RowName.h"

namespace {

constexpr int s_min = std::numeric_limits<int>::min();
constexpr int s_max = std::numeric_limits<int>::max();
constexpr double s_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double s_infinity = std::numeric_limits<double>::infinity();
constexpr double s_pi = 3.141592653589793;

TEST(TMathAngles, GoThereAndBack) {
  EXPECT_EQ(TMath::DegreesToRadians(180.0), s_pi);
  EXPECT_EQ(TMath::RadiansToDegrees(s_pi), 180.0);
  EXPECT_EQ(TMath::DegreesToRadians(0.0), 0.0);
}

TEST(TMathAngles, MultiplyBeforeTheyDivide) {
  // The other order gives neighbours of these.
  EXPECT_EQ(TMath::DegreesToRadians(39.0), 39.0 * s_pi / 180.0);
  EXPECT_EQ(TMath::RadiansToDegrees(0.7), 0.7 * 180.0 / s_pi);
  EXPECT_EQ(TMath::DegreesToRadians(1e308), s_infinity);
}

struct MulDivRow {
  const char* name;
  int a;
  int b;
  int c;
  int result;
};
void PrintTo(const MulDivRow& row, std::ostream* out) { *out << row.name; }

class MulDiv : public testing::TestWithParam<MulDivRow> {};

TEST_P(MulDiv, Gives) { EXPECT_EQ(TMath::MulDiv(GetParam().a, GetParam().b, GetParam().c), GetParam().result); }

INSTANTIATE_TEST_SUITE_P(Table, MulDiv,
                         testing::Values(MulDivRow{"DivisorZero", 1, 1, 0, -1}, MulDivRow{"HalfGoesUp", 5, 1, 2, 3},
                                         MulDivRow{"BelowHalf", 4, 1, 3, 1}, MulDivRow{"AboveHalf", 5, 1, 3, 2},
                                         // -5 + 1 = -4, divided by 2.
                                         MulDivRow{"NegativeProduct", -5, 1, 2, -2},
                                         // 5 + (-1) = 4, divided by -2.
                                         MulDivRow{"NegativeDivisor", 5, 1, -2, -2},
                                         // -5 + (-1) = -6, divided by -2.
                                         MulDivRow{"BothNegative", -5, 1, -2, 3},
                                         // 1 + (-3 / 2 = -1) = 0.
                                         MulDivRow{"HalfOfADivisorTruncates", 1, 1, -3, 0},
                                         MulDivRow{"WideProduct", s_max, s_max, s_max, s_max},
                                         MulDivRow{"ClampedAbove", s_max, 2, 1, s_max},
                                         MulDivRow{"ClampedBelow", s_min, 2, 1, s_min},
                                         MulDivRow{"LargestProduct", s_min, s_min, 1, s_max},
                                         MulDivRow{"LargestProductByMinusOne", s_min, s_min, -1, s_min},
                                         MulDivRow{"MinimumByMinusOne", s_min, 1, -1, s_max},
                                         // 1 + (-2^30), divided by -2^31.
                                         MulDivRow{"MinimumAsDivisor", 1, 1, s_min, 0}),
                         qilsys::test::RowName<MulDivRow>);

struct RoundRow {
  const char* name;
  double value;
  short digits;
  double result;
};
void PrintTo(const RoundRow& row, std::ostream* out) { *out << row.name; }

class Round2 : public testing::TestWithParam<RoundRow> {};

TEST_P(Round2, Gives) {
  const double result = TMath::round2(GetParam().value, GetParam().digits);
  EXPECT_EQ(result, GetParam().result);
  EXPECT_EQ(std::signbit(result), std::signbit(GetParam().result));
}

INSTANTIATE_TEST_SUITE_P(
    Table, Round2,
    testing::Values(RoundRow{"HalfAwayFromZero", 2.5, 0, 3.0}, RoundRow{"NegativeHalf", -2.5, 0, -3.0},
                    RoundRow{"NeverNegativeZero", -0.4, 0, 0.0}, RoundRow{"NegativeZeroItself", -0.0, 0, 0.0},
                    RoundRow{"NegativeDigits", 1234.0, -2, 1200.0}, RoundRow{"TwoDigits", 3.14159, 2, 3.14},
                    RoundRow{"LastOfTheTable", 0.1, 15, 0.1}, RoundRow{"BeyondTheTable", 0.5, 16, 0.5},
                    RoundRow{"ExactQuarter", 0.125, 2, 0.13}, RoundRow{"NegativeQuarter", -0.125, 2, -0.13},
                    RoundRow{"Infinity", s_infinity, 2, s_infinity},
                    RoundRow{"NegativeInfinity", -s_infinity, 2, -s_infinity},
                    RoundRow{"ScaledBeyondRange", 1e308, 15, s_infinity}),
    qilsys::test::RowName<RoundRow>);

TEST(Round2NotANumber, Stays) { EXPECT_TRUE(std::isnan(TMath::round2(s_nan, 2))); }

TEST(Identical, Numbers) {
  EXPECT_TRUE(TMath::identical(1.5, 1.5));
  EXPECT_FALSE(TMath::identical(1.5, 1.6));
  EXPECT_TRUE(TMath::identical(s_nan, s_nan));
  EXPECT_TRUE(TMath::identical(s_nan, -s_nan));
  EXPECT_TRUE(TMath::identical(0.0, -0.0));
  EXPECT_FALSE(TMath::identical(s_nan, 1.0));
  EXPECT_FALSE(TMath::identical(1.0, s_nan));
}

using Row = std::vector<double>;
using Table = std::vector<Row>;

TEST(Identical, Vectors) {
  EXPECT_TRUE(TMath::identical(Row{}, Row{}));
  EXPECT_TRUE(TMath::identical(Row{1, s_nan, -0.0}, Row{1, s_nan, 0.0}));
  EXPECT_FALSE(TMath::identical(Row{1}, Row{1, 2}));
  EXPECT_FALSE(TMath::identical(Row{1, 2}, Row{1, 3}));
}

TEST(Identical, VectorsOfVectors) {
  EXPECT_TRUE(TMath::identical(Table{}, Table{}));
  EXPECT_TRUE(TMath::identical(Table{{1}, {}}, Table{{1}, {}}));
  EXPECT_TRUE(TMath::identical(Table{{s_nan}}, Table{{s_nan}}));
  EXPECT_FALSE(TMath::identical(Table{{1}}, Table{{1}, {}}));
  EXPECT_FALSE(TMath::identical(Table{{1, 2}}, Table{{1}}));
  EXPECT_FALSE(TMath::identical(Table{{1}}, Table{{2}}));
}

}  // namespace
