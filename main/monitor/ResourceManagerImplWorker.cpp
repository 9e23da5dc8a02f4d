// The worker of ResourceManagerImpl: the order of its checks, cut where it waits.
#include "monitor/Duration.h"
#include "monitor/ResourceManagerImpl.h"

using Stage = ResourceManagerImpl::WorkerState::Stage;

void ResourceManagerImpl::Work() {
  if (m_general.m_terminateHandler != nullptr) std::set_terminate(m_general.m_terminateHandler);
  MonitoredProcess self;
  WorkerState state;
  NextWait wait = MillisecondsOf(m_general.m_startDelaySeconds);
  while (wait) wait = Advance(state, self, m_stopEvent.Wait(*wait));
}

std::chrono::milliseconds ResourceManagerImpl::CheckInterval() const {
  return MillisecondsOf(m_general.m_checkIntervalSeconds);
}

ResourceManagerImpl::NextWait ResourceManagerImpl::Advance(WorkerState& state, MonitoredProcess& self, bool stopped) {
  switch (state.m_stage) {
    case Stage::ReclaimingCpu:
      return AfterCpuReclaim(state, self, JudgeCpuReclaim(self, m_ownValues, !stopped));
    case Stage::ReclaimingMemory:
      return AfterMemoryReclaim(state, JudgeMemoryReclaim(self, m_ownValues, !stopped));
    case Stage::Waiting:
      break;
  }
  if (stopped) return std::nullopt;
  return Pass(state, self);
}

ResourceManagerImpl::NextWait ResourceManagerImpl::Pass(WorkerState& state, MonitoredProcess& self) {
  UpdateResourceValues(self, m_ownValues);
  state.m_logInfo = state.m_counter + 1 == m_general.m_infoEveryChecks;
  return CheckCpu(state, self);
}

ResourceManagerImpl::NextWait ResourceManagerImpl::CheckCpu(WorkerState& state, MonitoredProcess& self) {
  if (!CpuPolicyInForce() || IsBelowCpuThreshold(m_ownValues, state.m_logInfo)) return CheckMemory(state, self);
  if (!AskToReclaimCpu()) return AfterCpuReclaim(state, self, JudgeCpuReclaim(self, m_ownValues, false));
  state.m_stage = Stage::ReclaimingCpu;
  return CheckInterval();
}

ResourceManagerImpl::NextWait ResourceManagerImpl::AfterCpuReclaim(WorkerState& state, MonitoredProcess& self,
                                                                   bool reclaimed) {
  if (!reclaimed && CpuExcessEndsWorker()) return std::nullopt;
  return CheckMemory(state, self);
}

ResourceManagerImpl::NextWait ResourceManagerImpl::CheckMemory(WorkerState& state, MonitoredProcess& self) {
  if (!MemoryPolicyInForce() || IsBelowMemoryThreashold(m_ownValues, state.m_logInfo)) return EndPass(state);
  if (!AskToReclaimMemory(m_ownValues)) {
    return AfterMemoryReclaim(state, JudgeMemoryReclaim(self, m_ownValues, false));
  }
  state.m_stage = Stage::ReclaimingMemory;
  return CheckInterval();
}

ResourceManagerImpl::NextWait ResourceManagerImpl::AfterMemoryReclaim(WorkerState& state, bool reclaimed) {
  if (!reclaimed && MemoryExcessEndsWorker()) return std::nullopt;
  return EndPass(state);
}

ResourceManagerImpl::NextWait ResourceManagerImpl::EndPass(WorkerState& state) {
  state.m_counter = state.m_logInfo ? 0 : state.m_counter + 1;
  state.m_stage = Stage::Waiting;
  return CheckInterval();
}

bool ResourceManagerImpl::CpuExcessEndsWorker() {
  LogAllProcesses(m_ownValues);
  if (m_cpu.m_terminateOnExcess) {
    m_general.m_terminateFunc(m_cpu.m_terminateCode,
                              u"Resource Manager: Process is above CPU threshold. Requesting termination.");
    return true;
  }
  Log(u"Resource Manager: Process is above CPU threshold, but the process does not terminate on excessive Cpu usage. "
      u"Not terminating.");
  return false;
}

bool ResourceManagerImpl::MemoryExcessEndsWorker() {
  LogAllProcesses(m_ownValues);
  if (m_memory.m_terminateOnExcess) {
    m_general.m_terminateFunc(m_memory.m_terminateCode,
                              u"Resource Manager: Process is above memory threshold. Requesting termination.");
    return true;
  }
  Log(u"Resource Manager: Process is above memory threshold, but the process does not terminate on excessive memory "
      u"useage. Not terminating.");
  return false;
}
