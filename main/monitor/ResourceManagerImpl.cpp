#include "monitor/ResourceManagerImpl.h"

#include <chrono>

#include "monitor/LogText.h"
#include "monitor/ThreadJoin.h"
#include "monitor/ThreadStart_platform.h"
#include "qilsys/LogicException.h"
#include "qilsys/TSystem.h"

using namespace qilsys::monitor;

namespace {

constexpr char File[] = "main/monitor/ResourceManagerImpl";

std::uint64_t Magnitude(std::int64_t n) {
  return n < 0 ? 0 - static_cast<std::uint64_t>(n) : static_cast<std::uint64_t>(n);
}

// How many checks make the sustained time. Settings that make no sense count as none, so that the buffer of the rolling
// mean has room for one sample at least. Where there is no rolling mean, "for ever" is a sustained time like any other:
// then no room is kept for more than days of checks.
std::size_t WindowOf(const ResourceManager::CpuConfig& cpu, const ResourceManager::GeneralConfig& general) {
  constexpr std::uint64_t LongestUnused = 1 << 20;
  const std::int64_t interval = general.m_checkIntervalSeconds;
  if (interval == 0 || (cpu.m_sustainedSeconds < 0) != (interval < 0)) return 0;
  const std::uint64_t window = Magnitude(cpu.m_sustainedSeconds) / Magnitude(interval);
  return cpu.m_useRollingMean || window <= LongestUnused ? window : 0;
}

ResourceValuesVersion VersionOf(const ResourceManager::GeneralConfig& general) {
  return general.m_useVersion1 ? ResourceValuesVersion::VER_1 : ResourceValuesVersion::VER_2;
}

}  // namespace

ResourceManagerImpl::ResourceManagerImpl(const ResourceManager::CpuConfig& cpu,
                                         const ResourceManager::MemoryConfig& memory,
                                         const ResourceManager::GeneralConfig& general)
    : ResourceManagerImpl(cpu, memory, general,
                          MakeOwnValues(VersionOf(general), TSystem::ProcessID(), general.m_checkIntervalSeconds)) {}

ResourceManagerImpl::ResourceManagerImpl(const ResourceManager::CpuConfig& cpu,
                                         const ResourceManager::MemoryConfig& memory,
                                         const ResourceManager::GeneralConfig& general, const ResourceValuesV2& own)
    : m_cpu(cpu),
      m_memory(memory),
      m_general(general),
      m_children(general.m_logFunc),
      m_cpuReclaim(u"CPU"),
      m_memoryReclaim(u"memory"),
      m_cpuWindow(WindowOf(cpu, general) + 1),
      m_ownValues(own),
      m_rvVersion(VersionOf(general)),
      m_identity(UuidOf(own)) {}

// A thread that can't be joined must not end the process through its handle on top of the failure.
ResourceManagerImpl::~ResourceManagerImpl() noexcept(false) {
  try {
    StopThreads();
  } catch (...) {
    if (m_worker && m_worker->joinable()) m_worker->detach();
    if (m_secondWorker && m_secondWorker->joinable()) m_secondWorker->detach();
    throw;
  }
  Log(u"Resource Manager: stopped");
}

void ResourceManagerImpl::StartMonitoring(unsigned short port) {
  if (!LogLimits()) return;
  StartListening(port);
  StartWorker();
}

// False where no policy is in force.
bool ResourceManagerImpl::LogLimits() {
  if (CpuPolicyInForce()) {
    Log(u"Resource Manager: Max CPU limited to " + TStringCore::number(m_cpu.m_maxCpuPercent) + u"% over " +
        TStringCore::number(m_cpu.m_sustainedSeconds) + u" seconds");
  } else if (!MemoryPolicyInForce()) {
    return false;
  }
  if (MemoryPolicyInForce()) {
    Log(u"Resource Manager: Per Process Memory Limit: " + BytesText(m_memory.m_perProcessLimit));
    Log(u"Resource Manager: All Processes Memory Limit: " + BytesText(m_memory.m_allProcessesLimit));
  }
  Log(u"Resource Manager: Checking resources every " + TStringCore::number(m_general.m_checkIntervalSeconds) +
      u" seconds");
  return true;
}

void ResourceManagerImpl::StartListening(unsigned short port) {
  Log(u"Resource Manager: listening on port " + TStringCore::number(port));
  QILSYS_LOGIC_ASSERT(!m_ipc, "!m_ipc", File, 94, 0x5D944982, "LogicException_LogicAssert_0x5D944982");
  auto ipc = std::make_unique<ResourceIpc>(
      port, [this](const ResourceValuesV2& values) { OnValues(values); }, m_general.m_logFunc,
      m_general.m_terminateHandler);
  const TScopedLock lock(m_ipcLock);
  m_ipc.swap(ipc);
}

// A thread that runs can't be replaced.
void ResourceManagerImpl::StartWorker() {
  QILSYS_LOGIC_ASSERT(!m_worker, "!m_worker", File, 101, 0xCF38B12E, "LogicException_LogicAssert_0xCF38B12E");
  if (m_worker) return;
  m_worker = std::make_unique<std::thread>(StartThread([this] { Work(); }));
}

void ResourceManagerImpl::StopThreads() {
  m_stopEvent.Signal();
  if (m_worker) JoinIfJoinable(*m_worker);
  if (m_secondWorker) JoinIfJoinable(*m_secondWorker);
  if (m_ipc) m_ipc->Stop();
  m_ipc.reset();
}

double ResourceManagerImpl::GetMemoryPressure() {
  const MonitoredProcess self;
  return static_cast<double>(m_children.GetMemoryUsage() + self.GetMemoryUsage()) /
         static_cast<double>(m_memory.m_perProcessLimit);
}

std::int64_t ResourceManagerImpl::GetSteadyTime() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

std::int64_t ResourceManagerImpl::GetReportTime() { return GetSteadyTime(); }
