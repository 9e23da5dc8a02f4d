#include "monitor/ResourceValues.h"

#include <algorithm>
#include <cstring>

#include "monitor/RandomBytes_platform.h"

namespace qilsys::monitor {

namespace {

template <class TValues>
TValues ValuesOf(std::span<const unsigned char> datagram) {
  TValues values;
  std::memcpy(&values, datagram.data(), sizeof values);
  return values;
}

ResourceIdentity RandomIdentity() {
  ResourceIdentity bytes;
  FillWithRandomNumbers(bytes);
  return Version4(bytes);
}

}  // namespace

ResourceValuesV1 Narrow(const ResourceValuesV2& values) {
  ResourceValuesV1 narrow;
  narrow.pid = values.pid;
  narrow.memoryBytes = values.memoryBytes;
  narrow.memoryLimitPercent = values.memoryLimitPercent;
  narrow.cpuPercent = values.cpuPercent;
  return narrow;
}

ResourceValuesV2 Widen(const ResourceValuesV1& values) {
  ResourceValuesV2 wide;
  const std::uint32_t pid = values.pid;
  wide.pid = pid;
  std::memcpy(wide.uuid.data(), &pid, sizeof pid);
  wide.memoryBytes = values.memoryBytes;
  wide.memoryLimitPercent = values.memoryLimitPercent;
  wide.cpuPercent = values.cpuPercent;
  return wide;
}

std::optional<ResourceValuesV2> ValuesOfDatagram(std::span<const unsigned char> datagram) {
  if (datagram.size() == sizeof(ResourceValuesV2)) return ValuesOf<ResourceValuesV2>(datagram);
  if (datagram.size() == sizeof(ResourceValuesV1)) return Widen(ValuesOf<ResourceValuesV1>(datagram));
  return std::nullopt;
}

ResourceIdentity Version4(ResourceIdentity randomBytes) {
  randomBytes[6] = static_cast<std::uint8_t>((randomBytes[6] & 0x0F) | 0x40);
  randomBytes[8] = static_cast<std::uint8_t>((randomBytes[8] & 0x3F) | 0x80);
  return randomBytes;
}

boost::uuids::uuid UuidOf(const ResourceValuesV2& values) {
  boost::uuids::uuid uuid;
  static_assert(sizeof uuid == sizeof(ResourceIdentity));
  std::copy(values.uuid.begin(), values.uuid.end(), uuid.begin());
  return uuid;
}

ResourceValuesV2 MakeOwnValues(ResourceValuesVersion version, std::uint32_t pid, std::int64_t checkIntervalSeconds) {
  ResourceValuesV2 own;
  own.pid = pid;
  own.reportIntervalSeconds = static_cast<std::uint8_t>(checkIntervalSeconds);
  own.uuid = RandomIdentity();
  return version == ResourceValuesVersion::VER_1 ? Widen(Narrow(own)) : own;
}

unsigned char PercentOfLimit(unsigned long long bytes, unsigned long long limit) {
  const double percent = static_cast<double>(bytes) / static_cast<double>(limit) * 100;
  // Beyond 63 bits no low bits are left; the cast would be undefined there.
  constexpr double TooLarge = 9.0e18;
  const auto lowByte = static_cast<unsigned char>(percent < TooLarge ? static_cast<std::int64_t>(percent) : 0);
  return std::min<unsigned char>(lowByte, 100);
}

}  // namespace qilsys::monitor
