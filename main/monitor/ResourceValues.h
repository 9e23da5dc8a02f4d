/// The figures of one member, which are also the datagrams of the protocol, byte for byte and in native byte order.
#pragma once

#include <array>
#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <optional>
#include <span>

enum class ResourceValuesVersion : int {
  VER_1 = 1,
  VER_2 = 2,
};

namespace qilsys::monitor {

/// Sixteen bytes, kept apart from boost's type because that one may be aligned.
using ResourceIdentity = std::array<std::uint8_t, 16>;

}  // namespace qilsys::monitor

// Fields of several bytes are not aligned: take them by value, never by reference.
#pragma pack(push, 1)

/// The older datagram: no identity but the pid, and no word about the sender's pace.
struct ResourceValuesV1 {
  std::uint32_t pid = 0;
  std::uint64_t memoryBytes = 0;
  std::uint8_t memoryLimitPercent = 0;
  std::uint8_t cpuPercent = 0;
};

/// The figures in memory, and the newer datagram.
struct ResourceValuesV2 {
  /// Always 2; nobody reads it.
  std::uint32_t version = 2;
  std::uint32_t pid = 0;
  /// The sender's identity for one run of its monitor, so that a reused pid is not taken for an old member.
  qilsys::monitor::ResourceIdentity uuid{};
  /// Private bytes of the sender and its children.
  std::uint64_t memoryBytes = 0;
  /// `memoryBytes` as percent of the sender's own limit, 0 to 100.
  std::uint8_t memoryLimitPercent = 0;
  /// Percent of the machine, 0 to 100.
  std::uint8_t cpuPercent = 0;
  /// Low eight bits of the sender's check interval; 0 means not stated.
  std::uint8_t reportIntervalSeconds = 0;
};

#pragma pack(pop)

static_assert(sizeof(ResourceValuesV1) == 14);
static_assert(sizeof(ResourceValuesV2) == 35);

namespace qilsys::monitor {

/// What version 1 can carry of the figures.
ResourceValuesV1 Narrow(const ResourceValuesV2& values);

/// Version 1 figures as version 2: the identity holds the pid and zeros, the interval is not stated.
ResourceValuesV2 Widen(const ResourceValuesV1& values);

/// The figures in a datagram of either version, in native byte order; nothing for any other length. No field is checked.
std::optional<ResourceValuesV2> ValuesOfDatagram(std::span<const unsigned char> datagram);

/// Random bytes as an identity of version 4: the bits that name version and variant are fixed.
ResourceIdentity Version4(ResourceIdentity randomBytes);

/// The identity in the type that orders and prints it.
boost::uuids::uuid UuidOf(const ResourceValuesV2& values);

/// The record with which a member begins: a fresh random identity, all figures 0. A member that sends version 1 begins
/// with what the others make of its datagrams, so that it knows its own. Throws `boost::uuids::entropy_error` if the
/// system has no random numbers.
ResourceValuesV2 MakeOwnValues(ResourceValuesVersion version, std::uint32_t pid, std::int64_t checkIntervalSeconds);

/// The sum of percentages as a datagram carries it: eight bits that wrap while adding, limited to 100 at the end.
class PercentSum {
 public:
  void Add(unsigned char percent) { m_sum = static_cast<unsigned char>(m_sum + percent); }
  unsigned char Limited() const { return m_sum < 100 ? m_sum : 100; }

 private:
  unsigned char m_sum = 0;
};

/// `bytes` as percent of `limit`, cut to eight bits before it is limited to 100: 300 percent is 44.
unsigned char PercentOfLimit(unsigned long long bytes, unsigned long long limit);

}  // namespace qilsys::monitor
