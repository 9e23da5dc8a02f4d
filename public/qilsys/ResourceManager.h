/// Watches the memory and processor use of a group of cooperating processes.
///
/// Every process of the group calls `ResourceManager::Start` with the same port. From then on it tells the others, once
/// in each check interval, what it and its registered children use, and it alone judges whether it is the one to give
/// something back. A process that can't get below its limits is asked, through `m_terminateFunc`, to end itself; no
/// process ever ends another.
///
///     ResourceManager::MemoryConfig memory;
///     memory.m_perProcessLimit = ResourceManager::AdjustMemoryLimit(0, 0, 0.75, 2.0);
///     memory.m_allProcessesLimit = memory.m_perProcessLimit;
///     memory.m_terminateOnExcess = true;
///     ResourceManager::GeneralConfig general;
///     general.m_logFunc = [](const TStringCore& line) { ... };
///     general.m_terminateFunc = [](unsigned char code, const TStringCore& reason) { ... };
///     ResourceManager::Start(port, {}, memory, general);
///     ResourceManager::AddReclaimMemoryFunction(u"image cache", [](double used) { ... });
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <utility>

#include "qilsys/Export.h"
#include "qilsys/TStringCore.h"

class ResourceManagerImpl;

/// The exported face of the resource monitor: static functions over one process-wide monitor.
///
/// `Start` and `Stop` belong to the host's start-up and shutdown: no other thread may be inside any function of this
/// class while one of them runs. All other functions may be called from any thread. The monitor's own threads take no
/// signal that is sent to the process.
///
/// Where a function says that it needs a started manager, a call without one is a logic assertion ("s_singleton"); if
/// the assertion's hook returns, the call does nothing and yields zeros.
class QILSYS_API ResourceManager {
 public:
  /// The limit on the processor use of the whole group; there is no limit for one process alone.
  struct CpuConfig {
    /// Percent of the whole machine. Only 1 to 99 puts the CPU policy in force.
    std::uint32_t m_maxCpuPercent = 0;
    /// Seconds for which the limit must be exceeded; also sets the window of the rolling mean.
    std::int64_t m_sustainedSeconds = 0;
    /// Compares the rolling mean with the limit, not the current total. The mean stays 0, and so never exceeds, when
    /// `m_sustainedSeconds` is below the check interval.
    bool m_useRollingMean = false;
    /// Handed to `m_terminateFunc` when CPU use is the reason.
    unsigned char m_terminateCode = 0;
    /// False keeps the process alive: what would have ended it is only logged, again at every check.
    bool m_terminateOnExcess = false;
  };

  /// The limits on memory.
  struct MemoryConfig {
    /// Private bytes that this process may use together with its children; 0 leaves the memory policy off.
    std::uint64_t m_perProcessLimit = 0;
    /// Bytes that the figure of `m_totalMemoryFunc`, or of the machine, may reach. Has no value for "no limit": with a
    /// per-process limit set, 0 is exceeded at once.
    std::uint64_t m_allProcessesLimit = 0;
    /// Handed to `m_terminateFunc` when memory use is the reason.
    unsigned char m_terminateCode = 0;
    /// Carried for the clients of this library, which itself never reads it.
    unsigned char m_carriedFlag = 0;
    /// As `m_carriedFlag`.
    std::uint64_t m_carriedValue1 = 0;
    /// As `m_carriedFlag`.
    std::uint64_t m_carriedValue2 = 0;
    /// False keeps the process alive: what would have ended it is only logged, again at every check.
    bool m_terminateOnExcess = false;
    /// Optional: gives the bytes in use by all processes, in place of the machine's used memory. Called on the
    /// monitor's worker thread. A `QuillonException` out of it is logged and counts as an excess, as does a reading of
    /// the machine that fails.
    std::function<unsigned long long()> m_totalMemoryFunc;
  };

