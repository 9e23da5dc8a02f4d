#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <thread>

#include "monitor/Member.h"

namespace qilsys::test {
namespace {

using Wait = ResourceManagerImpl::NextWait;

constexpr Wait CheckInterval = std::chrono::milliseconds(5000);

const char* CpuUnsuccessful = "Resource Manager: CPU reclamation was unsucessful. Process has to be terminated.";
const char* MemoryUnsuccessful = "Resource Manager: Memory reclamation was unsucessful. Process has to be terminated.";
const char* AllProcesses = "Resource Manager: Logging all CPU/memory info across processes.";

std::string ProcessLine(const ResourceValuesV2& values, const std::string& memory) {
  return "Resource Manager: pid: " + std::to_string(values.pid) + "; Memory info: " + memory +
         " bytes; Memory limit usage: " + std::to_string(values.memoryLimitPercent) +
         "%; CPU info: " + std::to_string(values.cpuPercent) + "%; uuid=" + IdentityText(values.uuid);
}

/// A member whose CPU use has been over the limit for longer than is allowed.
Member& PastTheSustainedTime(Member& member, unsigned int percent) {
  member.m_reading.m_cpuPercent = percent;
  member.m_highCpuSince = 0;
  return member;
}

/// The handler that the worker leaves behind where `before` was in place, on its own thread: some systems keep one for
/// each.
std::terminate_handler HandlerOfWorker(std::terminate_handler given, std::terminate_handler before) {
  Settings settings;
  settings.Cpu(50).m_general.m_terminateHandler = given;
  Member member(settings);
  member.m_stopEvent.Signal();
  std::terminate_handler seen = nullptr;
  std::thread([&] {
    std::set_terminate(before);
    member.Work();
    seen = std::get_terminate();
  }).join();
  return seen;
}

TEST(WorkerTest, TheTerminateHandlerIsInstalledAsGiven) {
  const std::terminate_handler before = std::get_terminate();
  const std::terminate_handler mine = [] { std::_Exit(1); };
  const std::terminate_handler other = [] { std::_Exit(2); };
  EXPECT_EQ(HandlerOfWorker(mine, other), mine);
  EXPECT_NE(HandlerOfWorker(nullptr, other), other) << "null is the default handler";
  std::set_terminate(before);
}

TEST(WorkerTest, StopDuringTheDelayEndsItWithoutASample) {
  Member member(Settings().Cpu(50).Interval(5));
  EXPECT_EQ(member.Step(true), std::nullopt);
  EXPECT_EQ(member.m_samples, 0);
}

TEST(WorkerTest, APassSamplesOnceAndWaitsForTheInterval) {
  Member member(Settings().Cpu(50).Memory(1000, 1000).Interval(5));
  member.m_total = [] { return 1ULL; };
  for (int pass = 1; pass <= 3; ++pass) {
    EXPECT_EQ(member.Step(), CheckInterval);
    EXPECT_EQ(member.m_samples, pass);
  }
  EXPECT_EQ(member.Step(true), std::nullopt);
  EXPECT_EQ(member.m_samples, 3);
  EXPECT_EQ(member.TakeLines(), Lines{});
}

TEST(WorkerTest, InfoLinesComeInEveryThirdPass) {
  Member member(Settings().Cpu(50).Memory(1000, 1000).Interval(5).InfoEvery(3));
  member.m_total = [] { return 7ULL; };
  member.m_reading = {20, 300};
  const Lines info{
      "Resource Manager: CPU info: 20%; 20% (Quillon total); 0 (info count)",
      "Resource Manager: Memory info: 300 bytes (current process);300 bytes (Quillon total); 7 bytes (total of all "
      "processes); 0 (info count)"};
  for (int pass = 1; pass <= 9; ++pass) {
    member.Step();
    EXPECT_EQ(member.TakeLines(), pass % 3 == 0 ? info : Lines{}) << pass;
  }
}

TEST(WorkerTest, InfoEveryOneIsEveryPassAndZeroIsNever) {
  Member every(Settings().Cpu(50).InfoEvery(1));
  Member never(Settings().Cpu(50).InfoEvery(0));
  for (int pass = 0; pass < 3; ++pass) {
    every.Step();
    never.Step();
    EXPECT_EQ(every.TakeLines(), Lines{"Resource Manager: CPU info: 0%"});
    EXPECT_EQ(never.TakeLines(), Lines{});
  }
}

TEST(WorkerTest, CpuTerminationEndsTheWorkerBeforeTheMemoryCheck) {
  Member member(Settings().Cpu(50, 10).TerminateCpu(7).Memory(1000, 1000).TerminateMemory(8).Interval(5));
  PastTheSustainedTime(member, 70).m_reading.m_memoryBytes = 3000;
  EXPECT_EQ(member.Step(), std::nullopt);
  EXPECT_EQ(
      member.TakeLines(),
      (Lines{"Resource Manager: Exceeded sustained high CPU threshold above 50% for 10 seconds.  This process has "
             "the highest usage of 70%",
             "Resource Manager: Reclaiming CPU. Number registered functions: 0", CpuUnsuccessful, AllProcesses,
             ProcessLine(member.m_ownValues, "3,000"),
             "TERMINATE 7 Resource Manager: Process is above CPU threshold. Requesting termination."}));
}

TEST(WorkerTest, MemoryTerminationEndsTheWorker) {
  Member member(Settings().Memory(1000, 1000).TerminateMemory(255).Interval(5));
  member.m_reading.m_memoryBytes = 1500;
  EXPECT_EQ(member.Step(), std::nullopt);
  EXPECT_EQ(member.TakeLines(),
            (Lines{"Resource Manager: Exceeded allowed memory usage per process. 1,500 bytes",
                   "Resource Manager: Reclaiming memory. Number registered functions: 0", MemoryUnsuccessful,
                   AllProcesses, ProcessLine(member.m_ownValues, "1,500"),
                   "TERMINATE 255 Resource Manager: Process is above memory threshold. Requesting termination."}));
}

TEST(WorkerTest, WithoutTerminationEachPassRepeatsReclaimAndLines) {
  Member member(Settings().Cpu(50, 10).Memory(1000, 1000).Interval(5));
  PastTheSustainedTime(member, 70).m_reading.m_memoryBytes = 1500;
  for (int pass = 0; pass < 3; ++pass) {
    EXPECT_EQ(member.Step(), CheckInterval);
    EXPECT_EQ(
        member.TakeLines(),
        (Lines{
            "Resource Manager: Exceeded sustained high CPU threshold above 50% for 10 seconds.  This process has the "
            "highest usage of 70%",
            "Resource Manager: Reclaiming CPU. Number registered functions: 0", CpuUnsuccessful, AllProcesses,
            ProcessLine(member.m_ownValues, "1,500"),
            "Resource Manager: Process is above CPU threshold, but the process does not terminate on excessive Cpu "
            "usage. Not terminating.",
            "Resource Manager: Exceeded allowed memory usage per process. 1,500 bytes",
            "Resource Manager: Reclaiming memory. Number registered functions: 0", MemoryUnsuccessful, AllProcesses,
            ProcessLine(member.m_ownValues, "1,500"),
            "Resource Manager: Process is above memory threshold, but the process does not terminate on excessive "
            "memory useage. Not terminating."}));
  }
}

TEST(WorkerTest, ReclaimingWaitsForTheIntervalAndSamplesAgain) {
  Member member(Settings().Memory(1000, 1000).TerminateMemory(1).Interval(5));
  member.m_total = [] { return 1ULL; };
  member.m_reading.m_memoryBytes = 1500;
  member.MemoryReclaim().Add(u"cache", [&](double) { member.m_reading.m_memoryBytes = 400; });
  EXPECT_EQ(member.Step(), CheckInterval);
  EXPECT_EQ(member.m_samples, 1);
  EXPECT_EQ(member.TakeLines(), (Lines{"Resource Manager: Exceeded allowed memory usage per process. 1,500 bytes",
                                       "Resource Manager: Reclaiming memory. Number registered functions: 1",
                                       "Resource Manager: Calling reclaim function named: cache"}));
  EXPECT_EQ(member.Step(), CheckInterval);
  EXPECT_EQ(member.m_samples, 2);
  EXPECT_EQ(member.TakeLines(), (Lines{"Resource Manager: Memory info: 400 bytes (current process);400 bytes (Quillon "
                                       "total); 1 bytes (total of all processes); 0 (info count)",
                                       "Resource Manager: Memory reclaimed. Process termination has been averted!"}));
  EXPECT_EQ(member.Step(), CheckInterval) << "the next pass";
  EXPECT_EQ(member.m_samples, 3);
}

TEST(WorkerTest, AfterAReclaimOfCpuTheMemoryIsChecked) {
  Member member(Settings().Cpu(50, 10).TerminateCpu(1).Memory(1000, 1000).TerminateMemory(2).Interval(5));
  PastTheSustainedTime(member, 70).m_reading.m_memoryBytes = 1500;
  member.CpuReclaim().Add(u"pool", [&](double) { member.m_reading.m_cpuPercent = 5; });
  EXPECT_EQ(member.Step(), CheckInterval);
  EXPECT_EQ(member.Step(), std::nullopt);
  EXPECT_EQ(member.TakeLines().back(),
            "TERMINATE 2 Resource Manager: Process is above memory threshold. Requesting termination.");
}

TEST(WorkerTest, AStopDuringAReclaimLeadsToATerminationRequest) {
  Member member(Settings().Cpu(50, 10).TerminateCpu(3).Interval(5));
  PastTheSustainedTime(member, 70).CpuReclaim().Add(u"pool", [](double) {});
  EXPECT_EQ(member.Step(), CheckInterval);
  EXPECT_EQ(member.Step(true), std::nullopt);
  EXPECT_EQ(member.m_samples, 1);
  EXPECT_EQ(member.TakeLines().back(),
            "TERMINATE 3 Resource Manager: Process is above CPU threshold. Requesting termination.");
}

TEST(WorkerTest, AStopDuringAReclaimWithoutTerminationEndsAtTheNextWait) {
  Member member(Settings().Memory(1000, 1000).Interval(5));
  member.m_reading.m_memoryBytes = 1500;
  member.MemoryReclaim().Add(u"cache", [](double) {});
  EXPECT_EQ(member.Step(), CheckInterval);
  EXPECT_EQ(member.Step(true), CheckInterval);
  EXPECT_EQ(member.Step(true), std::nullopt);
  EXPECT_EQ(member.m_samples, 1);
}

TEST(WorkerTest, TheInfoCounterRunsOnOverAReclaim) {
  Member member(Settings().Memory(1000, 1000).Interval(5).InfoEvery(2));
  member.m_total = [] { return 1ULL; };
  member.m_reading.m_memoryBytes = 1500;
  member.MemoryReclaim().Add(u"cache", [&](double) { member.m_reading.m_memoryBytes = 10; });
  member.Step();
  member.Step();
  member.TakeLines();
  member.Step();
  EXPECT_EQ(member.TakeLines().size(), 1U) << "the second pass has its info line";
}

}  // namespace
}  // namespace qilsys::test
