/// Threads that wait, in the order of their arrival. Events, condition variables and semaphores are made of it.
///
/// Each waiting thread brings a record on its own stack and sleeps on the word in it. Whoever releases it takes the
/// record out of the queue under the owner's lock, unlocks, and only then marks and wakes it. Three things follow.
/// A release reaches exactly the threads that were waiting, however soon the owner's state changes again. Two
/// releases can't melt into one. And a released thread touches nothing of the owner, nor does its releaser, so either
/// may destroy the owner.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include "synchronize/Futex_linux.h"
#include "synchronize/TFutexLock_linux.h"

namespace qilsys::synchronize {

/// One waiting thread. The state word:
///
///   | Value      | Meaning                                 | Who moves it there                          |
///   |------------|-----------------------------------------|---------------------------------------------|
///   | `Awake`    | queued, has not gone to sleep yet       | construction                                |
///   | `Asleep`   | sleeps or is about to: needs a wake     | the waiting thread, from `Awake`            |
///   | `Released` | may go on; the record may be gone       | the releaser, by an exchange from any value |
///
/// The releaser's exchange is a release, and the waiting thread's look at `Released` an acquire, so that what was
/// written before the release is seen after the wait. The links and `m_isQueued` are guarded by the owner's lock
/// while the record is queued; in a chain that was taken out they are the releaser's alone.
class TWaiter {
 public:
  TWaiter() = default;
  TWaiter(const TWaiter&) = delete;
  TWaiter& operator=(const TWaiter&) = delete;

 private:
  friend class TWaitQueue;
  enum State : std::uint32_t { Awake, Asleep, Released };

  bool IsReleased() const noexcept { return m_state.load(std::memory_order_acquire) == Released; }
  FutexResult Sleep(const TDeadline& deadline) noexcept;
  void SleepUntilReleased() noexcept;

  TFutexWord m_state{Awake};
  bool m_isQueued = false;
  TWaiter* m_previous = nullptr;
  TWaiter* m_next = nullptr;
};

/// The queue itself. Its owner's lock guards all operations but the static one.
class TWaitQueue {
 public:
  TWaitQueue() = default;
  TWaitQueue(const TWaitQueue&) = delete;
  TWaitQueue& operator=(const TWaitQueue&) = delete;

  void Add(TWaiter& waiter) noexcept;
  /// Takes out the thread that has waited longest, null if there is none.
  TWaiter* TakeFirst() noexcept;
  /// Takes out all, as a chain for Release.
  TWaiter* TakeAll() noexcept;
  /// Lets a chain go on, in the order of arrival; null is an empty one. Called without the lock.
  static void Release(TWaiter* chain) noexcept;

  /// Sleeps until `waiter`, which has been added, is released (`Woken`). When the time runs out or the wait fails
  /// first, it is taken out of the queue again. Called without the lock, which is taken only in the latter case.
  FutexResult Wait(TWaiter& waiter, TFutexLock& lock, const TDeadline& deadline) noexcept;

  unsigned int SizeForTest() const noexcept;

 private:
  bool Remove(TWaiter& waiter) noexcept;

  TWaiter* m_first = nullptr;
  TWaiter* m_last = nullptr;
};

}  // namespace qilsys::synchronize
