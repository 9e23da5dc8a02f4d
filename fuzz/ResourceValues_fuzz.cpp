// Any bytes as a datagram of the monitor: the length alone decides, every byte of a record is kept, and what is heard can
// be sent on as it came.
#include "monitor/ResourceValues.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using namespace qilsys::monitor;

void Require(bool condition) {
  if (!condition) std::abort();
}

template <class TValues>
bool HasBytes(const TValues& values, const std::uint8_t* data) {
  return std::memcmp(&values, data, sizeof values) == 0;
}

void CheckWidened(const ResourceValuesV2& values, const std::uint8_t* data) {
  Require(HasBytes(Narrow(values), data));
  Require(std::equal(data, data + 4, values.uuid.begin()));
  Require(std::all_of(values.uuid.begin() + 4, values.uuid.end(), [](std::uint8_t byte) { return byte == 0; }));
  Require(values.version == 2 && values.reportIntervalSeconds == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::optional<ResourceValuesV2> values = ValuesOfDatagram({data, size});
  Require(values.has_value() == (size == 14 || size == 35));
  if (size == 35) Require(HasBytes(*values, data));
  if (size == 14) CheckWidened(*values, data);
  if (!values) return 0;
  const boost::uuids::uuid identity = UuidOf(*values);
  Require(std::equal(identity.begin(), identity.end(), values->uuid.begin()));
  Require(PercentOfLimit(values->memoryBytes, 1U << 20) <= 100);
  return 0;
}
