#include "monitor/Duration.h"

#include <gtest/gtest.h>

namespace qilsys::monitor {
namespace {

constexpr std::int64_t Highest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t Lowest = std::numeric_limits<std::int64_t>::min();

TEST(DurationTest, MultipliesWithinTheRange) {
  EXPECT_EQ(NanosecondsOf(0), 0);
  EXPECT_EQ(NanosecondsOf(3), 3'000'000'000);
  EXPECT_EQ(MillisecondsOf(3).count(), 3000);
  EXPECT_EQ(MillisecondsOf(-3).count(), -3000);
}

TEST(DurationTest, StopsAtTheEndsOfTheRange) {
  EXPECT_EQ(NanosecondsOf(9'223'372'036), 9'223'372'036'000'000'000);
  EXPECT_EQ(NanosecondsOf(9'223'372'037), Highest);
  EXPECT_EQ(NanosecondsOf(Highest), Highest);
  EXPECT_EQ(NanosecondsOf(Lowest), Lowest);
  EXPECT_EQ(MillisecondsOf(Highest).count(), Highest);
}

}  // namespace
}  // namespace qilsys::monitor
