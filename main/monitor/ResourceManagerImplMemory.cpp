// The memory policy of ResourceManagerImpl: a limit on the member itself, and one on all processes together, for which
// the member answers that has used the greatest share of its own limit.
#include "monitor/LogText.h"
#include "monitor/ResourceManagerImpl.h"
#include "qilsys/QuillonException.h"

bool ResourceManagerImpl::IsBelowMemoryThreashold(const ResourceValuesV2& values, bool logInfo) {
  if (values.memoryBytes > m_memory.m_perProcessLimit) {
    Log(u"Resource Manager: Exceeded allowed memory usage per process. " + BytesText(values.memoryBytes));
    return false;
  }
  const std::optional<unsigned long long> used = TryGetTotalMemoryUsed();
  return used && IsBelowAllProcessesLimit(values, logInfo, *used);
}

// A reading that fails leads on to reclaiming like a real excess.
std::optional<unsigned long long> ResourceManagerImpl::TryGetTotalMemoryUsed() {
  try {
    return GetTotalMemoryUsed();
  } catch (const QuillonException& exception) {
    Log(u"Resource Manager: Exception thrown while getting system memory usage, returning false from "
        u"IsBelowMemoryThreashold(). " +
        exception.GetConcatenatedMessages());
    return std::nullopt;
  }
}

bool ResourceManagerImpl::IsBelowAllProcessesLimit(const ResourceValuesV2& values, bool logInfo,
                                                   unsigned long long used) {
  const bool exceeded = used > m_memory.m_allProcessesLimit;
  if (!exceeded && !logInfo) return true;
  const GroupMemory group = SumGroupMemory(values);
  if (logInfo) LogMemory(u"Resource Manager: Memory info: ", values, group, used);
  if (!exceeded || !group.m_highest) return true;
  LogMemory(u"Resource Manager: Exceeded allowed memory usage across all processes. Memory info: ", values, group,
            used);
  return false;
}

ResourceManagerImpl::GroupMemory ResourceManagerImpl::SumGroupMemory(const ResourceValuesV2& values) {
  TScopedLock lock(m_peersLock);
  GroupMemory group{values.memoryBytes, true, m_peers.size()};
  ForEachPeer([&](const ResourceValuesV2& peer) {
    group.m_total += peer.memoryBytes;
    if (peer.memoryLimitPercent > values.memoryLimitPercent) group.m_highest = false;
  });
  return group;
}

void ResourceManagerImpl::LogMemory(const TStringCore& opening, const ResourceValuesV2& values,
                                    const GroupMemory& group, unsigned long long used) {
  Log(opening + BytesText(values.memoryBytes) + u" (current process);" + BytesText(group.m_total) +
      u" (Quillon total); " + BytesText(used) + u" (total of all processes); " +
      TStringCore::number(group.m_infoCount) + u" (info count)");
  ReportAll();
}

bool ResourceManagerImpl::ReclaimMemory(MonitoredProcess& self, ResourceValuesV2& values) {
  return JudgeMemoryReclaim(self, values, AskToReclaimMemory(values) && !m_stopEvent.Wait(CheckInterval()));
}

bool ResourceManagerImpl::AskToReclaimMemory(const ResourceValuesV2& values) {
  const double usedFraction =
      MemoryPolicyInForce() ? static_cast<double>(values.memoryBytes) / static_cast<double>(m_memory.m_perProcessLimit)
                            : -1.0;
  return m_memoryReclaim.Reclaim(m_general.m_logFunc, usedFraction);
}

bool ResourceManagerImpl::JudgeMemoryReclaim(MonitoredProcess& self, ResourceValuesV2& values, bool given) {
  if (given) UpdateResourceValues(self, values);
  const bool reclaimed = given && IsBelowMemoryThreashold(values, true);
  Log(reclaimed ? u"Resource Manager: Memory reclaimed. Process termination has been averted!"
                : u"Resource Manager: Memory reclamation was unsucessful. Process has to be terminated.");
  return reclaimed;
}
