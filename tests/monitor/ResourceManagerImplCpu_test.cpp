#include <gtest/gtest.h>

#include "monitor/Member.h"
#include "monitor/ResourceReporterManager.h"

namespace qilsys::test {
namespace {

ResourceValuesV2 Own(Member& member, unsigned int cpuPercent) {
  member.m_ownValues.cpuPercent = static_cast<std::uint8_t>(cpuPercent);
  return member.m_ownValues;
}

const char* Excess =
    "Resource Manager: Exceeded sustained high CPU threshold above 90% for 10 seconds.  This process has the highest "
    "usage of ";

TEST(CpuThresholdTest, ZeroResetsTheTimerAndLogsOnlyWhenAsked) {
  Member member(Settings().Cpu(90, 10));
  member.m_highCpuSince = 5;
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 0), false));
  EXPECT_EQ(member.m_highCpuSince, ResourceManagerImpl::NotHigh);
  EXPECT_EQ(member.TakeLines(), Lines{});
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 0), true));
  EXPECT_EQ(member.TakeLines(), Lines{"Resource Manager: CPU info: 0%"});
}

TEST(CpuThresholdTest, InfoLineCountsAllThatWereHeard) {
  Member member(Settings().Cpu(90, 10));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 30), true));
  EXPECT_EQ(member.TakeLines(), Lines{"Resource Manager: CPU info: 30%; 30% (Quillon total); 0 (info count)"});
  member.HearSelf();
  member.OnValues(PeerValues(1, 20));
  member.OnValues(PeerValues(2, 15));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 30), true));
  EXPECT_EQ(member.TakeLines(), Lines{"Resource Manager: CPU info: 30%; 65% (Quillon total); 3 (info count)"});
}

TEST(CpuThresholdTest, OwnFiguresThatCameBackAreNotCountedTwice) {
  Member member(Settings().Cpu(50, 0));
  Own(member, 40);
  member.HearSelf();
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 40), true));
  EXPECT_EQ(member.TakeLines(), Lines{"Resource Manager: CPU info: 40%; 40% (Quillon total); 1 (info count)"});
}

TEST(CpuThresholdTest, AMemberThatIsNotTheHighestOnlyLogsTheHighUsage) {
  Member member(Settings().Cpu(90, 10));
  member.OnValues(PeerValues(1, 30));
  member.OnValues(PeerValues(2, 45));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 30), false));
  EXPECT_EQ(member.TakeLines(), Lines{"Resource Manager: Detected high CPU usage. 100%"});
  member.m_now += 60 * Second;
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 30), false));
  EXPECT_EQ(member.TakeLines(), Lines{});
}

TEST(CpuThresholdTest, ATieLeavesTheMemberTheHighest) {
  Member member(Settings().Cpu(90, 10));
  member.OnValues(PeerValues(1, 50));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 50), false));
  member.m_now += 11 * Second;
  EXPECT_FALSE(member.IsBelowCpuThreshold(Own(member, 50), false));
  EXPECT_EQ(member.TakeLines(),
            (Lines{"Resource Manager: Detected high CPU usage. 100%", Excess + std::string("50%")}));
}

TEST(CpuThresholdTest, ATotalEqualToTheLimitIsNotOverItAndResetsTheTimer) {
  Member member(Settings().Cpu(90, 10));
  member.m_highCpuSince = 5;
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 90), false));
  EXPECT_EQ(member.m_highCpuSince, ResourceManagerImpl::NotHigh);
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 91), false));
  EXPECT_EQ(member.m_highCpuSince, member.m_now);
}

TEST(CpuThresholdTest, TheSustainedTimeMustBePassed) {
  Member member(Settings().Cpu(90, 10));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 95), false));
  member.m_now += 10 * Second;
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 95), false)) << "exactly the time is not over it";
  member.m_now += 1;
  EXPECT_FALSE(member.IsBelowCpuThreshold(Own(member, 95), false));
  EXPECT_EQ(member.TakeLines(), (Lines{"Resource Manager: Detected high CPU usage. 95%", Excess + std::string("95%")}));
}

TEST(CpuThresholdTest, NoSustainedTimeStillNeedsASecondLook) {
  Member member(Settings().Cpu(50, 0));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 60), false));
  member.m_now += 1;
  EXPECT_FALSE(member.IsBelowCpuThreshold(Own(member, 60), false));
}

TEST(CpuThresholdTest, ASustainedTimeBeyondTheClockIsNeverPassed) {
  Member member(Settings().Cpu(50, 100'000'000'000));
  member.m_now = 0;
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 60), false));
  member.m_now = std::numeric_limits<std::int64_t>::max() - 1;
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 60), false));
}

