/// Readings of a process: the share of the machine's processors that it uses, and its private memory.
#pragma once

#include <cstdint>
#include <memory>

#include "qilsys/Export.h"

/// The memory counters of a process, in bytes but for the first. A counter that the system does not keep is 0; where it
/// keeps no peak of the page file usage, that peak is the current usage.
struct ProcessMemoryInfo {
  std::uint32_t PageFaultCount = 0;
  std::uint64_t PeakWorkingSetSize = 0;
  std::uint64_t WorkingSetSize = 0;
  std::uint64_t QuotaPeakPagedPoolUsage = 0;
  std::uint64_t QuotaPagedPoolUsage = 0;
  std::uint64_t QuotaPeakNonPagedPoolUsage = 0;
  std::uint64_t QuotaNonPagedPoolUsage = 0;
  std::uint64_t PagefileUsage = 0;
  std::uint64_t PeakPagefileUsage = 0;
  std::uint64_t PrivateUsage = 0;
};

// Users of this function are likely to include psapi.h too, where its name is a macro for K32GetProcessMemoryInfo. It
// must not change what is declared here, nor, if it comes later, keep this function from being called.
#pragma push_macro("GetProcessMemoryInfo")
#undef GetProcessMemoryInfo

/// The counters of the process behind `processHandle`: the platform's process handle, or, where processes have no
/// handles, the process id carried as a pointer value. Null, what is no process, or one that can't be read gives zeros.
QILSYS_API ProcessMemoryInfo GetProcessMemoryInfo(void* processHandle);

/// The counters of the calling process.
QILSYS_API ProcessMemoryInfo GetCurrentProcessMemoryInfo();

#ifdef _WIN32
/// What psapi.h makes of a call of GetProcessMemoryInfo.
inline ProcessMemoryInfo K32GetProcessMemoryInfo(void* processHandle) { return GetProcessMemoryInfo(processHandle); }
#endif

#pragma pop_macro("GetProcessMemoryInfo")

/// A handle on one process, which stays with that process when its id is used again.
///
/// Can be moved and not copied; a moved-from object may only be assigned to or destroyed. To be used by one thread at a
/// time: `GetCpuUsage` changes the object although it is const.
class QILSYS_API MonitoredProcess {
 public:
  /// Watches the calling process.
  MonitoredProcess();

  /// Watches the process `pid`. Throws a `QuillonException` ("Process pid=... is not running") if there is none, if it
  /// has ended, or if its memory may not be read.
  explicit MonitoredProcess(unsigned int pid);

  MonitoredProcess(MonitoredProcess&& other) noexcept;
  MonitoredProcess& operator=(MonitoredProcess&& other) noexcept;
  ~MonitoredProcess();

  /// Percent of the whole machine, 0 to 100, used since the last reading, the first time since construction. A failed
  /// reading is 0 and leaves the time of the last one in place.
  unsigned char GetCpuUsage() const;

  /// Private bytes now; 0 if they can't be read or the process has ended.
  unsigned long long GetMemoryUsage() const;

  /// The id that the object was made with.
  unsigned int GetProcessId() const;

  /// Whether the watched process is still alive. A zombie has ended.
  bool IsRunning() const;

  /// Whether a process of that id is alive now.
  static bool IsRunning(unsigned int pid);

  /// Whether every processor runs at its full clock; true also where that can't be told.
  static bool IsCpuAtMaxFrequency();

 private:
  friend struct MonitoredProcessForTest;
  struct Impl;

  explicit MonitoredProcess(std::unique_ptr<Impl> impl);

  std::unique_ptr<Impl> m_impl;
};
