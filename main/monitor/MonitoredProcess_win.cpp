// The sibling for Linux is MonitoredProcess_linux.cpp.
#include "monitor/MonitoredProcess_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>
// After windows.h, whose types they are made of.
#include <powrprof.h>
#include <psapi.h>

#include "base/Win32Handle_win.h"
#include "qilsys/MonitoredProcess.h"

// A macro of psapi.h, which would give our function of that name the name of the system's.
#undef GetProcessMemoryInfo

namespace qilsys::monitor {

namespace {

constexpr DWORD AccessToWatch = PROCESS_QUERY_INFORMATION | PROCESS_VM_READ | SYNCHRONIZE;
constexpr DWORD AccessToWait = SYNCHRONIZE;
static_assert(AccessToWatch == 0x100410 && AccessToWait == 0x100000);

/// One entry of the table that the level `ProcessorInformation` fills; no header declares it.
struct ProcessorPowerInformation {
  ULONG number;
  ULONG maxMhz;
  ULONG currentMhz;
  ULONG mhzLimit;
  ULONG maxIdleState;
  ULONG currentIdleState;
};
static_assert(sizeof(ProcessorPowerInformation) == 24);

std::uint64_t HundredNanoseconds(const FILETIME& time) {
  return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

// The wall clock is read right behind the times, so that what lies between the two never counts as use.
std::optional<ProcessTimesSample> ReadTimesOf(HANDLE process) {
  FILETIME created{};
  FILETIME ended{};
  FILETIME kernel{};
  FILETIME user{};
  if (!GetProcessTimes(process, &created, &ended, &kernel, &user)) return std::nullopt;
  FILETIME wall{};
  GetSystemTimeAsFileTime(&wall);
  return ProcessTimesSample{HundredNanoseconds(kernel), HundredNanoseconds(user), HundredNanoseconds(wall)};
}

ProcessMemoryInfo InfoOf(const PROCESS_MEMORY_COUNTERS_EX& counters) {
  ProcessMemoryInfo info;
  info.PageFaultCount = counters.PageFaultCount;
  info.PeakWorkingSetSize = counters.PeakWorkingSetSize;
  info.WorkingSetSize = counters.WorkingSetSize;
  info.QuotaPeakPagedPoolUsage = counters.QuotaPeakPagedPoolUsage;
  info.QuotaPagedPoolUsage = counters.QuotaPagedPoolUsage;
  info.QuotaPeakNonPagedPoolUsage = counters.QuotaPeakNonPagedPoolUsage;
  info.QuotaNonPagedPoolUsage = counters.QuotaNonPagedPoolUsage;
  info.PagefileUsage = counters.PagefileUsage;
  info.PeakPagefileUsage = counters.PeakPagefileUsage;
  // Windows gives the same figure twice; Wine leaves the second one 0.
  info.PrivateUsage = counters.PrivateUsage != 0 ? counters.PrivateUsage : counters.PagefileUsage;
  return info;
}

ProcessMemoryInfo ReadMemoryOf(HANDLE process) {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  static_assert(sizeof counters == 80);
  if (!K32GetProcessMemoryInfo(process, reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters)) {
    return {};
  }
  return InfoOf(counters);
}

class ProcessHandle : public IProcessHandle {
 public:
  explicit ProcessHandle(HANDLE handle) : m_handle(handle) {}

  bool IsOpen() const { return m_handle.IsOpen(); }

  std::optional<ProcessTimesSample> ReadTimes() const override { return ReadTimesOf(m_handle.Get()); }
  // What has ended holds nothing, though the system may need a moment to take it back.
  std::uint64_t ReadPrivateBytes() override {
    const std::uint64_t bytes = ReadMemoryOf(m_handle.Get()).PrivateUsage;
    return IsAlive() ? bytes : 0;
  }
  bool IsAlive() const override { return WaitForSingleObject(m_handle.Get(), 0) == WAIT_TIMEOUT; }

 private:
  Win32Handle m_handle;
};

// The ids of processes are multiples of four, and the system takes the three numbers behind an id for it.
bool IsId(unsigned int pid) { return pid % 4 == 0; }

std::unique_ptr<ProcessHandle> Open(DWORD access, unsigned int pid) {
  if (!IsId(pid)) return nullptr;
  auto handle = std::make_unique<ProcessHandle>(OpenProcess(access, FALSE, pid));
  return handle->IsOpen() ? std::move(handle) : nullptr;
}

}  // namespace

std::unique_ptr<IProcessHandle> CurrentProcess() { return std::make_unique<ProcessHandle>(GetCurrentProcess()); }

// A process that has ended can be opened for as long as anybody holds a handle on it.
std::unique_ptr<IProcessHandle> OpenProcessToWatch(unsigned int pid) {
  std::unique_ptr<ProcessHandle> handle = Open(AccessToWatch, pid);
  return handle && handle->IsAlive() ? std::move(handle) : nullptr;
}

bool IsProcessAlive(unsigned int pid) {
  if (!IsId(pid)) return false;
  const ProcessHandle process(OpenProcess(AccessToWait, FALSE, pid));
  return process.IsOpen() && process.IsAlive();
}

// Of all groups: a process may run on each, while GetSystemInfo counts those of one, which are at most 64.
unsigned int CountProcessors() { return GetActiveProcessorCount(ALL_PROCESSOR_GROUPS); }

std::vector<ProcessorClock> ReadProcessorClocks() {
  std::vector<ProcessorPowerInformation> table(CountProcessors());
  const auto bytes = static_cast<ULONG>(table.size() * sizeof(ProcessorPowerInformation));
  if (CallNtPowerInformation(ProcessorInformation, nullptr, 0, table.data(), bytes) != 0) return {};
  std::vector<ProcessorClock> clocks;
  clocks.reserve(table.size());
  for (const ProcessorPowerInformation& entry : table) clocks.push_back({entry.currentMhz, entry.maxMhz});
  return clocks;
}

}  // namespace qilsys::monitor

ProcessMemoryInfo GetProcessMemoryInfo(void* processHandle) {
  return processHandle != nullptr ? qilsys::monitor::ReadMemoryOf(processHandle) : ProcessMemoryInfo();
}

ProcessMemoryInfo GetCurrentProcessMemoryInfo() { return qilsys::monitor::ReadMemoryOf(GetCurrentProcess()); }
