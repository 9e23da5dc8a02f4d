/// Two ways to the same result, measured in turns: what else the machine does hits both alike, and the least time of
/// thousands of short slices is one that nothing hit.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>

namespace qilsys::benchmarks {

class Slices {
 public:
  explicit Slices(std::size_t calls) : m_calls(calls) {}

  template <class Call>
  void Measure(const Call& call) {
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < m_calls; ++i) call();
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    m_least = std::min(m_least, taken.count() / static_cast<double>(m_calls));
  }

  double Least() const { return m_least; }

 private:
  const std::size_t m_calls;
  double m_least = std::numeric_limits<double>::infinity();
};

/// Reports the least nanoseconds of one call each, and ours by the peer's. `bytes` is what a call reads.
template <class Ours, class Peer>
void SideBySide(benchmark::State& state, std::size_t bytes, const Ours& ours, const Peer& peer) {
  constexpr std::size_t SliceBytes = 64 * 1024;
  // What a message costs apart from its bytes is as much as some hundred of these.
  const std::size_t calls = std::max<std::size_t>(1, SliceBytes / (bytes + 512));
  Slices ourSlices(calls), peerSlices(calls);
  for (auto _ : state) {
    ourSlices.Measure(ours);
    peerSlices.Measure(peer);
  }
  state.counters["ours_ns"] = ourSlices.Least();
  state.counters["peer_ns"] = peerSlices.Least();
  state.counters["ratio"] = ourSlices.Least() / peerSlices.Least();
}

}  // namespace qilsys::benchmarks
