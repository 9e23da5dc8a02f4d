/// Seconds of the settings in finer units. What passes the range is its end: it stands for "never" either way.
#pragma once

#include <chrono>
#include <cstdint>
#include <limits>

namespace qilsys::monitor {

inline std::int64_t SecondsTimes(std::int64_t seconds, std::int64_t factor) {
  constexpr std::int64_t Lowest = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t Highest = std::numeric_limits<std::int64_t>::max();
  if (seconds > Highest / factor) return Highest;
  if (seconds < Lowest / factor) return Lowest;
  return seconds * factor;
}

inline std::int64_t NanosecondsOf(std::int64_t seconds) { return SecondsTimes(seconds, 1'000'000'000); }

inline std::chrono::milliseconds MillisecondsOf(std::int64_t seconds) {
  return std::chrono::milliseconds(SecondsTimes(seconds, 1000));
}

}  // namespace qilsys::monitor
