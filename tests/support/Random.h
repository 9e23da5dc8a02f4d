/// What random and stress tests share: a seed that can be given again, and a number of rounds that can be scaled.
///
/// `QILSYS_TEST_SEED` sets the seed (decimal, or hexadecimal after 0x); without it the clock does, once a process.
/// `QILSYS_TEST_SCALE` multiplies the rounds: 1 by default, 100 in a long run, below 1 under a slow tool.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace qilsys::test {

/// The seed of this process, the same at each call. It is recorded as a property of the running test.
inline std::uint64_t Seed() {
  static const std::uint64_t ChosenSeed = [] {
    const char* given = std::getenv("QILSYS_TEST_SEED");
    if (given != nullptr) return static_cast<std::uint64_t>(std::strtoull(given, nullptr, 0));
    return static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
  }();
  testing::Test::RecordProperty("seed", std::to_string(ChosenSeed));
  return ChosenSeed;
}

/// `base` rounds times the scale, at least 1. A scale that is no positive number counts as 1.
inline int Rounds(int base) {
  const char* given = std::getenv("QILSYS_TEST_SCALE");
  double scale = given != nullptr ? std::strtod(given, nullptr) : 1.0;
  if (!std::isfinite(scale) || scale <= 0) scale = 1.0;
  const double rounds = std::round(base * scale);
  return static_cast<int>(std::clamp(rounds, 1.0, static_cast<double>(std::numeric_limits<int>::max())));
}

/// A generator that starts from Seed() and, while it lives, adds the seed to every failure message of its thread.
/// `stream` tells generators of one test apart (one a thread, say).
class SeededRandom {
 public:
  explicit SeededRandom(std::uint64_t stream = 0)
      : m_engine(Seed() + stream * 0x9E3779B97F4A7C15U),
        m_trace(__FILE__, __LINE__, "run again with QILSYS_TEST_SEED=" + std::to_string(Seed())) {}

  /// A number from `low` to `high`, both included.
  template <class T>
  T Between(T low, T high) {
    return std::uniform_int_distribution<T>(low, high)(m_engine);
  }

  /// True once in `n` times.
  bool OneIn(int n) { return Between(1, n) == 1; }

  std::mt19937_64& Engine() { return m_engine; }

 private:
  std::mt19937_64 m_engine;
  testing::ScopedTrace m_trace;
};

}  // namespace qilsys::test