  /// What both policies share.
  struct GeneralConfig {
    /// Seconds between two checks; also the time that reclaim functions are given to take effect. Must not be 0.
    std::int64_t m_checkIntervalSeconds = 1;
    /// Seconds before the first check. At its first check the earliest member of a group has heard nobody, and where
    /// several start in one instant none of them has: each then takes itself for the highest. So let members start some
    /// tenths of a second apart, and register a reclaim function before this delay is over: an excess is then judged
    /// one interval later, when all have been heard.
    std::int64_t m_startDelaySeconds = 0;
    /// Checks from one periodic log line to the next; 0 means never.
    std::uint32_t m_infoEveryChecks = 0;
    /// Receives all log lines. Required. Called on the monitor's threads and on those that call this class.
    std::function<void(const TStringCore&)> m_logFunc;
    /// Asked to end the process, with a code of the settings and the reason. Required. Called on the monitor's worker
    /// thread, so it must not call `Stop`; the worker ends after it.
    std::function<void(unsigned char, const TStringCore&)> m_terminateFunc;
    /// Installed with `std::set_terminate` by the monitor's threads, which on many systems is for the whole process:
    /// what escapes from a callback or a failed send ends up there. Null is installed too, as the default handler; a
    /// host that wants to keep the one in place passes `std::get_terminate()`.
    std::terminate_handler m_terminateHandler = nullptr;
    /// Sends the older, shorter datagram. Both are always understood.
    bool m_useVersion1 = false;
  };

  /// Starts monitoring on the group's UDP port, with copies of the settings. Does nothing if already started. Without a
  /// CPU limit of 1 to 99 and without a per-process memory limit, no thread and no socket is made.
  /// An empty `m_logFunc` or `m_terminateFunc` is a logic assertion; if its hook returns, nothing is started without
  /// the first, and without the second a request to end the process ends it by `m_terminateHandler`. A socket that
  /// can't be had throws `boost::system::system_error`, a thread that can't be had `std::system_error`; the manager
  /// then counts as started until `Stop`.
  static void Start(unsigned short port, const CpuConfig& cpuConfig, const MemoryConfig& memoryConfig,
                    const GeneralConfig& generalConfig);

  /// Ends monitoring: waits for the monitor's threads, and logs that it has stopped. Does nothing if not started. From
  /// inside `Start`, in a callback, it takes effect when `Start` returns or throws. On the monitor's own threads it
  /// throws `std::system_error`, and the manager waits for a `Stop` from another.
  static void Stop();

  /// Registers what gives CPU time back when this process has to yield. `func` runs on the worker thread, in order of
  /// the names, with -1.0. Needs a started manager; an empty `func` or a name in use is a logic assertion.
  static void AddReclaimCpuFunction(const TStringCore& name, std::function<void(double)> func);

  /// Takes a CPU reclaim function out; waits if reclaiming is under way. Needs a started manager; an unknown name is a
  /// logic assertion.
  static void RemoveReclaimCpuFunction(const TStringCore& name);

  /// Registers what gives memory back when this process has to yield. `func` runs on the worker thread, in order of the
  /// names, with the used fraction of the per-process limit. Needs a started manager; an empty `func` or a name in use
  /// is a logic assertion.
  static void AddReclaimMemoryFunction(const TStringCore& name, std::function<void(double)> func);

  /// Takes a memory reclaim function out; waits if reclaiming is under way. Needs a started manager; an unknown name is
  /// a logic assertion.
  static void RemoveReclaimMemoryFunction(const TStringCore& name);

  /// Counts the use of the process `pid` as this process's own, until it is unregistered; its end goes unnoticed. Needs
  /// a started manager. A pid already registered is a logic assertion; a process that is not running throws a
  /// `QuillonException`.
  static void RegisterChildProcessId(unsigned int pid);

  /// Ends the counting of a child. Needs a started manager; a pid that is not registered is a logic assertion.
  static void UnregisterChildProcessId(unsigned int pid);

  /// What the group sees of this process: percent of the whole machine (0 to 100), and bytes. Both are 0 until the
  /// first report has come back, and the figure of a policy not in force stays 0. Needs a started manager.
  static std::pair<unsigned char, unsigned long long> GetCpuAndMemoryUsage();

  /// The fraction of the per-process limit that this process and its children use now, read afresh; infinity if the
  /// limit is 0, and -1.0 if not started.
  static double GetMemoryPressure();

  /// Derives a per-process limit in bytes from the machine's size: `explicitLimitGiB` if it is not 0, otherwise
  /// `fraction` of the machine's physical memory (taken as `minimumBaseGiB` at least) that leaves `reserveGiB` free. A
  /// base or a reserve beyond the machine's memory wraps in unsigned 64 bits. Usable at any time.
  static unsigned long long AdjustMemoryLimit(unsigned int minimumBaseGiB, unsigned int explicitLimitGiB,
                                              double fraction, double reserveGiB);

  /// Assigning does nothing: the class has no state of its own.
  ResourceManager& operator=(const ResourceManager& other);
  ResourceManager& operator=(ResourceManager&& other) noexcept;

 private:
  static ResourceManagerImpl* s_singleton;
};
