#include "qilsys/MonitoredProcess.h"

#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "monitor/ChildProcess.h"
#include "monitor/MonitoredProcessImpl.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TSystem.h"
#include "support/NoDescriptors.h"
#include "support/OpenHandles.h"
#include "support/System.h"

struct MonitoredProcessForTest {
  static MonitoredProcess Make(unsigned int pid, std::unique_ptr<qilsys::monitor::IProcessHandle> handle) {
    return MonitoredProcess(std::make_unique<MonitoredProcess::Impl>(pid, std::move(handle)));
  }
};

namespace qilsys::test {
namespace {

/// A process whose readings are given in advance; after the last one every reading fails.
class ScriptedHandle : public monitor::IProcessHandle {
 public:
  ScriptedHandle(std::deque<std::optional<ProcessTimesSample>> samples, int* closed = nullptr)
      : m_samples(std::move(samples)), m_closed(closed) {}
  ~ScriptedHandle() override {
    if (m_closed != nullptr) ++*m_closed;
  }

  std::optional<ProcessTimesSample> ReadTimes() const override {
    if (m_samples.empty()) return std::nullopt;
    const auto sample = m_samples.front();
    m_samples.pop_front();
    return sample;
  }
  std::uint64_t ReadPrivateBytes() override { return 4711; }
  bool IsAlive() const override { return !m_samples.empty(); }

