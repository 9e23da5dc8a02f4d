// The memory policy of ResourceManagerImpl: a limit on the member itself, and one on all processes together, for which
// the member answers that has used the greatest share of its own limit.
#include "monitor/ResourceManagerImpl.h"

#include "monitor/LogText.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TSystem.h"

using namespace qilsys::monitor;

namespace {

unsigned long long Bytes(const ResourceValuesV2& values) { return values.memoryBytes; }
unsigned int LimitPercent(const ResourceValuesV2& values) { return values.memoryLimitPercent; }

[[noreturn]] void ThrowNoMachineMemory() {
  throw QuillonException(TStringCore(u"The memory of the machine can't be read"),
                         TError::ErrorInfo(QuillonError::MakeError(0x3E5B17C4, u"QuillonException_AutoGen_0x3E5B17C4"),
                                           TError::System, grpc::StatusCode::UNKNOWN));
}

}  // namespace

ResourceManagerImpl::Policy ResourceManagerImpl::MemoryPolicy() {
  return Policy{
      .isInForce = MemoryPolicyInForce(),
      .isBelow = &ResourceManagerImpl::IsBelowMemoryThreashold,
      .functions = m_memoryReclaim,
      .argument = &ResourceManagerImpl::MemoryReclaimArgument,
      .terminateOnExcess = m_memory.m_terminateOnExcess,
      .terminateCode = m_memory.m_terminateCode,
      .reclaimed = u"Resource Manager: Memory reclaimed. Process termination has been averted!",
      // Both are spelt so on purpose: hosts search their logs for them.
      .notReclaimed = u"Resource Manager: Memory reclamation was unsucessful. Process has to be terminated.",
      .notTerminating =
          u"Resource Manager: Process is above memory threshold, but the process does not terminate on "
          u"excessive memory useage. Not terminating.",
      .terminating = u"Resource Manager: Process is above memory threshold. Requesting termination.",
  };
}

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
    // The operation is called so, and spelt so on purpose.
    Log(u"Resource Manager: Exception thrown while getting system memory usage, returning false from "
        u"IsBelowMemoryThreashold(). " +
        exception.GetConcatenatedMessages());
    return std::nullopt;
  }
}

unsigned long long ResourceManagerImpl::GetTotalMemoryUsed() {
  if (m_memory.m_totalMemoryFunc) return m_memory.m_totalMemoryFunc();
  const TSystem::MemoryInfo machine = TSystem::Memory();
  // No machine has none: so a reading shows that has failed.
  if (machine.m_totalPhysical == 0) ThrowNoMachineMemory();
  return machine.m_usedPhysical;
}

bool ResourceManagerImpl::IsBelowAllProcessesLimit(const ResourceValuesV2& values, bool logInfo,
                                                   unsigned long long used) {
  const bool exceeded = used > m_memory.m_allProcessesLimit;
  if (!exceeded && !logInfo) return true;
  const GroupUse group = SumGroup(values, Bytes, LimitPercent);
  if (logInfo) LogMemory(u"Resource Manager: Memory info: ", values, group, used);
  if (!exceeded || !group.isHighest) return true;
  LogMemory(u"Resource Manager: Exceeded allowed memory usage across all processes. Memory info: ", values, group,
            used);
  return false;
}

void ResourceManagerImpl::LogMemory(const TStringCore& opening, const ResourceValuesV2& values, const GroupUse& group,
                                    unsigned long long used) {
  Log(opening + BytesText(values.memoryBytes) + u" (current process);" + BytesText(group.total) +
      u" (Quillon total); " + BytesText(used) + u" (total of all processes); " + TStringCore::number(group.infoCount) +
      u" (info count)");
  ReportAll();
}

// The used fraction of the limit, which may have none.
double ResourceManagerImpl::MemoryReclaimArgument(const ResourceValuesV2& values) const {
  if (!MemoryPolicyInForce()) return -1.0;
  return static_cast<double>(values.memoryBytes) / static_cast<double>(m_memory.m_perProcessLimit);
}
