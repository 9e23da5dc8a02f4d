// The worker of ResourceManagerImpl: its pass, from the sample to the request to end the process, cut where it waits.
#include "monitor/ResourceManagerImpl.h"

#include <chrono>
#include <exception>
#include <utility>

#include "monitor/Duration.h"
#include "monitor/ResourceReporterManager.h"
#include "qilsys/LogicException.h"

using namespace qilsys::monitor;

namespace {

constexpr char File[] = "main/monitor/ResourceManagerImpl";

}  // namespace

void ResourceManagerImpl::Work() {
  std::set_terminate(m_general.m_terminateHandler);
  MonitoredProcess self;
  WorkerState state;
  NextWait wait = MillisecondsOf(m_general.m_startDelaySeconds);
  while (wait) wait = Advance(state, self, m_stopEvent.Wait(*wait));
}

std::chrono::milliseconds ResourceManagerImpl::CheckInterval() const {
  return MillisecondsOf(m_general.m_checkIntervalSeconds);
}

ResourceManagerImpl::NextWait ResourceManagerImpl::Advance(WorkerState& state, MonitoredProcess& self, bool stopped) {
  if (!state.isReclaiming) {
    if (stopped) return EndWork();
    UpdateResourceValues(self, m_ownValues);
    state.logInfo = state.counter + 1 == m_general.m_infoEveryChecks;
    state.policy = 0;
  }
  for (; state.policy < m_policies.size(); ++state.policy) {
    const Policy& policy = m_policies[state.policy];
    const bool asked = std::exchange(state.isReclaiming, false);
    if (!asked) {
      if (!policy.isInForce || (this->*policy.isBelow)(m_ownValues, state.logInfo)) continue;
      state.isReclaiming = AskToReclaim(policy, m_ownValues);
      if (state.isReclaiming) return CheckInterval();
    }
    if (!JudgeReclaim(policy, self, m_ownValues, asked && !stopped) && ExcessEndsWorker(policy)) return EndWork();
  }
  state.counter = state.logInfo ? 0 : state.counter + 1;
  return CheckInterval();
}

// From now on it is for the listener to purge the table.
ResourceManagerImpl::NextWait ResourceManagerImpl::EndWork() {
  const PeersLock lock(m_peersLock);
  m_workerHasEnded = true;
  return std::nullopt;
}

void ResourceManagerImpl::UpdateResourceValues(MonitoredProcess& self, ResourceValuesV2& values) {
  if (CpuPolicyInForce()) {
    // Processors below their top clock have headroom: the process then counts as idle, and the next reading covers the
    // whole time since the last one.
    if (MonitoredProcess::IsCpuAtMaxFrequency()) {
      SetCpuFigures(values, m_children.GetCpuUsage(), self.GetCpuUsage());
    } else {
      values.cpuPercent = 0;
    }
  }
  if (MemoryPolicyInForce()) SetMemoryFigures(values, m_children.GetMemoryUsage() + self.GetMemoryUsage());
  Send(values);
  TakeInWhatWaits();
  PurgePeers();
}

void ResourceManagerImpl::TakeInWhatWaits() {
  const TScopedLock lock(m_ipcLock);
  m_ipc->TakeInWhatWaits(std::chrono::milliseconds(5));
}

void ResourceManagerImpl::SetCpuFigures(ResourceValuesV2& values, unsigned int childrenPercent,
                                        unsigned char ownPercent) const {
  PercentSum sum;
  sum.Add(static_cast<unsigned char>(childrenPercent));
  sum.Add(ownPercent);
  values.cpuPercent = sum.Limited();
}

void ResourceManagerImpl::SetMemoryFigures(ResourceValuesV2& values, unsigned long long bytes) const {
  values.memoryBytes = bytes;
  values.memoryLimitPercent = PercentOfLimit(bytes, m_memory.m_perProcessLimit);
}

void ResourceManagerImpl::Send(const ResourceValuesV2& values) {
  const bool known = ResourceValuesVersion::VER_1 <= m_rvVersion && m_rvVersion <= ResourceValuesVersion::VER_2;
  QILSYS_LOGIC_ASSERT(known,
                      "ResourceValuesVersion::VER_1 <= m_rvVersion && m_rvVersion <= ResourceValuesVersion::VER_2",
                      File, 479, 0x044A63AC, "LogicException_LogicAssert_0x044A63AC");
  const TScopedLock lock(m_ipcLock);
  if (m_rvVersion == ResourceValuesVersion::VER_1) m_ipc->Send(Narrow(values));
  if (m_rvVersion == ResourceValuesVersion::VER_2) m_ipc->Send(values);
}

// False if there are no functions, which then need no time either.
bool ResourceManagerImpl::AskToReclaim(const Policy& policy, const ResourceValuesV2& values) {
  return policy.functions.Reclaim(m_general.m_logFunc, (this->*policy.argument)(values));
}

// True when the resource was won back, for which the functions must have had their time.
bool ResourceManagerImpl::JudgeReclaim(const Policy& policy, MonitoredProcess& self, ResourceValuesV2& values,
                                       bool hadTime) {
  if (hadTime) UpdateResourceValues(self, values);
  const bool reclaimed = hadTime && (this->*policy.isBelow)(values, true);
  Log(reclaimed ? policy.reclaimed : policy.notReclaimed);
  return reclaimed;
}

bool ResourceManagerImpl::ExcessEndsWorker(const Policy& policy) {
  LogAllProcesses(m_ownValues);
  if (policy.terminateOnExcess) {
    m_general.m_terminateFunc(policy.terminateCode, policy.terminating);
  } else {
    Log(policy.notTerminating);
  }
  return policy.terminateOnExcess;
}

bool ResourceManagerImpl::Reclaim(const Policy& policy, MonitoredProcess& self, ResourceValuesV2& values) {
  const bool asked = AskToReclaim(policy, values);
  return JudgeReclaim(policy, self, values, asked && !m_stopEvent.Wait(CheckInterval()));
}

bool ResourceManagerImpl::ReclaimCpu(MonitoredProcess& self, ResourceValuesV2& values) {
  return Reclaim(m_cpuPolicy, self, values);
}

bool ResourceManagerImpl::ReclaimMemory(MonitoredProcess& self, ResourceValuesV2& values) {
  return Reclaim(m_memoryPolicy, self, values);
}

void ResourceManagerImpl::ReportAll() {
  ResourceReporterManager::Get().ReportAll(m_general.m_infoEveryChecks *
                                           static_cast<std::uint32_t>(m_general.m_checkIntervalSeconds));
}
