/// The decision maker of the monitor: what one member of a group samples, tells, hears, judges and asks for.
#pragma once

#include <boost/circular_buffer.hpp>
#include <boost/uuid/uuid.hpp>
#include <chrono>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include "monitor/ChildProcessManager.h"
#include "monitor/ReclaimFunctions.h"
#include "monitor/ResourceIpc.h"
#include "monitor/ResourceValues.h"
#include "qilsys/MonitoredProcess.h"
#include "qilsys/ResourceManager.h"
#include "qilsys/TEvent.h"
#include "qilsys/TLocks.h"

/// What was last heard from a member, and when, in nanoseconds of `GetReportTime`.
struct PeerRecord {
  ResourceValuesV2 m_values;
  std::int64_t m_receivedAt = 0;
};

/// The decision maker: one in each process of a group. There is no arbiter; each member applies to the same figures the
/// rule that only the member with the highest usage yields.
///
/// Its work is a chain of steps, each up to the next wait (`Advance`), so that the waiting stays outside: the worker
/// thread waits on the stop event, a simulation waits on nothing. What the steps take from the outside world, the
/// virtual operations give.
class ResourceManagerImpl {
 public:
  /// Where the worker stands between two waits.
  struct WorkerState {
    enum class Stage { Waiting, ReclaimingCpu, ReclaimingMemory };

    Stage m_stage = Stage::Waiting;
    unsigned int m_counter = 0;
    bool m_logInfo = false;
  };

  /// The time to wait before the next step; nothing when the worker is to end.
  using NextWait = std::optional<std::chrono::milliseconds>;

  /// The time that `m_highCpuSince` can't have.
  static constexpr std::int64_t s_notHigh = std::numeric_limits<std::int64_t>::max();

  /// Copies the settings and starts nothing. Throws `boost::uuids::entropy_error` if there are no random numbers.
  ResourceManagerImpl(const ResourceManager::CpuConfig& cpu, const ResourceManager::MemoryConfig& memory,
                      const ResourceManager::GeneralConfig& general);
  ResourceManagerImpl(const ResourceManagerImpl&) = delete;
  ResourceManagerImpl& operator=(const ResourceManagerImpl&) = delete;

  /// Stops the threads and logs that. Throws as `StopThreads`.
  virtual ~ResourceManagerImpl() noexcept(false);

  /// Logs the limits, then starts listening and the worker; with no policy in force it does nothing. A second call is a
  /// logic assertion. Throws what sockets and threads throw.
  void StartMonitoring(unsigned short port);

  /// Ends and joins the threads. Throws `std::system_error` on one of these threads; the object then stays whole, and
  /// another thread may call again.
  void StopThreads();

  ReclaimFunctions& CpuReclaim() { return m_cpuReclaim; }
  ReclaimFunctions& MemoryReclaim() { return m_memoryReclaim; }
  ChildProcessManager& Children() { return m_children; }

  /// The figures of the own datagram as it came back; zeros if it has not.
  std::pair<unsigned char, unsigned long long> GetCpuAndMemoryUsage();

  /// The fraction of the per-process limit in use, read afresh.
  double GetMemoryPressure();

 protected:
  /// The steady clock in nanoseconds.
  virtual std::int64_t GetSteadyTime();

  /// The time by which members age.
  virtual std::int64_t GetReportTime();

  /// Samples this process and its children into `values`, sends that, and drops the members that have fallen silent.
  virtual void UpdateResourceValues(MonitoredProcess& self, ResourceValuesV2& values);

  /// The figure that the all-processes limit is for.
  virtual unsigned long long GetTotalMemoryUsed();

  bool CpuPolicyInForce() const { return m_cpu.m_maxCpuPercent >= 1 && m_cpu.m_maxCpuPercent <= 99; }
  bool MemoryPolicyInForce() const { return m_memory.m_perProcessLimit != 0; }

  /// The figures of a sample, put into `values` where their policy is in force: percents that are added in eight bits
  /// and bytes.
  void SetCpuFigures(ResourceValuesV2& values, unsigned int childrenPercent, unsigned char ownPercent) const;
  void SetMemoryFigures(ResourceValuesV2& values, unsigned long long bytes) const;

  /// Sends the record in the version of the settings; any other version is a logic assertion.
  void Send(const ResourceValuesV2& values);

  /// Takes a datagram into the table of peers. Runs on the listening thread.
  void OnValues(const ResourceValuesV2& values);

  /// Drops every member but this one that has been silent for its own interval.
  void PurgePeers();

