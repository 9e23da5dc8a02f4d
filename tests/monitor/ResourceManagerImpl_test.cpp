#include "monitor/ResourceManagerImpl.h"

#include <gtest/gtest.h>

#include <atomic>
#include <boost/system/system_error.hpp>
#include <exception>
#include <limits>
#include <mutex>

#include "monitor/ChildProcess.h"
#include "monitor/Loopback.h"
#include "monitor/Member.h"
#include "qilsys/TSystem.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"

namespace qilsys::test {
namespace {

const CaughtAssertion IpcSet{"main/monitor/ResourceManagerImpl", 94, "!m_ipc", 0x5D944982,
                             "LogicException_LogicAssert_0x5D944982"};
const CaughtAssertion WorkerSet{"main/monitor/ResourceManagerImpl", 101, "!m_worker", 0xCF38B12E,
                                "LogicException_LogicAssert_0xCF38B12E"};
const CaughtAssertion UnknownVersion{
    "main/monitor/ResourceManagerImpl", 479,
    "ResourceValuesVersion::VER_1 <= m_rvVersion && m_rvVersion <= ResourceValuesVersion::VER_2", 0x044A63AC,
    "LogicException_LogicAssert_0x044A63AC"};

/// Settings whose lines may be written and read by several threads.
struct SharedSettings : Settings {
  std::shared_ptr<std::mutex> m_mutex = std::make_shared<std::mutex>();

  SharedSettings() {
    m_general.m_logFunc = [mutex = m_mutex, lines = m_lines](const TStringCore& line) {
      const std::lock_guard lock(*mutex);
      lines->push_back(line.toStdString());
    };
    m_general.m_checkIntervalSeconds = 1000;
    m_general.m_startDelaySeconds = 1000;
  }

  Lines Copy() const {
    const std::lock_guard lock(*m_mutex);
    return *m_lines;
  }
};

/// The manager as it is, with its inner operations open to the test.
class RealMember : public ResourceManagerImpl {
 public:
  explicit RealMember(const Settings& settings)
      : ResourceManagerImpl(settings.m_cpu, settings.m_memory, settings.m_general) {}
  RealMember(const RealMember&) = delete;
  RealMember& operator=(const RealMember&) = delete;
  /// The worker calls virtual operations, so it ends before this is an object of the base alone.
  ~RealMember() noexcept(false) override { StopThreads(); }

  using ResourceManagerImpl::GetReportTime;
  using ResourceManagerImpl::GetSteadyTime;
  using ResourceManagerImpl::m_cpuWindow;
  using ResourceManagerImpl::m_ipc;
  using ResourceManagerImpl::m_ownValues;
  using ResourceManagerImpl::m_peers;
  using ResourceManagerImpl::m_peersLock;
  using ResourceManagerImpl::m_rvVersion;
  using ResourceManagerImpl::m_worker;
  using ResourceManagerImpl::UpdateResourceValues;

