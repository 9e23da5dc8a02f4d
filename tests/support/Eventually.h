/// Waiting in tests without sleeping: look until something is so.
#pragma once

#include <chrono>
#include <thread>

namespace qilsys::test {

/// How long a test waits for what must happen before it counts as failed; far beyond what a loaded machine needs.
constexpr std::chrono::seconds Patience(60);

/// Looks until `condition` holds and gives the processor away in between. False when patience has run out.
template <class Condition>
bool Eventually(Condition condition, std::chrono::milliseconds patience = Patience) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

}  // namespace qilsys::test