  /// The worker's work from the end of one wait up to the next; `stopped` tells that the stop event ended the wait.
  NextWait Advance(WorkerState& state, MonitoredProcess& self, bool stopped);

  /// True while this process may go on. `logInfo` asks for the periodic line.
  bool IsBelowCpuThreshold(const ResourceValuesV2& values, bool logInfo);
  bool IsBelowMemoryThreashold(const ResourceValuesV2& values, bool logInfo);

  /// The whole of a reclaim, with its wait on the stop event: true when the resource was won back.
  bool ReclaimCpu(MonitoredProcess& self, ResourceValuesV2& values);
  bool ReclaimMemory(MonitoredProcess& self, ResourceValuesV2& values);

  /// The two halves of a reclaim. The first runs the functions: false if there are none. The second, when they have
  /// had their time, judges: `given` tells that they were given it.
  bool AskToReclaimCpu();
  bool AskToReclaimMemory(const ResourceValuesV2& values);
  bool JudgeCpuReclaim(MonitoredProcess& self, ResourceValuesV2& values, bool given);
  bool JudgeMemoryReclaim(MonitoredProcess& self, ResourceValuesV2& values, bool given);

  void LogAllProcesses(const ResourceValuesV2& values);

  ResourceManager::CpuConfig m_cpu;
  ResourceManager::MemoryConfig m_memory;
  ResourceManager::GeneralConfig m_general;
  std::map<boost::uuids::uuid, PeerRecord> m_peers;
  ChildProcessManager m_children;
  ReclaimFunctions m_cpuReclaim;
  ReclaimFunctions m_memoryReclaim;
  std::unique_ptr<ResourceIpc> m_ipc;
  std::unique_ptr<std::thread> m_worker;
  std::unique_ptr<std::thread> m_secondWorker;
  TRecursiveMutex m_peersLock;
  TEvent m_stopEvent;
  boost::circular_buffer<double> m_cpuWindow;
  double m_cpuMean = 0.0;
  std::int64_t m_highCpuSince = s_notHigh;
  ResourceValuesV2 m_ownValues;
  ResourceValuesVersion m_rvVersion;

 private:
  /// The group's CPU use as this member sees it.
  struct GroupCpu {
    unsigned int m_total;
    bool m_highest;
    std::size_t m_infoCount;
  };
  /// The group's memory use as this member sees it.
  struct GroupMemory {
    unsigned long long m_total;
    bool m_highest;
    std::size_t m_infoCount;
  };

  void Log(const TStringCore& line) { m_general.m_logFunc(line); }
  void ReportAll();

  bool LogLimits();
  void StartListening(unsigned short port);
  void StartWorker();
  void Work();
  std::chrono::milliseconds CheckInterval() const;

  NextWait Pass(WorkerState& state, MonitoredProcess& self);
  NextWait CheckCpu(WorkerState& state, MonitoredProcess& self);
  NextWait AfterCpuReclaim(WorkerState& state, MonitoredProcess& self, bool reclaimed);
  NextWait CheckMemory(WorkerState& state, MonitoredProcess& self);
  NextWait AfterMemoryReclaim(WorkerState& state, bool reclaimed);
  NextWait EndPass(WorkerState& state);
  bool CpuExcessEndsWorker();
  bool MemoryExcessEndsWorker();

  GroupCpu SumGroupCpu(const ResourceValuesV2& values);
  void FeedCpuMean(double sample);
  bool ExceedsCpuLimit(unsigned int total);
  bool SustainedHighCpu(unsigned int total);
  void LogCpuInfo(const ResourceValuesV2& values, const GroupCpu& group);
  void LogCpuExcess(const ResourceValuesV2& values);

  GroupMemory SumGroupMemory(const ResourceValuesV2& values);
  std::optional<unsigned long long> TryGetTotalMemoryUsed();
  bool IsBelowAllProcessesLimit(const ResourceValuesV2& values, bool logInfo, unsigned long long used);
  void LogMemory(const TStringCore& opening, const ResourceValuesV2& values, const GroupMemory& group,
                 unsigned long long used);

  /// Calls `visit` with the figures of each member but this one, in order of identity, with the peers locked.
  template <class TVisit>
  void ForEachPeer(TVisit visit) {
    const boost::uuids::uuid own = UuidOf(m_ownValues);
    for (const auto& [uuid, peer] : m_peers) {
      if (uuid != own) visit(peer.m_values);
    }
  }
};
