#include "monitor/Duration.h"

#include <gtest/gtest.h>

namespace qilsys::monitor {
namespace {

constexpr std::int64_t s_highest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t s_lowest = std::numeric_limits<std::int64_t>::min();

TEST(DurationTest, MultipliesWithinTheRange) {
  EXPECT_EQ(NanosecondsOf(0), 0);
  EXPECT_EQ(NanosecondsOf(3), 3'000'000'000);
  EXPECT_EQ(MillisecondsOf(3).count(), 3000);
  EXPECT_EQ(MillisecondsOf(-3).count(), -3000);
}

TEST(DurationTest, StopsAtTheEndsOfTheRange) {
  EXPECT_EQ(NanosecondsOf(9'223'372'036), 9'223'372'036'000'000'000);
  EXPECT_EQ(NanosecondsOf(9'223'372'037), s_highest);
  EXPECT_EQ(NanosecondsOf(s_highest), s_highest);
  EXPECT_EQ(NanosecondsOf(s_lowest), s_lowest);
  EXPECT_EQ(MillisecondsOf(s_highest).count(), s_highest);
}

}  // namespace
}  // namespace qilsys::monitor
