#include "qilsys/ResourceManager.h"

#include <gtest/gtest.h>

#include <atomic>
#include <boost/system/system_error.hpp>
#include <boost/uuid/entropy_error.hpp>
#include <cmath>
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "monitor/ChildProcess.h"
#include "monitor/Loopback.h"
#include "monitor/Scarcity.h"
#include "monitor/Signals.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TSystem.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "support/OpenHandles.h"

namespace qilsys::test {
namespace {

CaughtAssertion NotStarted(int line, unsigned int code, const char* codeName) {
  return {"main/monitor/ResourceManager", line, "s_singleton", code, codeName};
}

const CaughtAssertion NoLog{"main/monitor/ResourceManager", 32, "generalConfig.m_logFunc != nullptr", 0x726F85B0,
                            "LogicException_LogicAssert_0x726F85B0"};
const CaughtAssertion NoTerminate{"main/monitor/ResourceManager", 34, "generalConfig.m_terminateFunc != nullptr",
                                  0x7A7F6F49, "LogicException_LogicAssert_0x7A7F6F49"};

/// A host with the facade's own settings; whatever a test has started is stopped at its end.
class ResourceManagerTest : public testing::Test {
 protected:
  ResourceManagerTest() {
    m_general.m_logFunc = [this](const TStringCore& line) {
      Add(line.toStdString());
      if (line == m_line) m_atLine();
    };
    m_general.m_terminateFunc = [this](unsigned char code, const TStringCore& reason) {
      Add("TERMINATE " + std::to_string(code) + " " + reason.toStdString());
    };
    m_memory.m_perProcessLimit = std::uint64_t{1} << 40;
    m_memory.m_allProcessesLimit = std::uint64_t{1} << 50;
  }
  ~ResourceManagerTest() override { ResourceManager::Stop(); }

  void Start(unsigned short port = FreePort()) { ResourceManager::Start(port, m_cpu, m_memory, m_general); }

  /// Has this line do something when it is logged, on the thread that logs it. To be said before the start.
  void At(const std::string& line, std::function<void()> action) {
    m_line = TStringCore::fromStdString(line);
    m_atLine = std::move(action);
  }

  void StartWithoutPolicy() {
    m_memory.m_perProcessLimit = 0;
    Start();
  }

  void Add(std::string line) {
    const std::lock_guard lock(m_mutex);
    m_lines.push_back(std::move(line));
  }
  std::vector<std::string> Lines() {
    const std::lock_guard lock(m_mutex);
    return m_lines;
  }
  bool Logged(const std::string& line) {
    return Eventually([&] {
      const auto lines = Lines();
      return std::find(lines.begin(), lines.end(), line) != lines.end();
    });
  }