  std::size_t CountPeers() {
    TScopedLock lock(m_peersLock);
    return m_peers.size();
  }
  bool HeardSomebody() {
    return Eventually([this] { return CountPeers() > 0; });
  }
};

TEST(StartMonitoringTest, WithNoPolicyInForceNothingIsMade) {
  for (const unsigned int percent : {0U, 100U, 101U, 0xFFFFFFFFU}) {
    SharedSettings settings;
    settings.Cpu(percent, 10).Memory(0, 1000);
    {
      RealMember member(settings);
      member.StartMonitoring(FreePort());
      EXPECT_EQ(member.m_ipc, nullptr);
      EXPECT_EQ(member.m_worker, nullptr);
      EXPECT_EQ(settings.Copy(), Lines{});
      EXPECT_EQ(member.GetCpuAndMemoryUsage(), (std::pair<unsigned char, unsigned long long>(0, 0)));
    }
    EXPECT_EQ(settings.Copy(), Lines{"Resource Manager: stopped"});
  }
}

struct StartRow {
  const char* m_name;
  std::uint32_t m_percent;
  std::uint64_t m_perProcess;
  Lines m_limits;
};

class StartLinesTest : public testing::TestWithParam<StartRow> {};

TEST_P(StartLinesTest, TellTheLimitsInForce) {
  SharedSettings settings;
  settings.Cpu(GetParam().m_percent, 30).Memory(GetParam().m_perProcess, 7'654'321).Interval(12);
  const unsigned short port = FreePort();
  Lines wanted = GetParam().m_limits;
  wanted.push_back("Resource Manager: Checking resources every 12 seconds");
  wanted.push_back("Resource Manager: listening on port " + std::to_string(port));
  {
    RealMember member(settings);
    member.StartMonitoring(port);
    EXPECT_EQ(settings.Copy(), wanted);
  }
  wanted.push_back("Resource Manager: listening thread has stopped");
  wanted.push_back("Resource Manager: stopped");
  EXPECT_EQ(settings.Copy(), wanted);
}

const char* PerProcess = "Resource Manager: Per Process Memory Limit: 1,234,567 bytes";
const char* AllProcesses = "Resource Manager: All Processes Memory Limit: 7,654,321 bytes";

INSTANTIATE_TEST_SUITE_P(
    Rows, StartLinesTest,
    testing::Values(StartRow{"LowestCpu", 1, 0, {"Resource Manager: Max CPU limited to 1% over 30 seconds"}},
                    StartRow{"HighestCpu", 99, 0, {"Resource Manager: Max CPU limited to 99% over 30 seconds"}},
                    StartRow{"Memory", 100, 1'234'567, {PerProcess, AllProcesses}},
                    StartRow{"Both",
                             50,
                             1'234'567,
                             {"Resource Manager: Max CPU limited to 50% over 30 seconds", PerProcess, AllProcesses}}),
    [](const auto& row) { return row.param.m_name; });

TEST(StartMonitoringTest, ASecondStartIsAnAssertion) {
  SharedSettings settings;
  settings.Cpu(50);
  RealMember member(settings);
  member.StartMonitoring(FreePort());
  EXPECT_EQ(CatchAssertion([&] { member.StartMonitoring(FreePort()); }), IpcSet);
  const std::unique_ptr<ResourceIpc> ipc = std::move(member.m_ipc);
  EXPECT_EQ(CatchAssertion([&] { member.StartMonitoring(FreePort()); }), WorkerSet);
}

TEST(StartMonitoringTest, AHookThatReturnsListensOnTheNewPortAndKeepsTheWorker) {
  SharedSettings settings;
  settings.Cpu(50);
  RealMember member(settings);
  member.StartMonitoring(FreePort());
  const std::thread* worker = member.m_worker.get();
  const unsigned short port = FreePort();
  const RecordedAssertions assertions;
  member.StartMonitoring(port);
  EXPECT_EQ(assertions.All(), (std::vector{IpcSet, WorkerSet}));
  EXPECT_EQ(member.m_worker.get(), worker) << "a thread that runs can't be replaced";
  Sender(port).SendValues(PeerValues(1, 0));
  EXPECT_TRUE(member.HeardSomebody());
  EXPECT_EQ(settings.Copy().back(), "Resource Manager: listening thread has stopped") << "that of the first port";
}

// The sending has its own lock for this; that it needs one shows under a sanitizer.
TEST(StartMonitoringTest, AHookThatReturnsExchangesThePortUnderAWorkerThatSends) {
  SharedSettings settings;
  settings.Cpu(50).Interval(0).m_general.m_startDelaySeconds = 0;
  RealMember member(settings);
  member.StartMonitoring(FreePort());
  const RecordedAssertions assertions;
  for (int i = 0; i < 20; ++i) member.StartMonitoring(FreePort());
  EXPECT_EQ(assertions.All().size(), 40U);
  EXPECT_TRUE(member.HeardSomebody());
}

TEST(StartMonitoringTest, ATakenPortPassesTheFailureOn) {
  const unsigned short port = FreePort();
  const Stranger stranger(port);
  SharedSettings settings;
  settings.Cpu(50);
  RealMember member(settings);
  EXPECT_THROW(member.StartMonitoring(port), boost::system::system_error);
  EXPECT_EQ(member.m_ipc, nullptr);
  EXPECT_EQ(member.m_worker, nullptr);
}

struct WindowRow {
  const char* m_name;
  std::int64_t m_sustained;
  std::int64_t m_interval;
  bool m_rollingMean;
  std::size_t m_capacity;
};

class WindowTest : public testing::TestWithParam<WindowRow> {};

TEST_P(WindowTest, HasRoomForTheChecksOfTheSustainedTimeAndOneMore) {
  Settings settings;
  settings.Cpu(50, GetParam().m_sustained).Interval(GetParam().m_interval);
  settings.m_cpu.m_useRollingMean = GetParam().m_rollingMean;
  const RealMember member(settings);
  EXPECT_EQ(member.m_cpuWindow.capacity(), GetParam().m_capacity);
}

constexpr std::int64_t ForEver = std::numeric_limits<std::int64_t>::max();

INSTANTIATE_TEST_SUITE_P(
    Rows, WindowTest,
    testing::Values(WindowRow{"RollingMean", 10, 5, true, 3}, WindowRow{"NoRollingMean", 10, 5, false, 3},
                    WindowRow{"Truncated", 11, 4, false, 3}, WindowRow{"BelowTheInterval", 4, 5, false, 1},
                    WindowRow{"BothNegative", -10, -5, false, 3}, WindowRow{"NegativeSustained", -10, 5, false, 1},
                    WindowRow{"NegativeInterval", 10, -5, true, 1}, WindowRow{"NoInterval", 10, 0, true, 1},
                    WindowRow{"LowestByMinusOne", -ForEver - 1, -1, false, 1},
                    WindowRow{"ForEverWithoutRollingMean", ForEver, 1, false, 1}),
    [](const auto& row) { return row.param.m_name; });

// Nothing holds so many samples.
TEST(WindowTest, ForEverIsNoTimeForARollingMean) {
  EXPECT_THROW(RealMember(Settings().Cpu(50, ForEver).RollingMean()), std::exception);
}

TEST(OwnValuesTest, AreMadeFromTheSettings) {
  const RealMember member(Settings().Interval(300));
  EXPECT_EQ(member.m_rvVersion, ResourceValuesVersion::VER_2);
  EXPECT_EQ(+member.m_ownValues.pid, TSystem::ProcessID());
  EXPECT_EQ(member.m_ownValues.reportIntervalSeconds, 44);
  const RealMember older(Settings().Version1());
  EXPECT_EQ(older.m_rvVersion, ResourceValuesVersion::VER_1);
  EXPECT_EQ(UuidOf(older.m_ownValues), UuidOf(Widen(Narrow(older.m_ownValues))));
}

/// A started member whose worker sleeps, so that the test samples in its place.
class SamplingTest : public testing::Test {
 protected:
  ResourceValuesV2 SampleOf(RealMember& member) {
    member.StartMonitoring(FreePort());
    MonitoredProcess self;
    member.UpdateResourceValues(self, member.m_ownValues);
    EXPECT_TRUE(member.HeardSomebody());
    return member.m_ownValues;
  }