TEST(CpuThresholdTest, TheTimerRunsOnWhileAnotherIsTheHighest) {
  Member member(Settings().Cpu(90, 10));
  member.OnValues(PeerValues(1, 60));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 45), false));
  member.m_now += 11 * Second;
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 45), false));
  member.m_peers.clear();
  EXPECT_FALSE(member.IsBelowCpuThreshold(Own(member, 91), false)) << "the top member has gone";
}

TEST(CpuThresholdTest, AReadingOfZeroInAHighPeriodResetsTheTimerAndDoesNotFeedTheMean) {
  Member member(Settings().Cpu(50, 3).RollingMean());
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 60), false));
  EXPECT_NE(member.m_highCpuSince, ResourceManagerImpl::NotHigh);
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 0), false));
  EXPECT_EQ(member.m_highCpuSince, ResourceManagerImpl::NotHigh);
  EXPECT_EQ(member.m_cpuMean, 60.0);
}

struct MeanRow {
  const char* m_name;
  std::int64_t m_sustained;
  std::int64_t m_interval;
  std::vector<std::pair<unsigned int, double>> m_samplesAndMeans;
};

class RollingMeanTest : public testing::TestWithParam<MeanRow> {};

TEST_P(RollingMeanTest, MovesByEachSample) {
  Member member(Settings().Cpu(99, GetParam().m_sustained).Interval(GetParam().m_interval).RollingMean());
  for (const auto& [sample, mean] : GetParam().m_samplesAndMeans) {
    member.IsBelowCpuThreshold(Own(member, sample), false);
    EXPECT_DOUBLE_EQ(member.m_cpuMean, mean) << "after " << sample;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RollingMeanTest,
    testing::Values(
        MeanRow{"WindowOfThree", 3, 1, {{60, 60}, {60, 60}, {60, 60}, {90, 70}, {90, 80}, {90, 90}, {30, 70}}},
        MeanRow{"Filling", 3, 1, {{40, 40}, {80, 60}, {30, 50}, {40, 50}, {50, 40}}},
        MeanRow{"WindowOfOne", 1, 1, {{40, 40}, {80, 80}, {10, 10}}},
        MeanRow{"WindowRoundsDown", 7, 2, {{60, 60}, {60, 60}, {60, 60}, {90, 70}}},
        MeanRow{"NoWindow", 1, 2, {{99, 0}, {99, 0}, {99, 0}}}, MeanRow{"NoInterval", 3, 0, {{99, 0}, {99, 0}}},
        MeanRow{"NegativeSustained", -3, 1, {{99, 0}, {99, 0}}}),
    [](const auto& row) { return row.param.m_name; });

TEST(RollingMeanTest, IsComparedInPlaceOfTheTotal) {
  Member member(Settings().Cpu(65, 3).RollingMean());
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 60), false));
  EXPECT_EQ(member.m_highCpuSince, ResourceManagerImpl::NotHigh);
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 90), false));
  EXPECT_EQ(member.TakeLines(), Lines{"Resource Manager: Detected high CPU usage. 90%"});
  member.m_now += 4 * Second;
  EXPECT_FALSE(member.IsBelowCpuThreshold(Own(member, 60), false)) << "the mean is still 70";
}

TEST(RollingMeanTest, AMeanEqualToTheLimitIsNotOverIt) {
  Member member(Settings().Cpu(60, 3).RollingMean());
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 60), false));
  EXPECT_EQ(member.m_highCpuSince, ResourceManagerImpl::NotHigh);
}

class CountingReporter : public ResourceReporter {
 public:
  void Report(unsigned int seconds) override { m_seconds.push_back(seconds); }

  std::vector<unsigned int> m_seconds;
};

TEST(CpuReportTest, ReportersAreCalledBesideTheInfoLineAndTheExcessLine) {
  const auto reporter = std::make_unique<CountingReporter>();
  Member member(Settings().Cpu(50, 0).Interval(7).InfoEvery(3));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 0), true));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 60), false));
  EXPECT_TRUE(reporter->m_seconds.empty());
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 40), true));
  EXPECT_EQ(reporter->m_seconds, (std::vector<unsigned int>{21}));
  EXPECT_TRUE(member.IsBelowCpuThreshold(Own(member, 60), false));
  member.m_now += 1;
  EXPECT_FALSE(member.IsBelowCpuThreshold(Own(member, 60), true));
  EXPECT_EQ(reporter->m_seconds, (std::vector<unsigned int>{21, 21, 21}));
}

