/// A lock of one word, for sections of a few instructions and as the base of the critical section.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include "synchronize/Futex_linux.h"

namespace qilsys::synchronize {

/// Not recursive, knows no owner, not fair. Unlocking touches nothing of the lock after it has become free, so the
/// next holder may destroy it.
///
/// The word:
///
///   | Value       | Meaning                          | Who moves it there                                     |
///   |-------------|----------------------------------|--------------------------------------------------------|
///   | `Free`      | nobody holds the lock            | `Unlock`, by an exchange                               |
///   | `Held`      | held, and nobody sleeps          | `TryLock`, from `Free`                                 |
///   | `Contended` | held, and somebody sleeps or may | a thread about to sleep, by an exchange from any value |
///
/// A thread that has been to sleep takes the lock as `Contended`, since it can't know whether others sleep still; at
/// worst one wake too many follows. Taking the lock is an acquire and giving it up a release, so that a holder sees
/// what the holders before it wrote. Everything else is relaxed.
class TFutexLock {
 public:
  TFutexLock() = default;
  TFutexLock(const TFutexLock&) = delete;
  TFutexLock& operator=(const TFutexLock&) = delete;

  void Lock() noexcept {
    if (!TryLock()) [[unlikely]] {
      LockSlow();
    }
  }

  bool TryLock() noexcept {
    std::uint32_t expected = Free;
    return m_word.compare_exchange_strong(expected, Held, std::memory_order_acquire, std::memory_order_relaxed);
  }

  void Unlock() noexcept {
    if (m_word.exchange(Free, std::memory_order_release) == Contended) [[unlikely]] {
      FutexWakeOne(&m_word);
    }
  }

  bool IsContendedForTest() const noexcept { return m_word.load(std::memory_order_relaxed) == Contended; }

 private:
  enum State : std::uint32_t { Free, Held, Contended };

  void LockSlow() noexcept;
  bool SpinForLock() noexcept;

  TFutexWord m_word{Free};
};

/// Holds a TFutexLock for a scope.
class [[nodiscard]] TFutexGuard {
 public:
  explicit TFutexGuard(TFutexLock& lock) noexcept : m_lock(lock) { m_lock.Lock(); }
  TFutexGuard(const TFutexGuard&) = delete;
  TFutexGuard& operator=(const TFutexGuard&) = delete;
  ~TFutexGuard() { m_lock.Unlock(); }

 private:
  TFutexLock& m_lock;
};

}  // namespace qilsys::synchronize