  std::mutex m_mutex;
  std::vector<std::string> m_lines;
  TStringCore m_line;
  std::function<void()> m_atLine;
  ResourceManager::CpuConfig m_cpu;
  ResourceManager::MemoryConfig m_memory;
  ResourceManager::GeneralConfig m_general;
};

struct NotStartedRow {
  const char* m_name;
  void (*m_call)();
  int m_line;
  unsigned int m_code;
  const char* m_codeName;
};

class NotStartedTest : public testing::TestWithParam<NotStartedRow> {};

TEST_P(NotStartedTest, IsAnAssertion) {
  const NotStartedRow& row = GetParam();
  EXPECT_EQ(CatchAssertion(row.m_call), NotStarted(row.m_line, row.m_code, row.m_codeName));
}

TEST_P(NotStartedTest, DoesNothingWhenTheHookReturns) {
  const ScopedAssertHook hook([](const char*, int, const char*, const QuillonError&) {});
  EXPECT_NO_THROW(GetParam().m_call());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NotStartedTest,
    testing::Values(NotStartedRow{"AddReclaimCpuFunction",
                                  [] { ResourceManager::AddReclaimCpuFunction(u"a", [](double) {}); }, 70, 0x63847926,
                                  "LogicException_LogicAssert_0x63847926"},
                    NotStartedRow{"RemoveReclaimCpuFunction", [] { ResourceManager::RemoveReclaimCpuFunction(u"a"); },
                                  76, 0x89B0A734, "LogicException_LogicAssert_0x89B0A734"},
                    NotStartedRow{"AddReclaimMemoryFunction",
                                  [] { ResourceManager::AddReclaimMemoryFunction(u"a", [](double) {}); }, 82,
                                  0x401F5132, "LogicException_LogicAssert_0x401F5132"},
                    NotStartedRow{"RemoveReclaimMemoryFunction",
                                  [] { ResourceManager::RemoveReclaimMemoryFunction(u"a"); }, 88, 0x5935050F,
                                  "LogicException_LogicAssert_0x5935050F"},
                    NotStartedRow{"RegisterChildProcessId", [] { ResourceManager::RegisterChildProcessId(1); }, 94,
                                  0xC229B6E8, "LogicException_LogicAssert_0xC229B6E8"},
                    NotStartedRow{"UnregisterChildProcessId", [] { ResourceManager::UnregisterChildProcessId(1); }, 100,
                                  0x17D48ECC, "LogicException_LogicAssert_0x17D48ECC"},
                    NotStartedRow{"GetCpuAndMemoryUsage", [] { ResourceManager::GetCpuAndMemoryUsage(); }, 106,
                                  0x9834CEA0, "LogicException_LogicAssert_0x9834CEA0"}),
    [](const auto& row) { return row.param.m_name; });

TEST_F(ResourceManagerTest, UsageIsZeroWhenTheHookReturns) {
  const ScopedAssertHook hook([](const char*, int, const char*, const QuillonError&) {});
  EXPECT_EQ(ResourceManager::GetCpuAndMemoryUsage(), (std::pair<unsigned char, unsigned long long>(0, 0)));
}

TEST_F(ResourceManagerTest, PressureIsMinusOneWhenNotStarted) { EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0); }

TEST_F(ResourceManagerTest, StopWithoutStartDoesNothing) {
  ResourceManager::Stop();
  StartWithoutPolicy();
  ResourceManager::Stop();
  ResourceManager::Stop();
  EXPECT_EQ(Lines(), std::vector<std::string>{"Resource Manager: stopped"});
}

TEST_F(ResourceManagerTest, AnEmptyLogFunctionIsAnAssertionEvenWhenStarted) {
  const auto startWithoutLog = [this] {
    ResourceManager::GeneralConfig general = m_general;
    general.m_logFunc = nullptr;
    ResourceManager::Start(1, m_cpu, m_memory, general);
  };
  EXPECT_EQ(CatchAssertion(startWithoutLog), NoLog);
  EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
  StartWithoutPolicy();
  EXPECT_EQ(CatchAssertion(startWithoutLog), NoLog);
}

TEST_F(ResourceManagerTest, AnEmptyTerminateFunctionIsAnAssertion) {
  m_general.m_terminateFunc = nullptr;
  EXPECT_EQ(CatchAssertion([this] { Start(); }), NoTerminate);
}

TEST_F(ResourceManagerTest, TheLogFunctionIsLookedAtFirst) {
  m_general = {};
  EXPECT_EQ(CatchAssertion([this] { Start(); }), NoLog);
}

TEST_F(ResourceManagerTest, AHookThatReturnsStartsWithoutATerminateFunction) {
  const RecordedAssertions assertions;
  m_general.m_terminateFunc = nullptr;
  Start();
  EXPECT_EQ(assertions.All(), std::vector{NoTerminate});
  EXPECT_TRUE(Eventually([] { return ResourceManager::GetCpuAndMemoryUsage().second > 0; }));
}

// There would be nobody to take the first line.
TEST_F(ResourceManagerTest, AHookThatReturnsDoesNotStartWithoutALogFunction) {
  const RecordedAssertions assertions;
  m_general = {};
  Start();
  EXPECT_EQ(assertions.All(), (std::vector{NoLog, NoTerminate}));
  EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
}

TEST_F(ResourceManagerTest, ASecondStartIsIgnored) {
  Start();
  const std::vector<std::string> before = Lines();
  m_memory.m_perProcessLimit = 1;
  Start();
  EXPECT_LT(ResourceManager::GetMemoryPressure(), 1.0) << "the first limit holds";
  EXPECT_FALSE(before.empty());
}

TEST_F(ResourceManagerTest, WithNoPolicyNothingRunsAndFunctionsCanBeRegistered) {
  StartWithoutPolicy();
  EXPECT_EQ(Lines(), std::vector<std::string>{});
  ResourceManager::AddReclaimCpuFunction(u"a", [](double) {});
  ResourceManager::AddReclaimMemoryFunction(u"a", [](double) {});
  EXPECT_EQ(ResourceManager::GetCpuAndMemoryUsage(), (std::pair<unsigned char, unsigned long long>(0, 0)));
  EXPECT_TRUE(std::isinf(ResourceManager::GetMemoryPressure()));
  EXPECT_GT(ResourceManager::GetMemoryPressure(), 0);
}

TEST_F(ResourceManagerTest, CpuAndMemoryFunctionsAreApart) {
  StartWithoutPolicy();
  ResourceManager::AddReclaimCpuFunction(u"a", [](double) {});
  EXPECT_EQ(CatchAssertion([] { ResourceManager::RemoveReclaimMemoryFunction(u"a"); }).m_code, 0x559557CCU);
  ResourceManager::RemoveReclaimCpuFunction(u"a");
  EXPECT_EQ(CatchAssertion([] { ResourceManager::RemoveReclaimCpuFunction(u"a"); }).m_code, 0x559557CCU);
  ResourceManager::AddReclaimMemoryFunction(u"a", [](double) {});
  EXPECT_EQ(CatchAssertion([] { ResourceManager::AddReclaimMemoryFunction(u"a", [](double) {}); }).m_code, 0x4A8DFC55U);
  EXPECT_EQ(CatchAssertion([] { ResourceManager::AddReclaimMemoryFunction(u"b", nullptr); }).m_code, 0x90402CEBU);
}

TEST_F(ResourceManagerTest, ChildrenAreCountedIntoThePressure) {
  m_memory.m_perProcessLimit = 1 << 20;
  m_general.m_startDelaySeconds = 1000;
  Start();
  const ChildProcess child;
  const double before = ResourceManager::GetMemoryPressure();
  ResourceManager::RegisterChildProcessId(child.Pid());
  EXPECT_GT(ResourceManager::GetMemoryPressure(), before);
  EXPECT_EQ(CatchAssertion([&] { ResourceManager::RegisterChildProcessId(child.Pid()); }).m_code, 0xB2145A1BU);
  ResourceManager::UnregisterChildProcessId(child.Pid());
  EXPECT_EQ(CatchAssertion([&] { ResourceManager::UnregisterChildProcessId(child.Pid()); }).m_code, 0xD96CB2C8U);
  EXPECT_THROW(ResourceManager::RegisterChildProcessId(0x7FFFFFFF), QuillonException);
}

TEST_F(ResourceManagerTest, TheOwnFiguresComeBack) {
  Start();
  EXPECT_TRUE(Eventually([] { return ResourceManager::GetCpuAndMemoryUsage().second > 0; }));
  EXPECT_EQ(ResourceManager::GetCpuAndMemoryUsage().first, 0) << "the CPU policy is off";
}

TEST_F(ResourceManagerTest, AnExcessAsksTheHostToEndTheProcess) {
  m_memory.m_perProcessLimit = 1;
  m_memory.m_terminateOnExcess = true;
  m_memory.m_terminateCode = 42;
  Start();
  EXPECT_TRUE(Logged("TERMINATE 42 Resource Manager: Process is above memory threshold. Requesting termination."));
}

TEST_F(ResourceManagerTest, StopMayBeFollowedByAStart) {
  for (int i = 0; i < 3; ++i) {
    Start();
    EXPECT_TRUE(Eventually([] { return ResourceManager::GetCpuAndMemoryUsage().second > 0; }));
    ResourceManager::Stop();
    EXPECT_EQ(Lines().back(), "Resource Manager: stopped");
    EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
  }
}

TEST_F(ResourceManagerTest, TheLastLineStillSeesTheManager) {
  double pressure = 0;
  At("Resource Manager: stopped", [&] { pressure = ResourceManager::GetMemoryPressure(); });
  StartWithoutPolicy();
  ResourceManager::Stop();
  EXPECT_TRUE(std::isinf(pressure)) << "a started manager without a limit";
  EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
}

TEST_F(ResourceManagerTest, AStopFromTheLastLineIsNoSecondOne) {
  At("Resource Manager: stopped", [] { ResourceManager::Stop(); });
  StartWithoutPolicy();
  ResourceManager::Stop();
  EXPECT_EQ(Lines(), std::vector<std::string>{"Resource Manager: stopped"});
}

TEST_F(ResourceManagerTest, AStartFromTheLastLineIsIgnored) {
  At("Resource Manager: stopped", [this] { Start(); });
  StartWithoutPolicy();
  ResourceManager::Stop();
  EXPECT_EQ(Lines(), std::vector<std::string>{"Resource Manager: stopped"});
  EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
}

TEST_F(ResourceManagerTest, AThrowOutOfTheLastLineHasStoppedAllTheSame) {
  At("Resource Manager: stopped", [] { throw std::runtime_error("no"); });
  StartWithoutPolicy();
  EXPECT_THROW(ResourceManager::Stop(), std::runtime_error);
  EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
  At("Resource Manager: stopped", [] {});
  StartWithoutPolicy();
  EXPECT_TRUE(std::isinf(ResourceManager::GetMemoryPressure())) << "there is a life after it";
}

TEST_F(ResourceManagerTest, AStopFromALineOfStartTakesEffectWhenStartReturns) {
  double pressure = 0;
  At("Resource Manager: Checking resources every 1 seconds", [&] {
    ResourceManager::Stop();
    pressure = ResourceManager::GetMemoryPressure();
  });
  Start();
  EXPECT_GE(pressure, 0.0) << "not stopped yet";
  EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
  EXPECT_EQ(Lines().back(), "Resource Manager: stopped");
  At("Resource Manager: Checking resources every 1 seconds", [] {});
  Start();
  EXPECT_NE(ResourceManager::GetMemoryPressure(), -1.0) << "the wish holds for one start";
}

TEST_F(ResourceManagerTest, AStopFromALineOfAStartThatFailsTakesEffectToo) {
  const unsigned short port = FreePort();
  const Stranger stranger(port);
  At("Resource Manager: listening on port " + std::to_string(port), [] { ResourceManager::Stop(); });
  EXPECT_THROW(Start(port), boost::system::system_error);
  EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
  EXPECT_EQ(Lines().back(), "Resource Manager: stopped");
}

TEST_F(ResourceManagerTest, AFailedStartStaysUntilStop) {
  const unsigned short port = FreePort();
  const Stranger stranger(port);
  EXPECT_THROW(Start(port), boost::system::system_error);
  EXPECT_NE(ResourceManager::GetMemoryPressure(), -1.0);
  const std::size_t count = Lines().size();
  Start();
  EXPECT_EQ(Lines().size(), count) << "a further start does nothing";
  ResourceManager::Stop();
  EXPECT_EQ(Lines().back(), "Resource Manager: stopped");
  Start();
  EXPECT_TRUE(Eventually([] { return ResourceManager::GetCpuAndMemoryUsage().second > 0; }));
}

TEST_F(ResourceManagerTest, AStartWithoutRandomNumbersStartsNothing) {
  {
    const NoRandomNumbers none;
    EXPECT_THROW(Start(), boost::uuids::entropy_error);
  }
  EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
  EXPECT_TRUE(Lines().empty());
  Start();
  EXPECT_NE(ResourceManager::GetMemoryPressure(), -1.0);
}

TEST_F(ResourceManagerTest, AStartWithoutThreadsStaysUntilStop) {
  if (!NoThreads::CanBeHad()) GTEST_SKIP() << "left out on Windows: it has no means to refuse a thread";
  {
    const NoThreads none;
    EXPECT_THROW(Start(), std::system_error);
  }
  EXPECT_NE(ResourceManager::GetMemoryPressure(), -1.0);
  ResourceManager::Stop();
  EXPECT_EQ(Lines().back(), "Resource Manager: stopped");
  EXPECT_EQ(ResourceManager::GetMemoryPressure(), -1.0);
}

TEST_F(ResourceManagerTest, StoppedItLeavesNothingOpen) {
  const auto run = [this] {
    Start();
    EXPECT_TRUE(Eventually([] { return ResourceManager::GetCpuAndMemoryUsage().second > 0; }));
    ResourceManager::Stop();
  };
  // What the system opens at the first use stays.
  run();
  const unsigned int before = OpenHandles();
  for (int i = 0; i < 20; ++i) run();
  EXPECT_LE(OpenHandles(), before + MostKeptByThreads);
}

// A host that blocks a signal on its threads and waits for it by sigwait would else be ended by it.
TEST_F(ResourceManagerTest, ItsThreadsLeaveTheSignalsToTheHost) {
  if (!SignalsTakenHere()) GTEST_SKIP() << "left out on Windows: it interrupts no thread";
  std::mutex mutex;
  std::map<std::thread::id, SignalsTaken> taken;
  m_general.m_infoEveryChecks = 1;
  m_general.m_logFunc = [&](const TStringCore& line) {
    const std::lock_guard lock(mutex);
    taken.emplace(std::this_thread::get_id(), *SignalsTakenHere());
    if (line.startsWith(u"Resource Manager: Memory info: ")) Add("info");
  };
  Start();
  EXPECT_TRUE(Logged("info"));
  ResourceManager::Stop();
  EXPECT_EQ(taken.size(), 3U) << "this thread, the worker and the listener";
  taken.erase(std::this_thread::get_id());
  for (const auto& [thread, signals] : taken) EXPECT_EQ(signals, (SignalsTaken{false, true}));
}

TEST_F(ResourceManagerTest, StopOnTheWorkerThreadRaisesTheThreadError) {
  std::atomic<bool> started = false;
  std::atomic<bool> refused = false;
  m_memory.m_perProcessLimit = 1;
  m_memory.m_terminateOnExcess = true;
  m_general.m_terminateFunc = [&](unsigned char, const TStringCore&) {
    // The worker may come here before Start has returned, and these two never run at once.
    while (!started) std::this_thread::yield();
    try {
      ResourceManager::Stop();
    } catch (const std::system_error& error) {
      refused = error.code() == std::errc::resource_deadlock_would_occur;
    }
  };
  Start();
  started = true;
  EXPECT_TRUE(Eventually([&] { return refused.load(); }));
  ResourceManager::Stop();
  EXPECT_EQ(Lines().back(), "Resource Manager: stopped");
}

/// Starts a member that is always over its limit, and whose handler ends the process with `Code`.
template <int Code>
void StartWithHandler(unsigned short port) {
  ResourceManager::MemoryConfig memory;
  memory.m_perProcessLimit = 1;
  ResourceManager::GeneralConfig general;
  general.m_logFunc = [](const TStringCore&) {};
  general.m_terminateFunc = [](unsigned char, const TStringCore&) {};
  general.m_terminateHandler = [] { std::_Exit(Code); };
  general.m_startDelaySeconds = 1;
  ResourceManager::Start(port, {}, memory, general);
}

TEST(ResourceManagerDeathTest, AThrowOutOfAReclaimFunctionEndsInTheHandler) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        StartWithHandler<19>(FreePort());
        ResourceManager::AddReclaimMemoryFunction(u"cache", [](double) { throw std::runtime_error("no"); });
        Eventually([] { return false; });
      },
      testing::ExitedWithCode(19), "");
}

