#include "monitor/MemoryLimit.h"

#include <gtest/gtest.h>

#include <limits>

namespace qilsys::monitor {
namespace {

constexpr std::uint64_t Gib = std::uint64_t{1} << 30;

TEST(MemoryLimitTest, TakesAFractionOfTheMachine) { EXPECT_EQ(MemoryLimitFor(16 * Gib, 0, 0.75, 2.0), 12 * Gib); }

TEST(MemoryLimitTest, LeavesTheReserveFree) { EXPECT_EQ(MemoryLimitFor(16 * Gib, 0, 0.95, 2.0), 14 * Gib); }

TEST(MemoryLimitTest, ExactlyTheReserveIsEnough) { EXPECT_EQ(MemoryLimitFor(16 * Gib, 0, 0.875, 2.0), 14 * Gib); }

TEST(MemoryLimitTest, TakesTheMinimumAsTheBaseOfASmallMachine) {
  EXPECT_EQ(MemoryLimitFor(4 * Gib, 8, 0.25, 1.0), 2 * Gib);
}

TEST(MemoryLimitTest, ABaseAboveTheMachineWrapsAndPasses) { EXPECT_EQ(MemoryLimitFor(4 * Gib, 16, 0.5, 1.0), 8 * Gib); }

TEST(MemoryLimitTest, AReserveAboveTheMachineWraps) {
  EXPECT_EQ(MemoryLimitFor(4 * Gib, 0, 0.5, 6.0), std::uint64_t{0} - 2 * Gib);
}

TEST(MemoryLimitTest, AFractionalReserveIsTruncatedToBytes) {
  EXPECT_EQ(MemoryLimitFor(4 * Gib, 0, 1.0, 0.5), 4 * Gib - Gib / 2);
}

TEST(MemoryLimitTest, TheLargestMinimumIsShiftedIn64Bits) {
  EXPECT_EQ(MemoryLimitFor(Gib, 0xFFFFFFFF, 1.0, 0.0), std::uint64_t{0xFFFFFFFF} << 30);
}

TEST(MemoryLimitTest, NumbersWithoutAnUnsignedValueStayDefined) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double huge = std::numeric_limits<double>::infinity();
  constexpr std::uint64_t highestBit = std::uint64_t{1} << 63;
  EXPECT_EQ(MemoryLimitFor(4 * Gib, 0, nan, 0.0), highestBit);
  EXPECT_EQ(MemoryLimitFor(4 * Gib, 0, huge, 0.0), highestBit);
  EXPECT_EQ(MemoryLimitFor(4 * Gib, 0, -0.5, 0.0), std::uint64_t{0} - 2 * Gib);
}

}  // namespace
}  // namespace qilsys::monitor
