#include "demo/Director.h"

#include <gtest/gtest.h>

namespace {

TEST(DemoDirector, TakesInWhatCameWhileItWasStopped) {
  // The process was stopped for 20 seconds in a beat of 10, in which all happened that should.
  double now = 0;
  bool done = false;
  const auto tick = [&] {
    done = now > 10;
    now = 20;
  };
  EXPECT_TRUE(demo::TickUntil([&] { return done; }, tick, [&] { return now; }, 10));
}

TEST(DemoDirector, JudgesByTheTimeWhereNothingCame) {
  double now = 0;
  int ticks = 0;
  const auto tick = [&] {
    ++ticks;
    now += 4;
  };
  EXPECT_FALSE(demo::TickUntil([] { return false; }, tick, [&] { return now; }, 10));
  EXPECT_EQ(ticks, 4) << "at 0, 4, 8 and 12 seconds";
}

}  // namespace