// Nothing can be sent to port 0.
TEST(ResourceManagerDeathTest, AFailedSendEndsInTheHandler) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        StartWithHandler<21>(0);
        Eventually([] { return false; });
      },
      testing::ExitedWithCode(21), "");
}

TEST(AdjustMemoryLimitTest, AnExplicitLimitIsTakenWhateverTheMachine) {
  EXPECT_EQ(ResourceManager::AdjustMemoryLimit(0, 8, 0.5, 1.0), std::uint64_t{8} << 30);
  EXPECT_EQ(ResourceManager::AdjustMemoryLimit(100, 0xFFFFFFFF, 0.5, 1.0), std::uint64_t{0xFFFFFFFF} << 30);
}

TEST(AdjustMemoryLimitTest, OtherwiseItGoesByTheMachinesMemory) {
  const std::uint64_t total = TSystem::Memory().m_totalPhysical;
  EXPECT_EQ(ResourceManager::AdjustMemoryLimit(0, 0, 0.5, 0.0),
            static_cast<std::uint64_t>(static_cast<double>(total) * 0.5));
  EXPECT_EQ(ResourceManager::AdjustMemoryLimit(0, 0, 1.0, 0.25), total - (std::uint64_t{1} << 28));
}

TEST(ResourceManagerObjectTest, AssigningReturnsTheObject) {
  ResourceManager a;
  ResourceManager b;
  EXPECT_EQ(&(a = b), &a);
  EXPECT_EQ(&(a = std::move(b)), &a);
}

}  // namespace
}  // namespace qilsys::test
