// The table of peers of ResourceManagerImpl: what was last heard from each member, this one included.
#include "monitor/ResourceManagerImpl.h"

#include <boost/uuid/uuid_io.hpp>

#include "monitor/Duration.h"
#include "monitor/LogText.h"

using namespace qilsys::monitor;

namespace {

TStringCore ProcessLine(const ResourceValuesV2& values) {
  return u"Resource Manager: pid: " + TStringCore::number(std::uint32_t{values.pid}) + u"; Memory info: " +
         BytesText(values.memoryBytes) + u"; Memory limit usage: " +
         TStringCore::number(unsigned{values.memoryLimitPercent}) + u"%; CPU info: " +
         TStringCore::number(unsigned{values.cpuPercent}) + u"%; uuid=" +
         TStringCore::fromStdString(boost::uuids::to_string(UuidOf(values)));
}

}  // namespace

void ResourceManagerImpl::OnValues(const ResourceValuesV2& values) {
  PeerRecord record{values, GetReportTime()};
  if (values.reportIntervalSeconds == 0) {
    record.m_values.reportIntervalSeconds = static_cast<std::uint8_t>(m_general.m_checkIntervalSeconds);
  }
  const PeersLock lock(m_peersLock);
  m_peers[UuidOf(values)] = record;
}

void ResourceManagerImpl::PurgePeers() {
  const std::int64_t now = GetReportTime();
  const PeersLock lock(m_peersLock);
  std::erase_if(m_peers, [&](const auto& entry) {
    const auto& [identity, peer] = entry;
    return identity != m_identity && now >= peer.m_receivedAt + NanosecondsOf(peer.m_values.reportIntervalSeconds);
  });
}

std::pair<unsigned char, unsigned long long> ResourceManagerImpl::GetCpuAndMemoryUsage() {
  const PeersLock lock(m_peersLock);
  const auto own = m_peers.find(m_identity);
  if (own == m_peers.end()) return {0, 0};
  const ResourceValuesV2& values = own->second.m_values;
  return {values.cpuPercent, std::uint64_t{values.memoryBytes}};
}

void ResourceManagerImpl::LogAllProcesses(const ResourceValuesV2& values) {
  Log(u"Resource Manager: Logging all CPU/memory info across processes.");
  Log(ProcessLine(values));
  const PeersLock lock(m_peersLock);
  ForEachPeer(lock, [this](const ResourceValuesV2& peer) { Log(ProcessLine(peer)); });
}