  SharedSettings m_settings;
};

TEST_F(SamplingTest, FiguresOfAPolicyThatIsOffStayZero) {
  m_settings.Cpu(100).Memory(1 << 30, 1);
  RealMember member(m_settings);
  const ResourceValuesV2 values = SampleOf(member);
  EXPECT_EQ(values.cpuPercent, 0);
  EXPECT_GT(+values.memoryBytes, 0U);
  EXPECT_EQ(member.GetCpuAndMemoryUsage(), (std::pair<unsigned char, unsigned long long>(0, +values.memoryBytes)));
}

TEST_F(SamplingTest, WithoutAMemoryLimitNoMemoryIsTold) {
  m_settings.Cpu(50);
  RealMember member(m_settings);
  const ResourceValuesV2 values = SampleOf(member);
  EXPECT_EQ(+values.memoryBytes, 0U);
  EXPECT_EQ(values.memoryLimitPercent, 0);
}

TEST_F(SamplingTest, ChildrenCountAsTheProcess) {
  m_settings.Memory(1 << 30, 1);
  RealMember member(m_settings);
  const ChildProcess child;
  MonitoredProcess self;
  const unsigned long long own = self.GetMemoryUsage();
  member.Children().AddChild(child.Pid());
  const unsigned long long children = member.Children().GetMemoryUsage();
  EXPECT_GT(children, 0U);
  const ResourceValuesV2 values = SampleOf(member);
  EXPECT_GE(+values.memoryBytes, own / 2 + children);
  EXPECT_GE(member.GetMemoryPressure(), static_cast<double>(children) / (1 << 30));
}

TEST_F(SamplingTest, Version1ComesBackAsTheOwn) {
  m_settings.Memory(1 << 30, 1).Version1();
  RealMember member(m_settings);
  const ResourceValuesV2 values = SampleOf(member);
  EXPECT_EQ(member.CountPeers(), 1U);
  EXPECT_EQ(member.GetCpuAndMemoryUsage().second, std::uint64_t{values.memoryBytes});
}

TEST_F(SamplingTest, AnUnknownVersionIsAnAssertion) {
  m_settings.Memory(1 << 30, 1);
  RealMember member(m_settings);
  member.StartMonitoring(FreePort());
  MonitoredProcess self;
  for (const int version : {0, 3, -1}) {
    member.m_rvVersion = static_cast<ResourceValuesVersion>(version);
    EXPECT_EQ(CatchAssertion([&] { member.UpdateResourceValues(self, member.m_ownValues); }), UnknownVersion);
  }
  const ScopedAssertHook hook([](const char*, int, const char*, const QuillonError&) {});
  member.UpdateResourceValues(self, member.m_ownValues);
  EXPECT_EQ(member.CountPeers(), 0U) << "nothing is sent";
}

/// A started member with a clock of the test, whose listener is held from one bad datagram on.
class HeldListenerTest : public testing::Test {
 protected:
  class HeldMember : public RealMember {
   public:
    HeldMember(const Settings& settings, TEvent& release) : RealMember(settings), m_release(release) {}

