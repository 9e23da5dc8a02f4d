#include <gtest/gtest.h>

#include <stdexcept>

#include "monitor/Member.h"
#include "monitor/ResourceReporterManager.h"
#include "monitor/Scarcity.h"
#include "qilsys/LogicException.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TSystem.h"

namespace qilsys::test {
namespace {

ResourceValuesV2 Own(Member& member, unsigned long long bytes, unsigned int limitPercent = 50) {
  member.m_ownValues.memoryBytes = bytes;
  member.m_ownValues.memoryLimitPercent = static_cast<std::uint8_t>(limitPercent);
  return member.m_ownValues;
}

/// A member whose machine uses `used` bytes.
class MemoryMember : public Member {
 public:
  MemoryMember(const Settings& settings, unsigned long long used) : Member(settings) {
    m_total = [used] { return used; };
  }
};

const std::string Across = "Resource Manager: Exceeded allowed memory usage across all processes. Memory info: ";

TEST(MemoryThresholdTest, AboveThePerProcessLimitFailsWithoutAnyFurtherLook) {
  Member member(Settings().Memory(1'000'000, 5'000'000));
  member.m_total = []() -> unsigned long long { throw std::logic_error("must not be asked"); };
  member.OnValues(PeerValues(1, 0, 900'000, 90));
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 1'234'567), true));
  EXPECT_EQ(member.TakeLines(), Lines{"Resource Manager: Exceeded allowed memory usage per process. 1,234,567 bytes"});
}

TEST(MemoryThresholdTest, AtBothLimitsIsBelow) {
  MemoryMember member(Settings().Memory(1000, 5000), 5000);
  EXPECT_TRUE(member.IsBelowMemoryThreashold(Own(member, 1000), false));
  EXPECT_EQ(member.TakeLines(), Lines{});
}

TEST(MemoryThresholdTest, InfoLineAddsUpTheGroup) {
  MemoryMember member(Settings().Memory(1'000'000, 50'000'000), 12'345'678);
  Own(member, 600'000);
  member.HearSelf();
  member.OnValues(PeerValues(1, 0, 500'000, 90));
  member.OnValues(PeerValues(2, 0, 400'000, 10));
  EXPECT_TRUE(member.IsBelowMemoryThreashold(Own(member, 600'000), true));
  EXPECT_EQ(member.TakeLines(),
            Lines{"Resource Manager: Memory info: 600,000 bytes (current process);1,500,000 bytes (Quillon total); "
                  "12,345,678 bytes (total of all processes); 3 (info count)"});
}

TEST(MemoryThresholdTest, TheInfoCountIsZeroWhenNothingWasHeard) {
  MemoryMember member(Settings().Memory(1000, 5000), 1);
  EXPECT_TRUE(member.IsBelowMemoryThreashold(Own(member, 10), true));
  EXPECT_EQ(member.TakeLines(),
            Lines{"Resource Manager: Memory info: 10 bytes (current process);10 bytes (Quillon total); "
                  "1 bytes (total of all processes); 0 (info count)"});
}

TEST(MemoryThresholdTest, TheHighestShareOfItsOwnLimitYields) {
  MemoryMember member(Settings().Memory(1000, 5000), 5001);
  member.OnValues(PeerValues(1, 0, 999'999, 49));
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 500), false)) << "bytes do not rank";
  EXPECT_EQ(member.TakeLines(), Lines{Across + "500 bytes (current process);1,000,499 bytes (Quillon total); 5,001 "
                                               "bytes (total of all processes); 1 (info count)"});
}

TEST(MemoryThresholdTest, ATieYields) {
  MemoryMember member(Settings().Memory(1000, 5000), 5001);
  member.OnValues(PeerValues(1, 0, 1, 50));
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 500), false));
}

TEST(MemoryThresholdTest, AnyOtherMemberGoesOnInSilence) {
  MemoryMember member(Settings().Memory(1000, 5000), 5001);
  member.OnValues(PeerValues(1, 0, 1, 51));
  EXPECT_TRUE(member.IsBelowMemoryThreashold(Own(member, 500), false));
  EXPECT_EQ(member.TakeLines(), Lines{});
}

TEST(MemoryThresholdTest, AnAllProcessesLimitOfZeroIsExceededAtOnce) {
  MemoryMember member(Settings().Memory(1000, 0), 1);
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 500), false));
}

TEST(MemoryThresholdTest, AnInfoAndAnExcessLineComeTogether) {
  MemoryMember member(Settings().Memory(1000, 0), 1);
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 500), true));
  const std::string figures =
      "500 bytes (current process);500 bytes (Quillon total); 1 bytes (total of all processes); 0 (info count)";
  EXPECT_EQ(member.TakeLines(), (Lines{"Resource Manager: Memory info: " + figures, Across + figures}));
}

