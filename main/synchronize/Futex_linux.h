/// What every waiting primitive here is made of: sleep while a word has a value, wake what sleeps on an address.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <atomic>
#include <chrono>
#include <cstdint>

#include "synchronize/NoLimit.h"

namespace qilsys::synchronize {

using TFutexWord = std::atomic<std::uint32_t>;

/// A point of the monotonic clock, so that changes of the wall clock neither cut nor stretch a wait.
class TDeadline {
 public:
  static TDeadline Never() { return TDeadline(); }
  /// `NoLimit` milliseconds is the same as Never().
  static TDeadline After(std::uint32_t milliseconds) {
    TDeadline deadline;
    deadline.m_isLimited = milliseconds != NoLimit;
    if (deadline.m_isLimited) {
      deadline.m_time = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    }
    return deadline;
  }

  bool IsLimited() const { return m_isLimited; }
  std::chrono::nanoseconds SinceEpoch() const { return m_time.time_since_epoch(); }

 private:
  bool m_isLimited = false;
  std::chrono::steady_clock::time_point m_time;
};

enum class FutexResult { Woken, TimedOut, Failed };

/// Sleeps while `word` has the value `expected`. `Woken` says only that it is time to look again: it may come without
/// a wake. `Failed` leaves the reason as the thread's last error. Orders no memory: callers look at the word again,
/// with the order that they need.
FutexResult FutexWait(const TFutexWord& word, std::uint32_t expected, const TDeadline& deadline) noexcept;

/// Wakes one thread that sleeps on the address. Nothing is read there, so the word itself may be gone already; a
/// sleeper on a later word at the same address sees a wake without a cause.
void FutexWakeOne(const TFutexWord* address) noexcept;

}  // namespace qilsys::synchronize