    std::int64_t GetReportTime() override { return m_now; }
    /// As long as it takes, since a busy machine takes longer than a member waits.
    void TakeInWhatWaits() override {
      m_release.Signal();
      m_ipc->TakeInWhatWaits(Patience);
    }

    void TakeInAsAMemberDoes() { ResourceManagerImpl::TakeInWhatWaits(); }

    std::atomic<std::int64_t> m_now = 0;

   private:
    TEvent& m_release;
  };

  HeldListenerTest() {
    m_settings.Cpu(50).m_general.m_logFunc = [this](const TStringCore& line) {
      if (!line.startsWith(u"Resource Manager: rejected")) return;
      m_held.Signal();
      m_release.Wait();
    };
    m_member = std::make_unique<HeldMember>(m_settings, m_release);
    m_member->StartMonitoring(m_port);
  }
  ~HeldListenerTest() override { m_release.Signal(); }

  void Hold() {
    m_sender.Send(Bytes(3, 0x55));
    EXPECT_TRUE(m_held.Wait(Patience));
  }

  const unsigned short m_port = FreePort();
  Sender m_sender{m_port};
  TEvent m_held;
  TEvent m_release;
  SharedSettings m_settings;
  std::unique_ptr<HeldMember> m_member;
};

TEST_F(HeldListenerTest, AMemberThatWasHeldUpStillKnowsTheOthers) {
  m_sender.SendValues(PeerValues(1, 0));
  ASSERT_TRUE(m_member->HeardSomebody());
  Hold();
  m_sender.SendValues(PeerValues(1, 0));
  m_sender.SendValues(PeerValues(2, 0));
  m_member->m_now += 10 * Second;
  MonitoredProcess self;
  m_member->UpdateResourceValues(self, m_member->m_ownValues);
  EXPECT_EQ(m_member->CountPeers(), 3U) << "both others, and itself";
}

// A listener that has ended, or gets no time, does not keep the worker.
TEST_F(HeldListenerTest, NobodyIsWaitedForForEver) {
  Hold();
  m_member->TakeInAsAMemberDoes();
  EXPECT_FALSE(m_release.IsSet());
}

TEST(TakeInWhatWaitsTest, ADeafMemberGoesOn) {
  SharedSettings settings;
  settings.Cpu(50);
  RealMember member(settings);
  const unsigned short port = FreePort();
  member.StartMonitoring(port);
  Sender(port).Send({});
  ASSERT_TRUE(Eventually([&] { return settings.Copy().back() == "Resource Manager: listening thread has stopped"; }));
  MonitoredProcess self;
  for (int i = 0; i < 3; ++i) member.UpdateResourceValues(self, member.m_ownValues);
  EXPECT_EQ(member.CountPeers(), 0U);
}

TEST(SteadyTimeTest, RunsForwardInNanoseconds) {
  RealMember member((Settings()));
  const std::int64_t first = member.GetSteadyTime();
  EXPECT_TRUE(Eventually([&] { return member.GetReportTime() >= first + 1'000'000; }));
  EXPECT_LT(member.GetSteadyTime() - first, 120 * Second);
}

}  // namespace
}  // namespace qilsys::test
