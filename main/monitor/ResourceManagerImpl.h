/// The decision maker of the monitor: what one member of a group samples, tells, hears, judges and asks for.
#pragma once

#include <array>
#include <boost/circular_buffer.hpp>
#include <boost/uuid/uuid.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

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
    /// The resource that is being checked, by its place among the policies.
    std::size_t policy = 0;
    /// Its reclaim functions have been called, and the wait was for them to take effect.
    bool isReclaiming = false;
    unsigned int counter = 0;
    bool logInfo = false;
  };

  /// The time to wait before the next step; nothing when the worker is to end.
  using NextWait = std::optional<std::chrono::milliseconds>;

  /// A time that does not come.
  static constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

  /// The time that `m_highCpuSince` can't have.
  static constexpr std::int64_t NotHigh = std::numeric_limits<std::int64_t>::max();

  /// The most identities that a table of peers holds, whatever is sent. Its own is taken on top of them.
  static constexpr std::size_t MostMembers = 4096;

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
  /// The same for a member that begins with the record `own`, and has its identity from it.
  ResourceManagerImpl(const ResourceManager::CpuConfig& cpu, const ResourceManager::MemoryConfig& memory,
                      const ResourceManager::GeneralConfig& general, const ResourceValuesV2& own);

  /// The steady clock in nanoseconds.
  virtual std::int64_t GetSteadyTime();

  /// The time by which members age.
  virtual std::int64_t GetReportTime();

  /// Samples this process and its children into `values`, sends that, and drops the members that have fallen silent.
  virtual void UpdateResourceValues(MonitoredProcess& self, ResourceValuesV2& values);

  /// The figure that the all-processes limit is for. Throws a `QuillonException` if the machine can't be read.
  virtual unsigned long long GetTotalMemoryUsed();

  /// Has the listening thread take in what already waits in the socket, for a few milliseconds at most. A process that
  /// was held up would else forget the members whose datagrams have come meanwhile, and take itself for the highest.
  virtual void TakeInWhatWaits();

  bool CpuPolicyInForce() const { return m_cpu.m_maxCpuPercent >= 1 && m_cpu.m_maxCpuPercent <= 99; }
  bool MemoryPolicyInForce() const { return m_memory.m_perProcessLimit != 0; }

  /// The figures of a sample, put into `values` where their policy is in force: percents that are added in eight bits
  /// and bytes.
  void SetCpuFigures(ResourceValuesV2& values, unsigned int childrenPercent, unsigned char ownPercent) const;
  void SetMemoryFigures(ResourceValuesV2& values, unsigned long long bytes) const;

  /// Sends the record in the version of the settings; any other version is a logic assertion.
  void Send(const ResourceValuesV2& values);

  /// Takes a datagram into the table of peers; a stranger only while there are fewer than `MostMembers`, and the first
  /// that is ignored is logged. Runs on the listening thread.
  void OnValues(const ResourceValuesV2& values);

  /// Drops every member but this one that has been silent for its own interval.
  void PurgePeers();

  /// What the worker thread does.
  void Work();

  /// The worker's work from the end of one wait up to the next; `stopped` tells that the stop event ended the wait.
  NextWait Advance(WorkerState& state, MonitoredProcess& self, bool stopped);

  /// True while this process may go on. `logInfo` asks for the periodic line.
  bool IsBelowCpuThreshold(const ResourceValuesV2& values, bool logInfo);
  /// The same for memory. Spelt so on purpose: hosts search their logs for this name, which a log line gives.
  bool IsBelowMemoryThreashold(const ResourceValuesV2& values, bool logInfo);

  /// A reclaim in one piece, for callers that don't step: what `Advance` does, with its wait on the stop event. True
  /// when the resource was won back.
  bool ReclaimCpu(MonitoredProcess& self, ResourceValuesV2& values);
  bool ReclaimMemory(MonitoredProcess& self, ResourceValuesV2& values);

  /// One line for each member, this one, of `values`, first.
  void LogAllProcesses(const ResourceValuesV2& values);

  // Set once, by the constructor.
  const ResourceManager::CpuConfig m_cpu;
  const ResourceManager::MemoryConfig m_memory;
  const ResourceManager::GeneralConfig m_general;

  // Under m_peersLock.
  std::map<boost::uuids::uuid, PeerRecord> m_peers;
  /// No member falls silent before this.
  std::int64_t m_nextSilence = Never;
  bool m_isFullLogged = false;
  bool m_workerHasEnded = false;

  // Each under a lock of its own, so that any thread may call them.
  ChildProcessManager m_children;
  ReclaimFunctions m_cpuReclaim;
  ReclaimFunctions m_memoryReclaim;

  // The thread that starts and stops. It makes m_ipc before the worker, which sends by it under m_ipcLock, and takes it
  // away after the worker.
  std::unique_ptr<ResourceIpc> m_ipc;
  std::unique_ptr<std::thread> m_worker;
  /// Has never been made; who makes one finds it joined.
  std::unique_ptr<std::thread> m_secondWorker;

  // Any thread.
  TRecursiveMutex m_peersLock;
  /// Held while the worker sends, and while a second start, after an assertion's hook that returns, changes the port.
  TRecursiveMutex m_ipcLock;
  TEvent m_stopEvent;

  // The worker only.
  boost::circular_buffer<double> m_cpuWindow;
  double m_cpuMean = 0.0;
  std::int64_t m_highCpuSince = NotHigh;
  ResourceValuesV2 m_ownValues;

  // Set once, by the constructor.
  ResourceValuesVersion m_rvVersion;
  /// That of `m_ownValues`, which other threads must not look at.
  const boost::uuids::uuid m_identity;

 private:
  /// What a lock of `m_peersLock` looks like to a function that needs it.
  using PeersLock = TScopedLock<TRecursiveMutex>;

  /// All in which the two resources differ, but the decision itself.
  struct Policy {
    bool isInForce;
    bool (ResourceManagerImpl::*isBelow)(const ResourceValuesV2& values, bool logInfo);
    ReclaimFunctions& functions;
    /// What the functions are called with.
    double (ResourceManagerImpl::*argument)(const ResourceValuesV2& values) const;
    bool terminateOnExcess;
    unsigned char terminateCode;
    // The log lines of a reclaim that helped, of one that did not, and of an excess that may not end the process; and
    // the reason that the host is given for ending it.
    const char16_t* reclaimed;
    const char16_t* notReclaimed;
    const char16_t* notTerminating;
    const char16_t* terminating;
  };

  /// What the group uses, as this member sees it.
  struct GroupUse {
    unsigned long long total;
    bool isHighest;
    std::size_t infoCount;
  };

  Policy CpuPolicy();
  Policy MemoryPolicy();

  void Log(const TStringCore& line) const { m_general.m_logFunc(line); }
  void ReportAll();

  bool LogLimits();
  void StartListening(unsigned short port);
  void StartWorker();
  std::chrono::milliseconds CheckInterval() const;

  bool AskToReclaim(const Policy& policy, const ResourceValuesV2& values);
  bool JudgeReclaim(const Policy& policy, MonitoredProcess& self, ResourceValuesV2& values, bool hadTime);
  bool Reclaim(const Policy& policy, MonitoredProcess& self, ResourceValuesV2& values);
  bool ExcessEndsWorker(const Policy& policy);
  NextWait EndWork();

  bool TakeIn(const boost::uuids::uuid& identity, const PeerRecord& record);
  void DropSilent(const PeersLock& lock, std::int64_t now);
  std::vector<ResourceValuesV2> CopyPeers();

  void FeedCpuMean(double sample);
  bool ExceedsCpuLimit(unsigned int total);
  bool SustainedHighCpu(unsigned int total);
  void LogCpuInfo(const ResourceValuesV2& values, unsigned int total, std::size_t infoCount);
  void LogCpuExcess(const ResourceValuesV2& values);
  double CpuReclaimArgument(const ResourceValuesV2& values) const;

  std::optional<unsigned long long> TryGetTotalMemoryUsed();
  bool IsBelowAllProcessesLimit(const ResourceValuesV2& values, bool logInfo, unsigned long long used);
  void LogMemory(const TStringCore& opening, const ResourceValuesV2& values, const GroupUse& group,
                 unsigned long long used);
  double MemoryReclaimArgument(const ResourceValuesV2& values) const;

  /// Calls `visit` with the figures of each member but this one, in order of identity.
  template <class TVisit>
  void ForEachPeer(const PeersLock&, TVisit visit) const {
    for (const auto& [identity, peer] : m_peers) {
      if (identity != m_identity) visit(peer.m_values);
    }
  }

  /// Adds up the `amount` of this member, whose figures are `values`, and of all others. The highest is who has no other
  /// above itself by `rank`, so those that tie at the top all are.
  template <class TAmount, class TRank>
  GroupUse SumGroup(const ResourceValuesV2& values, TAmount amount, TRank rank) {
    const PeersLock lock(m_peersLock);
    GroupUse group{amount(values), true, m_peers.size()};
    ForEachPeer(lock, [&](const ResourceValuesV2& peer) {
      group.total += amount(peer);
      if (rank(peer) > rank(values)) group.isHighest = false;
    });
    return group;
  }

  /// In the order of the checks. Set once, by the constructor.
  const std::array<Policy, 2> m_policies{CpuPolicy(), MemoryPolicy()};
  const Policy& m_cpuPolicy = m_policies[0];
  const Policy& m_memoryPolicy = m_policies[1];
};
