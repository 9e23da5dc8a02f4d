// The table of peers of ResourceManagerImpl: what was last heard from each member, this one included.
#include "monitor/ResourceManagerImpl.h"

#include <algorithm>
#include <boost/uuid/uuid_io.hpp>
#include <utility>

#include "monitor/Duration.h"
#include "monitor/LogText.h"

using namespace qilsys::monitor;

namespace {

// From when on the member does not count any more, by its own interval.
std::int64_t SilentFrom(const PeerRecord& peer) {
  return peer.m_receivedAt + NanosecondsOf(peer.m_values.reportIntervalSeconds);
}

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
  if (!TakeIn(UuidOf(values), record)) Log(u"Resource Manager: Too many members. Ignoring new ones.");
}

// False when the record is the first for which there is no room.
bool ResourceManagerImpl::TakeIn(const boost::uuids::uuid& identity, const PeerRecord& record) {
  const PeersLock lock(m_peersLock);
  if (m_workerHasEnded || m_peers.size() >= MostMembers) DropSilent(lock, record.m_receivedAt);
  if (m_peers.size() >= MostMembers && identity != m_identity && !m_peers.contains(identity)) {
    return std::exchange(m_isFullLogged, true);
  }
  m_peers[identity] = record;
  if (identity != m_identity) m_nextSilence = std::min(m_nextSilence, SilentFrom(record));
  return true;
}

void ResourceManagerImpl::PurgePeers() {
  const std::int64_t now = GetReportTime();
  DropSilent(PeersLock(m_peersLock), now);
}

// A full table is purged for each stranger that comes, so it is only walked when somebody has fallen silent.
void ResourceManagerImpl::DropSilent(const PeersLock&, std::int64_t now) {
  if (now < m_nextSilence) return;
  m_nextSilence = Never;
  std::erase_if(m_peers, [&](const auto& entry) {
    const auto& [identity, peer] = entry;
    if (identity == m_identity) return false;
    const std::int64_t silentFrom = SilentFrom(peer);
    if (now < silentFrom) m_nextSilence = std::min(m_nextSilence, silentFrom);
    return now >= silentFrom;
  });
  if (m_peers.size() < MostMembers) m_isFullLogged = false;
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
  for (const ResourceValuesV2& peer : CopyPeers()) Log(ProcessLine(peer));
}

// Lines are made and logged from copies: the host's log may be slow, and the listener waits for the table.
std::vector<ResourceValuesV2> ResourceManagerImpl::CopyPeers() {
  const PeersLock lock(m_peersLock);
  std::vector<ResourceValuesV2> peers;
  peers.reserve(m_peers.size());
  ForEachPeer(lock, [&](const ResourceValuesV2& peer) { peers.push_back(peer); });
  return peers;
}
