// The CPU policy of ResourceManagerImpl: a limit on the group, for which its highest user answers.
#include "monitor/ResourceManagerImpl.h"

#include <algorithm>

#include "monitor/Duration.h"

using namespace qilsys::monitor;

namespace {

unsigned int CpuPercent(const ResourceValuesV2& values) { return values.cpuPercent; }

}  // namespace

ResourceManagerImpl::Policy ResourceManagerImpl::CpuPolicy() {
  return Policy{
      .isInForce = CpuPolicyInForce(),
      .isBelow = &ResourceManagerImpl::IsBelowCpuThreshold,
      .functions = m_cpuReclaim,
      .argument = &ResourceManagerImpl::CpuReclaimArgument,
      .terminateOnExcess = m_cpu.m_terminateOnExcess,
      .terminateCode = m_cpu.m_terminateCode,
      .reclaimed = u"Resource Manager: CPU reclaimed. Process termination has been averted!",
      // Spelt so on purpose: hosts search their logs for it.
      .notReclaimed = u"Resource Manager: CPU reclamation was unsucessful. Process has to be terminated.",
      .notTerminating =
          u"Resource Manager: Process is above CPU threshold, but the process does not terminate on "
          u"excessive Cpu usage. Not terminating.",
      .terminating = u"Resource Manager: Process is above CPU threshold. Requesting termination.",
  };
}

bool ResourceManagerImpl::IsBelowCpuThreshold(const ResourceValuesV2& values, bool logInfo) {
  if (values.cpuPercent == 0) {
    if (logInfo) Log(u"Resource Manager: CPU info: 0%");
    m_highCpuSince = NotHigh;
    return true;
  }
  const GroupUse group = SumGroup(values, CpuPercent, CpuPercent);
  const auto total = static_cast<unsigned int>(std::min(group.total, 100ULL));
  const bool exceeded = ExceedsCpuLimit(total);
  if (logInfo) LogCpuInfo(values, total, group.infoCount);
  if (!exceeded) {
    m_highCpuSince = NotHigh;
    return true;
  }
  // The time runs on while another member is the highest.
  const bool sustained = SustainedHighCpu(total);
  if (!group.isHighest || !sustained) return true;
  LogCpuExcess(values);
  return false;
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
  if (m_highCpuSince == NotHigh) {
    Log(u"Resource Manager: Detected high CPU usage. " + TStringCore::number(total) + u"%");
    m_highCpuSince = now;
  }
  return NanosecondsOf(m_cpu.m_sustainedSeconds) < now - m_highCpuSince;
}

void ResourceManagerImpl::LogCpuInfo(const ResourceValuesV2& values, unsigned int total, std::size_t infoCount) {
  Log(u"Resource Manager: CPU info: " + TStringCore::number(unsigned{values.cpuPercent}) + u"%; " +
      TStringCore::number(total) + u"% (Quillon total); " + TStringCore::number(infoCount) + u" (info count)");
  ReportAll();
}

void ResourceManagerImpl::LogCpuExcess(const ResourceValuesV2& values) {
  Log(u"Resource Manager: Exceeded sustained high CPU threshold above " + TStringCore::number(m_cpu.m_maxCpuPercent) +
      u"% for " + TStringCore::number(m_cpu.m_sustainedSeconds) + u" seconds.  This process has the highest usage of " +
      TStringCore::number(unsigned{values.cpuPercent}) + u"%");
  ReportAll();
}

double ResourceManagerImpl::CpuReclaimArgument(const ResourceValuesV2&) const { return -1.0; }
