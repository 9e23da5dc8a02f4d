/// Two ways to the same result, measured in turns: what else the machine does hits both alike, and the least time of
/// thousands of short slices is one that nothing hit.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>

namespace qilsys::benchmarks {

/// The nanoseconds that `count` calls take.
template <class Call>
double Take(std::size_t count, const Call& call) {
  const auto start = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < count; ++i) call();
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

/// So many calls that the clock's own step is small beside them, and few enough to pass between two disturbances.
template <class Call>
std::size_t CallsOfSlice(const Call& call) {
  constexpr double SliceNanoseconds = 50'000;
  std::size_t count = 1;
  while (Take(count, call) < SliceNanoseconds) count *= 2;
  return count;
}

/// Reports the least nanoseconds of one call each, and ours by the peer's.
template <class Ours, class Peer>
void SideBySide(benchmark::State& state, const Ours& ours, const Peer& peer) {
  const std::size_t count = CallsOfSlice(ours);
  double ourLeast = std::numeric_limits<double>::infinity(), peerLeast = ourLeast;
  for (auto _ : state) {
    ourLeast = std::min(ourLeast, Take(count, ours));
    peerLeast = std::min(peerLeast, Take(count, peer));
  }
  state.counters["ours_ns"] = ourLeast / static_cast<double>(count);
  state.counters["peer_ns"] = peerLeast / static_cast<double>(count);
  state.counters["ratio"] = ourLeast / peerLeast;
}

}  // namespace qilsys::benchmarks
