#include "qilsys/TMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "support/RowName.h"

namespace {

constexpr int Min = std::numeric_limits<int>::min();
constexpr int Max = std::numeric_limits<int>::max();
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double PlusInfinity = std::numeric_limits<double>::infinity();
constexpr double Pi = 3.141592653589793;

TEST(TMathAngles, GoThereAndBack) {
  EXPECT_EQ(TMath::DegreesToRadians(180.0), Pi);
  EXPECT_EQ(TMath::RadiansToDegrees(Pi), 180.0);
  EXPECT_EQ(TMath::DegreesToRadians(0.0), 0.0);
}

TEST(TMathAngles, MultiplyBeforeTheyDivide) {
  // The other order gives neighbours of these.
  EXPECT_EQ(TMath::DegreesToRadians(39.0), 39.0 * Pi / 180.0);
  EXPECT_EQ(TMath::RadiansToDegrees(0.7), 0.7 * 180.0 / Pi);
  EXPECT_EQ(TMath::DegreesToRadians(1e308), PlusInfinity);
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
                                         MulDivRow{"WideProduct", Max, Max, Max, Max},
                                         MulDivRow{"ClampedAbove", Max, 2, 1, Max},
                                         MulDivRow{"ClampedBelow", Min, 2, 1, Min},
                                         MulDivRow{"LargestProduct", Min, Min, 1, Max},
                                         MulDivRow{"LargestProductByMinusOne", Min, Min, -1, Min},
                                         MulDivRow{"MinimumByMinusOne", Min, 1, -1, Max},
                                         // 1 + (-2^30), divided by -2^31.
                                         MulDivRow{"MinimumAsDivisor", 1, 1, Min, 0}),
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
                    RoundRow{"Infinity", PlusInfinity, 2, PlusInfinity},
                    RoundRow{"NegativeInfinity", -PlusInfinity, 2, -PlusInfinity},
                    RoundRow{"ScaledBeyondRange", 1e308, 15, PlusInfinity}),
    qilsys::test::RowName<RoundRow>);

TEST(Round2NotANumber, Stays) { EXPECT_TRUE(std::isnan(TMath::round2(Nan, 2))); }

TEST(Identical, Numbers) {
  EXPECT_TRUE(TMath::identical(1.5, 1.5));
  EXPECT_FALSE(TMath::identical(1.5, 1.6));
  EXPECT_TRUE(TMath::identical(Nan, Nan));
  EXPECT_TRUE(TMath::identical(Nan, -Nan));
  EXPECT_TRUE(TMath::identical(0.0, -0.0));
  EXPECT_FALSE(TMath::identical(Nan, 1.0));
  EXPECT_FALSE(TMath::identical(1.0, Nan));
}

using Row = std::vector<double>;
using Table = std::vector<Row>;

TEST(Identical, Vectors) {
  EXPECT_TRUE(TMath::identical(Row{}, Row{}));
  EXPECT_TRUE(TMath::identical(Row{1, Nan, -0.0}, Row{1, Nan, 0.0}));
  EXPECT_FALSE(TMath::identical(Row{1}, Row{1, 2}));
  EXPECT_FALSE(TMath::identical(Row{1, 2}, Row{1, 3}));
}

TEST(Identical, VectorsOfVectors) {
  EXPECT_TRUE(TMath::identical(Table{}, Table{}));
  EXPECT_TRUE(TMath::identical(Table{{1}, {}}, Table{{1}, {}}));
  EXPECT_TRUE(TMath::identical(Table{{Nan}}, Table{{Nan}}));
  EXPECT_FALSE(TMath::identical(Table{{1}}, Table{{1}, {}}));
  EXPECT_FALSE(TMath::identical(Table{{1, 2}}, Table{{1}}));
  EXPECT_FALSE(TMath::identical(Table{{1}}, Table{{2}}));
}

}  // namespace