TEST(CpuReportTest, TheSecondsAreMultipliedIn32Bits) {
  const auto reporter = std::make_unique<CountingReporter>();
  Member member(Settings().Cpu(50, 0).Interval(0x1'0000'0002).InfoEvery(0xFFFFFFFF));
  member.IsBelowCpuThreshold(Own(member, 40), true);
  EXPECT_EQ(reporter->m_seconds, (std::vector<unsigned int>{0xFFFFFFFE}));
}

const char* ExcessWithoutTime =
    "Resource Manager: Exceeded sustained high CPU threshold above 50% for 0 seconds.  This process has the highest "
    "usage of 70%";
const char* Asked = "Resource Manager: Reclaiming CPU. Number registered functions: 1";
const char* Called = "Resource Manager: Calling reclaim function named: pool";
const char* StillHigh = "Resource Manager: CPU info: 70%; 70% (Quillon total); 0 (info count)";
const char* Reclaimed = "Resource Manager: CPU reclaimed. Process termination has been averted!";
const char* NotReclaimed = "Resource Manager: CPU reclamation was unsucessful. Process has to be terminated.";

/// A member that has been over its limit for long when it samples next.
class CpuReclaimTest : public testing::Test {
 protected:
  explicit CpuReclaimTest(std::int64_t interval = 5)
      : m_member(Settings().Cpu(50, 0).TerminateCpu(1).Interval(interval)) {
    m_member.m_reading.m_cpuPercent = 70;
    m_member.m_highCpuSince = 0;
  }
  ~CpuReclaimTest() noexcept override = default;

  Member m_member;
};

TEST_F(CpuReclaimTest, FunctionsGetMinusOne) {
  double argument = 0;
  m_member.CpuReclaim().Add(u"pool", [&](double given) {
    argument = given;
    m_member.m_reading.m_cpuPercent = 0;
  });
  EXPECT_TRUE(m_member.Step());
  EXPECT_EQ(argument, -1.0);
  EXPECT_TRUE(m_member.Step());
  EXPECT_EQ(m_member.m_samples, 2);
  EXPECT_EQ(m_member.TakeLines(),
            (Lines{ExcessWithoutTime, Asked, Called, "Resource Manager: CPU info: 0%", Reclaimed}));
}

TEST_F(CpuReclaimTest, WhatIsStillTooHighHasNotBeenReclaimed) {
  m_member.CpuReclaim().Add(u"pool", [](double) {});
  EXPECT_TRUE(m_member.Step());
  EXPECT_FALSE(m_member.Step());
  const Lines lines = m_member.TakeLines();
  ASSERT_GE(lines.size(), 6U);
  EXPECT_EQ(Lines(lines.begin(), lines.begin() + 6),
            (Lines{ExcessWithoutTime, Asked, Called, StillHigh, ExcessWithoutTime, NotReclaimed}));
}

/// The same without an interval to wait for.
class CpuReclaimInOnePieceTest : public CpuReclaimTest {
 protected:
  CpuReclaimInOnePieceTest() : CpuReclaimTest(0) {}

  bool Reclaim() { return m_member.ReclaimCpu(m_member.m_self, m_member.m_ownValues); }
};

TEST_F(CpuReclaimInOnePieceTest, IsAskingAndJudging) {
  m_member.CpuReclaim().Add(u"pool", [](double) {});
  EXPECT_FALSE(Reclaim());
  EXPECT_EQ(m_member.TakeLines(), (Lines{Asked, Called, StillHigh, ExcessWithoutTime, NotReclaimed}));
  m_member.m_reading.m_cpuPercent = 0;
  EXPECT_TRUE(Reclaim());
  EXPECT_EQ(m_member.TakeLines(), (Lines{Asked, Called, "Resource Manager: CPU info: 0%", Reclaimed}));
  EXPECT_EQ(m_member.m_samples, 2);
}

TEST(CpuReclaimWaitTest, WithoutFunctionsThereIsNone) {
  Member member(Settings().Cpu(50, 0).Interval(1000));
  EXPECT_FALSE(member.ReclaimCpu(member.m_self, member.m_ownValues));
  EXPECT_EQ(member.m_samples, 0);
  EXPECT_EQ(member.TakeLines(),
            (Lines{"Resource Manager: Reclaiming CPU. Number registered functions: 0", NotReclaimed}));
}

TEST(CpuReclaimWaitTest, AStopDuringItIsAFailure) {
  Member member(Settings().Cpu(50, 0).Interval(1000));
  member.CpuReclaim().Add(u"pool", [](double) {});
  member.m_stopEvent.Signal();
  EXPECT_FALSE(member.ReclaimCpu(member.m_self, member.m_ownValues));
  EXPECT_EQ(member.m_samples, 0);
  EXPECT_EQ(member.TakeLines(), (Lines{Asked, Called, NotReclaimed}));
}

}  // namespace
}  // namespace qilsys::test
