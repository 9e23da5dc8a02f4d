#include "monitor/ResourceValues.h"

#include <algorithm>
#include <boost/uuid/random_generator.hpp>
#include <cstring>

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
  const boost::uuids::uuid identity = boost::uuids::random_generator()();
  std::copy(identity.begin(), identity.end(), own.uuid.begin());
  return version == ResourceValuesVersion::VER_1 ? Widen(Narrow(own)) : own;
}

unsigned char PercentOfLimit(unsigned long long bytes, unsigned long long limit) {
  const double percent = static_cast<double>(bytes) / static_cast<double>(limit) * 100;
  // Beyond 63 bits no low bits are left; the cast would be undefined there.
  constexpr double tooLarge = 9.0e18;
  const auto lowByte = static_cast<unsigned char>(percent < tooLarge ? static_cast<std::int64_t>(percent) : 0);
  return std::min<unsigned char>(lowByte, 100);
}
