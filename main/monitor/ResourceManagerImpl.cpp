#include "monitor/ResourceManagerImpl.h"

#include <boost/uuid/uuid_io.hpp>

#include "monitor/Duration.h"
#include "monitor/LogText.h"
#include "monitor/ResourceReporterManager.h"
#include "monitor/ThreadJoin.h"
#include "qilsys/LogicException.h"
#include "qilsys/TSystem.h"

namespace {

constexpr char File[] = "main/monitor/ResourceManagerImpl";

// How many checks make the sustained time. Settings that make no sense count as none, so that the buffer of the rolling
// mean has room for one sample at least. It needs no room for more where there is no rolling mean, and "for ever" is
// then a sustained time like any other.
std::size_t WindowOf(const ResourceManager::CpuConfig& cpu, const ResourceManager::GeneralConfig& general) {
  if (!cpu.m_useRollingMean || general.m_checkIntervalSeconds <= 0 || cpu.m_sustainedSeconds <= 0) return 0;
  return static_cast<std::size_t>(cpu.m_sustainedSeconds / general.m_checkIntervalSeconds);
}

TStringCore ProcessLine(const ResourceValuesV2& values) {
  return u"Resource Manager: pid: " + TStringCore::number(std::uint32_t{values.pid}) + u"; Memory info: " +
         BytesText(values.memoryBytes) + u"; Memory limit usage: " +
         TStringCore::number(unsigned{values.memoryLimitPercent}) + u"%; CPU info: " +
         TStringCore::number(unsigned{values.cpuPercent}) + u"%; uuid=" +
         TStringCore::fromStdString(boost::uuids::to_string(UuidOf(values)));
}

}  // namespace

ResourceManagerImpl::ResourceManagerImpl(const ResourceManager::CpuConfig& cpu,
                                         const ResourceManager::MemoryConfig& memory,
                                         const ResourceManager::GeneralConfig& general)
    : m_cpu(cpu),
      m_memory(memory),
      m_general(general),
      m_children(general.m_logFunc),
      m_cpuReclaim(u"CPU"),
      m_memoryReclaim(u"memory"),
      m_cpuWindow(WindowOf(cpu, general) + 1),
      m_rvVersion(general.m_useVersion1 ? ResourceValuesVersion::VER_1 : ResourceValuesVersion::VER_2) {
  m_ownValues = MakeOwnValues(m_rvVersion, TSystem::ProcessID(), general.m_checkIntervalSeconds);
}

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
  if (m_ipc) return;
  m_ipc = std::make_unique<ResourceIpc>(
      port, [this](const ResourceValuesV2& values) { OnValues(values); }, m_general.m_logFunc,
      m_general.m_terminateHandler);
}

void ResourceManagerImpl::StartWorker() {
  QILSYS_LOGIC_ASSERT(!m_worker, "!m_worker", File, 101, 0xCF38B12E, "LogicException_LogicAssert_0xCF38B12E");
  if (m_worker) return;
  m_worker = std::make_unique<std::thread>([this] { Work(); });
}

void ResourceManagerImpl::StopThreads() {
  m_stopEvent.Signal();
  if (m_worker) JoinIfJoinable(*m_worker);
  if (m_secondWorker) JoinIfJoinable(*m_secondWorker);
  if (m_ipc) m_ipc->Stop();
  m_ipc.reset();
}

std::pair<unsigned char, unsigned long long> ResourceManagerImpl::GetCpuAndMemoryUsage() {
  TScopedLock lock(m_peersLock);
  const auto own = m_peers.find(UuidOf(m_ownValues));
  if (own == m_peers.end()) return {0, 0};
  const ResourceValuesV2& values = own->second.m_values;
  return {values.cpuPercent, std::uint64_t{values.memoryBytes}};
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
  PurgePeers();
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

unsigned long long ResourceManagerImpl::GetTotalMemoryUsed() {
  return m_memory.m_totalMemoryFunc ? m_memory.m_totalMemoryFunc() : TSystem::Memory().m_usedPhysical;
}

void ResourceManagerImpl::Send(const ResourceValuesV2& values) {
  const bool known = ResourceValuesVersion::VER_1 <= m_rvVersion && m_rvVersion <= ResourceValuesVersion::VER_2;
  QILSYS_LOGIC_ASSERT(known,
                      "ResourceValuesVersion::VER_1 <= m_rvVersion && m_rvVersion <= ResourceValuesVersion::VER_2",
                      File, 479, 0x044A63AC, "LogicException_LogicAssert_0x044A63AC");
  if (m_rvVersion == ResourceValuesVersion::VER_1) m_ipc->Send(Narrow(values));
  if (m_rvVersion == ResourceValuesVersion::VER_2) m_ipc->Send(values);
}

void ResourceManagerImpl::OnValues(const ResourceValuesV2& values) {
  PeerRecord record{values, GetReportTime()};
  if (values.reportIntervalSeconds == 0) {
    record.m_values.reportIntervalSeconds = static_cast<std::uint8_t>(m_general.m_checkIntervalSeconds);
  }
  TScopedLock lock(m_peersLock);
  m_peers[UuidOf(values)] = record;
}

void ResourceManagerImpl::PurgePeers() {
  const std::int64_t now = GetReportTime();
  const boost::uuids::uuid own = UuidOf(m_ownValues);
  TScopedLock lock(m_peersLock);
  std::erase_if(m_peers, [&](const auto& entry) {
    const auto& [uuid, peer] = entry;
    return uuid != own && now >= peer.m_receivedAt + NanosecondsOf(peer.m_values.reportIntervalSeconds);
  });
}

void ResourceManagerImpl::ReportAll() {
  ResourceReporterManager::Get().ReportAll(m_general.m_infoEveryChecks *
                                           static_cast<std::uint32_t>(m_general.m_checkIntervalSeconds));
}

void ResourceManagerImpl::LogAllProcesses(const ResourceValuesV2& values) {
  Log(u"Resource Manager: Logging all CPU/memory info across processes.");
  Log(ProcessLine(values));
  TScopedLock lock(m_peersLock);
  ForEachPeer([this](const ResourceValuesV2& peer) { Log(ProcessLine(peer)); });
}
