#include "monitor/MemoryLimit.h"

#include <algorithm>

namespace {

// The language leaves a value out of range open. Here a negative one wraps, as the subtractions do, and one beyond
// 64 bits, or not a number, becomes the highest bit alone, as 64-bit processors have it.
std::uint64_t ToUnsigned64(double value) {
  constexpr double TwoTo63 = 9223372036854775808.0;
  if (value >= 0 && value < 2 * TwoTo63) return static_cast<std::uint64_t>(value);
  if (value < 0 && value >= -TwoTo63) return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
  return std::uint64_t{1} << 63;
}

}  // namespace

std::uint64_t qilsys::monitor::MemoryLimitFor(std::uint64_t total, unsigned int minimumBaseGiB, double fraction,
                                              double reserveGiB) {
  const std::uint64_t reserve = ToUnsigned64(reserveGiB * 1024 * 1024 * 1024);
  const std::uint64_t base = std::max(std::uint64_t{minimumBaseGiB} << 30, total);
  const std::uint64_t candidate = ToUnsigned64(static_cast<double>(base) * fraction);
  return total - candidate >= reserve ? candidate : total - reserve;
}