TEST(MemoryThresholdTest, AFailedReadingIsLoggedAndCountsAsAnExcess) {
  Member member(Settings().Memory(1000, 5000));
  member.m_total = []() -> unsigned long long {
    QuillonException exception{TStringCore(u"first")};
    exception.StackMessage(TStringCore(u"second"));
    throw exception;
  };
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 10), true));
  EXPECT_EQ(member.TakeLines(), Lines{"Resource Manager: Exception thrown while getting system memory usage, returning "
                                      "false from IsBelowMemoryThreashold(). first\nsecond\n"});
}

TEST(MemoryThresholdTest, AnExceptionOfTheFamilyCountsToo) {
  Member member(Settings().Memory(1000, 5000));
  member.m_total = []() -> unsigned long long {
    throw QuillonUserErrorException(TStringCore(u"mine"), TError::ErrorInfo::NoError());
  };
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 10), false));
}

TEST(MemoryThresholdTest, OtherExceptionsPass) {
  Member member(Settings().Memory(1000, 5000));
  member.m_total = []() -> unsigned long long { throw std::runtime_error("no"); };
  EXPECT_THROW(member.IsBelowMemoryThreashold(Own(member, 10), false), std::runtime_error);
}

TEST(TotalMemoryTest, TheSettingsFunctionReplacesTheMachine) {
  Settings settings;
  settings.Memory(1000, 5000).m_memory.m_totalMemoryFunc = [] { return 4711ULL; };
  Member member(settings);
  EXPECT_EQ(member.GetTotalMemoryUsed(), 4711U);
}

TEST(TotalMemoryTest, WithoutOneItIsTheUsedMemoryOfTheMachine) {
  Member member(Settings().Memory(1000, 5000));
  const unsigned long long used = member.GetTotalMemoryUsed();
  EXPECT_GE(used, 1U);
  EXPECT_LE(used, TSystem::Memory().m_totalPhysical);
}

TEST(TotalMemoryTest, AMachineThatCantBeReadIsAnExcess) {
  if (!NoFiles::CanBeHad()) GTEST_SKIP() << "left out on Windows: it has no means to refuse the reading";
  Member member(Settings().Memory(1000, std::uint64_t{1} << 50));
  const NoFiles none;
  EXPECT_THROW(member.GetTotalMemoryUsed(), QuillonException);
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 10), true));
  EXPECT_EQ(member.TakeLines(),
            Lines{"Resource Manager: Exception thrown while getting system memory usage, returning "
                  "false from IsBelowMemoryThreashold(). The memory of the machine can't be read\n"});
}

class CountingReporter : public ResourceReporter {
 public:
  void Report(unsigned int seconds) override { m_seconds.push_back(seconds); }

  std::vector<unsigned int> m_seconds;
};

TEST(MemoryReportTest, ReportersAreCalledBesideTheInfoLineAndTheExcessLine) {
  const auto reporter = std::make_unique<CountingReporter>();
  MemoryMember member(Settings().Memory(1000, 5000).Interval(5).InfoEvery(4), 5001);
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 2000), true)) << "its own limit calls nobody";
  EXPECT_TRUE(reporter->m_seconds.empty());
  EXPECT_FALSE(member.IsBelowMemoryThreashold(Own(member, 500), true));
  EXPECT_EQ(reporter->m_seconds, (std::vector<unsigned int>{20, 20}));
}

const char* Asked = "Resource Manager: Reclaiming memory. Number registered functions: 1";
const char* Called = "Resource Manager: Calling reclaim function named: cache";
const char* Reclaimed = "Resource Manager: Memory reclaimed. Process termination has been averted!";
const char* NotReclaimed = "Resource Manager: Memory reclamation was unsucessful. Process has to be terminated.";
const char* OverItsLimit = "Resource Manager: Exceeded allowed memory usage per process. 1,250 bytes";
const char* Below =
    "Resource Manager: Memory info: 250 bytes (current process);250 bytes (Quillon total); 1 bytes (total of all "
    "processes); 0 (info count)";

