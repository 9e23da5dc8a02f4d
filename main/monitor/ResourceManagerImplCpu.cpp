// The CPU policy of ResourceManagerImpl: a limit on the group, for which its highest user answers.
#include <algorithm>

#include "monitor/Duration.h"
#include "monitor/ResourceManagerImpl.h"

bool ResourceManagerImpl::IsBelowCpuThreshold(const ResourceValuesV2& values, bool logInfo) {
  if (values.cpuPercent == 0) {
    if (logInfo) Log(u"Resource Manager: CPU info: 0%");
    m_highCpuSince = s_notHigh;
    return true;
  }
  const GroupCpu group = SumGroupCpu(values);
  const bool exceeded = ExceedsCpuLimit(group.m_total);
  if (logInfo) LogCpuInfo(values, group);
  if (!exceeded) {
    m_highCpuSince = s_notHigh;
    return true;
  }
  // The time runs on while another member is the highest.
  const bool sustained = SustainedHighCpu(group.m_total);
  if (!group.m_highest || !sustained) return true;
  LogCpuExcess(values);
  return false;
}

ResourceManagerImpl::GroupCpu ResourceManagerImpl::SumGroupCpu(const ResourceValuesV2& values) {
  TScopedLock lock(m_peersLock);
  GroupCpu group{values.cpuPercent, true, m_peers.size()};
  ForEachPeer([&](const ResourceValuesV2& peer) {
    group.m_total += peer.cpuPercent;
    if (peer.cpuPercent > values.cpuPercent) group.m_highest = false;
  });
  group.m_total = std::min(group.m_total, 100U);
  return group;
}

bool ResourceManagerImpl::ExceedsCpuLimit(unsigned int total) {
  if (!m_cpu.m_useRollingMean) return total > m_cpu.m_maxCpuPercent;
  FeedCpuMean(total);
  return m_cpuMean > m_cpu.m_maxCpuPercent;
}

void ResourceManagerImpl::FeedCpuMean(double sample) {
  m_cpuWindow.push_back(sample);
  // While the window fills, the mean moves towards the sample; once full, by what the sample differs from the oldest.
  const bool full = m_cpuWindow.full();
  const double from = full ? m_cpuWindow.front() : m_cpuMean;
  const auto n = static_cast<double>(full ? m_cpuWindow.size() - 1 : m_cpuWindow.size());
  if (from > sample) m_cpuMean -= (from - sample) / n;
  if (from < sample) m_cpuMean += (sample - from) / n;
}

bool ResourceManagerImpl::SustainedHighCpu(unsigned int total) {
  const std::int64_t now = GetSteadyTime();
  if (m_highCpuSince == s_notHigh) {
    Log(u"Resource Manager: Detected high CPU usage. " + TStringCore::number(total) + u"%");
    m_highCpuSince = now;
  }
  return NanosecondsOf(m_cpu.m_sustainedSeconds) < now - m_highCpuSince;
}

void ResourceManagerImpl::LogCpuInfo(const ResourceValuesV2& values, const GroupCpu& group) {
  Log(u"Resource Manager: CPU info: " + TStringCore::number(unsigned{values.cpuPercent}) + u"%; " +
      TStringCore::number(group.m_total) + u"% (Quillon total); " + TStringCore::number(group.m_infoCount) +
      u" (info count)");
  ReportAll();
}

void ResourceManagerImpl::LogCpuExcess(const ResourceValuesV2& values) {
  Log(u"Resource Manager: Exceeded sustained high CPU threshold above " + TStringCore::number(m_cpu.m_maxCpuPercent) +
      u"% for " + TStringCore::number(m_cpu.m_sustainedSeconds) + u" seconds.  This process has the highest usage of " +
      TStringCore::number(unsigned{values.cpuPercent}) + u"%");
  ReportAll();
}

bool ResourceManagerImpl::ReclaimCpu(MonitoredProcess& self, ResourceValuesV2& values) {
  return JudgeCpuReclaim(self, values, AskToReclaimCpu() && !m_stopEvent.Wait(CheckInterval()));
}

bool ResourceManagerImpl::AskToReclaimCpu() { return m_cpuReclaim.Reclaim(m_general.m_logFunc, -1.0); }

bool ResourceManagerImpl::JudgeCpuReclaim(MonitoredProcess& self, ResourceValuesV2& values, bool given) {
  if (given) UpdateResourceValues(self, values);
  const bool reclaimed = given && IsBelowCpuThreshold(values, true);
  Log(reclaimed ? u"Resource Manager: CPU reclaimed. Process termination has been averted!"
                : u"Resource Manager: CPU reclamation was unsucessful. Process has to be terminated.");
  return reclaimed;
}
