#include "monitor/ProcessSample.h"

#include <gtest/gtest.h>

#include "support/CaughtAssertion.h"
#include "support/RowName.h"

namespace qilsys::monitor {
namespace {

using test::CatchAssertion;
using test::CaughtAssertion;

struct PercentRow {
  const char* name;
  ProcessTimesSample before;
  ProcessTimesSample after;
  unsigned int cpus;
  int percent;
};

class CpuPercentTest : public testing::TestWithParam<PercentRow> {};

TEST_P(CpuPercentTest, FollowsTheArithmetic) {
  const PercentRow& row = GetParam();
  EXPECT_EQ(CpuPercentBetween(row.before, row.after, row.cpus), row.percent);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CpuPercentTest,
    testing::Values(
        PercentRow{"NoClockTick", {5, 5, 100}, {50, 50, 100}, 1, 0},
        PercentRow{"TwoOfEightProcessors", {100, 200, 1000}, {1100, 1200, 2000}, 8, 25},
        PercentRow{"AllOfOne", {0, 0, 0}, {600, 400, 1000}, 1, 100},
        PercentRow{"KernelTimeCounts", {0, 0, 0}, {500, 0, 1000}, 1, 50},
        PercentRow{"UserTimeCounts", {0, 0, 0}, {0, 500, 1000}, 1, 50},
        PercentRow{"TwoTruncations", {0, 0, 0}, {0, 1999, 1000}, 2, 99},
        PercentRow{"ThreeHundredComesOutAsFortyFour", {0, 0, 0}, {0, 3000, 1000}, 1, 44},
        PercentRow{"TwoHundredFiftyIsLimited", {0, 0, 0}, {0, 2500, 1000}, 1, 100},
        PercentRow{"TwoHundredFiftySixComesOutAsZero", {0, 0, 0}, {0, 2560, 1000}, 1, 0},
        PercentRow{
            "WrappedCountersGiveTheirDifference", {0xFFFFFFFFFFFFFF9C, 0, 0xFFFFFFFFFFFFFF9C}, {100, 0, 300}, 1, 50},
        PercentRow{"NoProcessors", {0, 0, 0}, {0, 1000, 1000}, 0, 0}),
    test::RowName<PercentRow>);

TEST(RequireProcessorsTest, NoneIsAnAssertion) {
  const CaughtAssertion wanted{"main/monitor/MonitoredProcess_win", 82, "GetNumberOfCpus() > 0", 0xC01C309F,
                               "LogicException_LogicAssert_0xC01C309F"};
  EXPECT_EQ(CatchAssertion([] { RequireProcessors(0); }), wanted);
  EXPECT_EQ(CatchAssertion([] { RequireProcessors(1); }), CaughtAssertion{});
}

}  // namespace
}  // namespace qilsys::monitor