/// A member that is over its limit when it samples next.
class MemoryReclaimTest : public testing::Test {
 protected:
  explicit MemoryReclaimTest(std::int64_t interval = 5)
      : m_member(Settings().Memory(1000, 5000).TerminateMemory(1).Interval(interval), 1) {
    m_member.m_reading.m_memoryBytes = 1250;
  }
  ~MemoryReclaimTest() noexcept override = default;

  MemoryMember m_member;
};

TEST_F(MemoryReclaimTest, FunctionsGetTheUsedFraction) {
  double argument = 0;
  m_member.MemoryReclaim().Add(u"cache", [&](double given) {
    argument = given;
    m_member.m_reading.m_memoryBytes = 250;
  });
  EXPECT_TRUE(m_member.Step());
  EXPECT_EQ(argument, 1.25);
  EXPECT_TRUE(m_member.Step());
  EXPECT_EQ(m_member.m_samples, 2);
  EXPECT_EQ(m_member.TakeLines(), (Lines{OverItsLimit, Asked, Called, Below, Reclaimed}));
}

TEST_F(MemoryReclaimTest, WhatIsStillTooMuchHasNotBeenReclaimed) {
  m_member.MemoryReclaim().Add(u"cache", [](double) {});
  EXPECT_TRUE(m_member.Step());
  EXPECT_FALSE(m_member.Step());
  const Lines lines = m_member.TakeLines();
  ASSERT_GE(lines.size(), 5U);
  EXPECT_EQ(Lines(lines.begin(), lines.begin() + 5), (Lines{OverItsLimit, Asked, Called, OverItsLimit, NotReclaimed}));
}

/// The same without an interval to wait for.
class MemoryReclaimInOnePieceTest : public MemoryReclaimTest {
 protected:
  MemoryReclaimInOnePieceTest() : MemoryReclaimTest(0) {}

  bool Reclaim() { return m_member.ReclaimMemory(m_member.m_self, m_member.m_ownValues); }
};

TEST_F(MemoryReclaimInOnePieceTest, IsAskingAndJudging) {
  m_member.MemoryReclaim().Add(u"cache", [](double) {});
  EXPECT_FALSE(Reclaim());
  EXPECT_EQ(m_member.TakeLines(), (Lines{Asked, Called, OverItsLimit, NotReclaimed}));
  m_member.m_reading.m_memoryBytes = 250;
  EXPECT_TRUE(Reclaim());
  EXPECT_EQ(m_member.TakeLines(), (Lines{Asked, Called, Below, Reclaimed}));
  EXPECT_EQ(m_member.m_samples, 2);
}

TEST(MemoryReclaimWaitTest, WithoutFunctionsThereIsNone) {
  Member member(Settings().Memory(1000, 5000).Interval(1000));
  EXPECT_FALSE(member.ReclaimMemory(member.m_self, member.m_ownValues));
  EXPECT_EQ(member.m_samples, 0);
  EXPECT_EQ(member.TakeLines(),
            (Lines{"Resource Manager: Reclaiming memory. Number registered functions: 0", NotReclaimed}));
}

TEST(MemoryReclaimWaitTest, AStopDuringItIsAFailure) {
  Member member(Settings().Memory(1000, 5000).Interval(1000));
  member.MemoryReclaim().Add(u"cache", [](double) {});
  member.m_stopEvent.Signal();
  EXPECT_FALSE(member.ReclaimMemory(member.m_self, member.m_ownValues));
  EXPECT_EQ(member.m_samples, 0);
  EXPECT_EQ(member.TakeLines(), (Lines{Asked, Called, NotReclaimed}));
}

// No pass comes here without a limit.
TEST(MemoryReclaimWithoutALimitTest, FunctionsGetMinusOne) {
  Member member(Settings().Interval(0));
  double argument = 0;
  member.MemoryReclaim().Add(u"cache", [&](double given) { argument = given; });
  member.ReclaimMemory(member.m_self, member.m_ownValues);
  EXPECT_EQ(argument, -1.0);
}

TEST(MemoryFiguresTest, TheSampleIsRankedByItsShareOfTheLimit) {
  Member member(Settings().Memory(1000, 5000));
  member.m_reading.m_memoryBytes = 3000;
  member.Step();
  EXPECT_EQ(+member.m_ownValues.memoryBytes, 3000U);
  EXPECT_EQ(member.m_ownValues.memoryLimitPercent, 44) << "300 percent is cut to eight bits";
}

}  // namespace
}  // namespace qilsys::test
