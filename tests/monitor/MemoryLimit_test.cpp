#include "monitor/MemoryLimit.h"

#include <gtest/gtest.h>

#include <limits>

namespace qilsys::monitor {
namespace {

constexpr std::uint64_t s_gib = std::uint64_t{1} << 30;

TEST(MemoryLimitTest, TakesAFractionOfTheMachine) { EXPECT_EQ(MemoryLimitFor(16 * s_gib, 0, 0.75, 2.0), 12 * s_gib); }

TEST(MemoryLimitTest, LeavesTheReserveFree) { EXPECT_EQ(MemoryLimitFor(16 * s_gib, 0, 0.95, 2.0), 14 * s_gib); }

TEST(MemoryLimitTest, ExactlyTheReserveIsEnough) { EXPECT_EQ(MemoryLimitFor(16 * s_gib, 0, 0.875, 2.0), 14 * s_gib); }

TEST(MemoryLimitTest, TakesTheMinimumAsTheBaseOfASmallMachine) {
  EXPECT_EQ(MemoryLimitFor(4 * s_gib, 8, 0.25, 1.0), 2 * s_gib);
}

TEST(MemoryLimitTest, ABaseAboveTheMachineWrapsAndPasses) {
  EXPECT_EQ(MemoryLimitFor(4 * s_gib, 16, 0.5, 1.0), 8 * s_gib);
}

TEST(MemoryLimitTest, AReserveAboveTheMachineWraps) {
  EXPECT_EQ(MemoryLimitFor(4 * s_gib, 0, 0.5, 6.0), std::uint64_t{0} - 2 * s_gib);
}

TEST(MemoryLimitTest, AFractionalReserveIsTruncatedToBytes) {
  EXPECT_EQ(MemoryLimitFor(4 * s_gib, 0, 1.0, 0.5), 4 * s_gib - s_gib / 2);
}

TEST(MemoryLimitTest, TheLargestMinimumIsShiftedIn64Bits) {
  EXPECT_EQ(MemoryLimitFor(s_gib, 0xFFFFFFFF, 1.0, 0.0), std::uint64_t{0xFFFFFFFF} << 30);
}

TEST(MemoryLimitTest, NumbersWithoutAnUnsignedValueStayDefined) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double huge = std::numeric_limits<double>::infinity();
  constexpr std::uint64_t highestBit = std::uint64_t{1} << 63;
  EXPECT_EQ(MemoryLimitFor(4 * s_gib, 0, nan, 0.0), highestBit);
  EXPECT_EQ(MemoryLimitFor(4 * s_gib, 0, huge, 0.0), highestBit);
  EXPECT_EQ(MemoryLimitFor(4 * s_gib, 0, -0.5, 0.0), std::uint64_t{0} - 2 * s_gib);
}

}  // namespace
}  // namespace qilsys::monitor