 private:
  mutable std::deque<std::optional<ProcessTimesSample>> m_samples;
  int* m_closed;
};

MonitoredProcess Scripted(std::deque<std::optional<ProcessTimesSample>> samples) {
  return MonitoredProcessForTest::Make(12, std::make_unique<ScriptedHandle>(std::move(samples)));
}

// A sample in which the process has used the whole machine for `used` units.
ProcessTimesSample Busy(std::uint64_t used, std::uint64_t wall) { return {0, used * monitor::CountProcessors(), wall}; }

TEST(MonitoredProcessTest, FirstReadingCountsFromConstruction) {
  const MonitoredProcess process = Scripted({Busy(100, 1000), Busy(350, 2000)});
  EXPECT_EQ(process.GetCpuUsage(), 25);
}

TEST(MonitoredProcessTest, EachReadingStartsTheNextInterval) {
  const MonitoredProcess process = Scripted({Busy(0, 0), Busy(50, 100), Busy(60, 200)});
  EXPECT_EQ(process.GetCpuUsage(), 50);
  EXPECT_EQ(process.GetCpuUsage(), 10);
}

TEST(MonitoredProcessTest, NoClockTickReadsZeroAndStillStartsTheNextInterval) {
  const MonitoredProcess process = Scripted({Busy(0, 100), Busy(40, 100), Busy(50, 200)});
  EXPECT_EQ(process.GetCpuUsage(), 0);
  EXPECT_EQ(process.GetCpuUsage(), 10);
}

TEST(MonitoredProcessTest, AFailedReadingIsZeroAndLeavesTheIntervalRunning) {
  const MonitoredProcess process = Scripted({Busy(0, 0), std::nullopt, Busy(50, 200)});
  EXPECT_EQ(process.GetCpuUsage(), 0);
  EXPECT_EQ(process.GetCpuUsage(), 25);
}

TEST(MonitoredProcessTest, AnEndedProcessReadsZeroForEver) {
  const MonitoredProcess process = Scripted({Busy(0, 0)});
  EXPECT_FALSE(process.IsRunning());
  EXPECT_EQ(process.GetCpuUsage(), 0);
  EXPECT_EQ(process.GetCpuUsage(), 0);
}

TEST(MonitoredProcessTest, MemoryUsageIsThePrivateBytes) {
  const MonitoredProcess process = Scripted({Busy(0, 0)});
  EXPECT_EQ(process.GetMemoryUsage(), 4711U);
  EXPECT_EQ(process.GetProcessId(), 12U);
}

void ExpectNotRunning(const QuillonException& exception, const std::string& text) {
  EXPECT_EQ(exception.GetMessagesFront().toStdString(), text);
  EXPECT_EQ(exception.GetRedactedMessages().size(), 1U);
  EXPECT_EQ(exception.GetErrorCode(), 0xC1062A71U);
  EXPECT_EQ(exception.GetErrorName().toStdString(), "QuillonException_AutoGen_0xC1062A71");
  EXPECT_EQ(exception.GetErrorSource(), TError::System);
  EXPECT_EQ(exception.GetErrorInfo().GetStatusCode(), grpc::StatusCode::UNKNOWN);
}

template <class TAction>
void ExpectNotRunning(TAction action, const std::string& text) {
  try {
    action();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const QuillonException& exception) {
    ExpectNotRunning(exception, text);
  }
}

TEST(MonitoredProcessTest, NoHandleIsNotRunning) {
  ExpectNotRunning([] { MonitoredProcessForTest::Make(12, nullptr); }, "Process pid=12 is not running");
}

TEST(MonitoredProcessTest, NoFirstSampleIsNotRunningAndClosesTheHandle) {
  int closed = 0;
  auto handle = std::make_unique<ScriptedHandle>(std::deque<std::optional<ProcessTimesSample>>{}, &closed);
  ExpectNotRunning([&] { MonitoredProcessForTest::Make(4294967295, std::move(handle)); },
                   "Process pid=4294967295 is not running");
  EXPECT_EQ(closed, 1);
}

TEST(MonitoredProcessTest, IdsThatNoProcessCanHaveAreNotRunning) {
  for (const unsigned int pid : {0U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    ExpectNotRunning([&] { MonitoredProcess process(pid); }, "Process pid=" + std::to_string(pid) + " is not running");
    EXPECT_FALSE(MonitoredProcess::IsRunning(pid)) << pid;
  }
}

TEST(MonitoredProcessTest, MovesTheHandleAndClosesTheOneItReplaces) {
  int first = 0;
  int second = 0;
  {
    const auto make = [](unsigned int pid, int* closed) {
      return MonitoredProcessForTest::Make(
          pid, std::make_unique<ScriptedHandle>(std::deque<std::optional<ProcessTimesSample>>{Busy(0, 0)}, closed));
    };
    MonitoredProcess a = make(1, &first);
    MonitoredProcess b = make(2, &second);
    a = std::move(b);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(a.GetProcessId(), 2U);
    MonitoredProcess& same = a;
    a = std::move(same);
    EXPECT_EQ(a.GetProcessId(), 2U);
    const MonitoredProcess c(std::move(a));
    EXPECT_EQ(c.GetProcessId(), 2U);
    EXPECT_EQ(second, 0);
  }
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 1);
}

TEST(MonitoredProcessTest, WatchesTheCallingProcess) {
  const MonitoredProcess self;
  EXPECT_EQ(self.GetProcessId(), TSystem::ProcessID());
  EXPECT_TRUE(self.IsRunning());
  EXPECT_LE(self.GetCpuUsage(), 100);
  EXPECT_GT(self.GetMemoryUsage(), 0U);
  EXPECT_TRUE(MonitoredProcess::IsRunning(TSystem::ProcessID()));
}

TEST(MonitoredProcessTest, TheThreadThatMadeItMayEnd) {
  std::optional<MonitoredProcess> self;
  std::thread([&] { self.emplace(); }).join();
  EXPECT_GT(self->GetMemoryUsage(), 0U);
}

TEST(MonitoredProcessTest, OutOfDescriptorsAProcessStillSeesItselfAndItsChildren) {
  if (!NoDescriptors::CanBeHad()) GTEST_SKIP() << "left out on Windows: a reading needs no new handle";
  const ChildProcess child;
  const MonitoredProcess self;
  const MonitoredProcess watched(child.Pid());
  const NoDescriptors none;
  EXPECT_GT(self.GetMemoryUsage(), 0U);
  EXPECT_GT(MonitoredProcess().GetMemoryUsage(), 0U) << "who comes later needs none of his own";
  EXPECT_GT(GetCurrentProcessMemoryInfo().PrivateUsage, 0U);
  EXPECT_GT(watched.GetMemoryUsage(), 0U);
}

TEST(MonitoredProcessTest, TouchedMemoryShowsInTheUsage) {
  constexpr std::size_t size = 32U << 20;
  const MonitoredProcess self;
  const unsigned long long before = self.GetMemoryUsage();
  std::vector<char> block(size);
  std::memset(block.data(), 1, block.size());
  EXPECT_GE(self.GetMemoryUsage(), before + size - (1U << 20)) << block[size / 2];
}

TEST(MonitoredProcessTest, ABusyProcessReadsItsShareOfTheMachine) {
  const MonitoredProcess self;
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
  while (std::chrono::steady_clock::now() < end) continue;
  // Other processes may take part of the interval, so only that it shows can be asked for.
  EXPECT_GT(self.GetCpuUsage(), 0);
}

TEST(MonitoredProcessTest, ReadsAChildUntilItEnds) {
  ChildProcess child;
  const MonitoredProcess process(child.Pid());
  EXPECT_EQ(process.GetProcessId(), child.Pid());
  EXPECT_TRUE(process.IsRunning());
  EXPECT_TRUE(MonitoredProcess::IsRunning(child.Pid()));
  EXPECT_GT(process.GetMemoryUsage(), 0U);
  child.EndUnreaped();
  EXPECT_FALSE(process.IsRunning());
  EXPECT_FALSE(MonitoredProcess::IsRunning(child.Pid()));
  // The first reading after the end may still cover time that was used.
  process.GetCpuUsage();
  EXPECT_EQ(process.GetCpuUsage(), 0);
  EXPECT_EQ(process.GetMemoryUsage(), 0U);
  child.Reap();
  EXPECT_FALSE(process.IsRunning());
  EXPECT_EQ(process.GetCpuUsage(), 0);
}

TEST(MonitoredProcessTest, AnEndedProcessCantBeWatchedReapedOrNot) {
  ChildProcess child;
  const unsigned int pid = child.Pid();
  const std::string text = "Process pid=" + std::to_string(pid) + " is not running";
  child.EndUnreaped();
  ExpectNotRunning([&] { MonitoredProcess process(pid); }, text);
  child.Reap();
  ExpectNotRunning([&] { MonitoredProcess process(pid); }, text);
}

TEST(MonitoredProcessTest, LeavesNothingOpen) {
  const ChildProcess child;
  ChildProcess ended;
  ended.EndUnreaped();
  const auto watch = [&] {
    MonitoredProcess process(child.Pid());
    process.GetCpuUsage();
    process.GetMemoryUsage();
    EXPECT_TRUE(process.IsRunning());
    EXPECT_TRUE(MonitoredProcess::IsRunning(child.Pid()));
    EXPECT_FALSE(MonitoredProcess::IsRunning(ended.Pid()));
    EXPECT_THROW(MonitoredProcess{ended.Pid()}, QuillonException);
    EXPECT_THROW(MonitoredProcess{0x7FFFFFFF}, QuillonException);
    process = MonitoredProcess();
    MonitoredProcess::IsCpuAtMaxFrequency();
    GetProcessMemoryInfo(child.Handle());
  };
  // What the system opens at the first use stays.
  watch();
  const unsigned int before = OpenHandles();
  for (int i = 0; i < 200; ++i) watch();
  EXPECT_LE(OpenHandles(), before);
}

bool AllZero(const ProcessMemoryInfo& info) {
  return info.PageFaultCount == 0 && info.PeakWorkingSetSize == 0 && info.WorkingSetSize == 0 &&
         info.QuotaPeakPagedPoolUsage == 0 && info.QuotaPagedPoolUsage == 0 && info.QuotaPeakNonPagedPoolUsage == 0 &&
         info.QuotaNonPagedPoolUsage == 0 && info.PagefileUsage == 0 && info.PeakPagefileUsage == 0 &&
         info.PrivateUsage == 0;
}

TEST(ProcessMemoryInfoTest, StartsAtZero) { EXPECT_TRUE(AllZero(ProcessMemoryInfo())); }

TEST(ProcessMemoryInfoTest, NoHandleAndNoProcessGiveZeros) {
  EXPECT_TRUE(AllZero(GetProcessMemoryInfo(nullptr)));
  for (const std::uintptr_t handle : {std::uintptr_t{0x7FFFFFFC}, ~std::uintptr_t{0} / 16}) {
    EXPECT_TRUE(AllZero(GetProcessMemoryInfo(reinterpret_cast<void*>(handle)))) << handle;
  }
}

TEST(ProcessMemoryInfoTest, ReadsTheCallingProcess) {
  const ProcessMemoryInfo info = GetCurrentProcessMemoryInfo();
  EXPECT_GT(info.PrivateUsage, 0U);
  EXPECT_GE(info.WorkingSetSize, 1U);
  EXPECT_GE(info.PeakWorkingSetSize, info.WorkingSetSize / 2);
  EXPECT_EQ(info.PagefileUsage, info.PrivateUsage);
}

TEST(ProcessMemoryInfoTest, CountsPageFaults) {
  QILSYS_SKIP_UNDER_WINE("page faults are not counted");
  EXPECT_GT(GetCurrentProcessMemoryInfo().PageFaultCount, 0U);
}

TEST(ProcessMemoryInfoTest, ReadsAnotherProcess) {
  const ChildProcess child;
  EXPECT_GT(GetProcessMemoryInfo(child.Handle()).PrivateUsage, 0U);
}

}  // namespace
}  // namespace qilsys::test
