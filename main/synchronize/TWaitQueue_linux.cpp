#include "synchronize/TWaitQueue_linux.h"

#include <thread>

namespace qilsys::synchronize {

FutexResult TWaiter::Sleep(const TDeadline& deadline) noexcept {
  std::uint32_t expected = Awake;
  m_state.compare_exchange_strong(expected, Asleep, std::memory_order_relaxed);
  while (!IsReleased()) {
    const FutexResult result = FutexWait(m_state, Asleep, deadline);
    if (result != FutexResult::Woken) {
      return IsReleased() ? FutexResult::Woken : result;
    }
  }
  return FutexResult::Woken;
}

// The releaser is between its unlocking and its mark, so this is short even where the system can't wait.
void TWaiter::SleepUntilReleased() noexcept {
  while (Sleep(TDeadline::Never()) != FutexResult::Woken) {
    std::this_thread::yield();
  }
}

void TWaitQueue::Add(TWaiter& waiter) noexcept {
  waiter.m_isQueued = true;
  waiter.m_previous = m_last;
  (m_last ? m_last->m_next : m_first) = &waiter;
  m_last = &waiter;
}

bool TWaitQueue::Remove(TWaiter& waiter) noexcept {
  if (!waiter.m_isQueued) {
    return false;
  }
  waiter.m_isQueued = false;
  (waiter.m_previous ? waiter.m_previous->m_next : m_first) = waiter.m_next;
  (waiter.m_next ? waiter.m_next->m_previous : m_last) = waiter.m_previous;
  return true;
}

TWaiter* TWaitQueue::TakeFirst() noexcept {
  TWaiter* const first = m_first;
  if (first) {
    Remove(*first);
    first->m_next = nullptr;
  }
  return first;
}

TWaiter* TWaitQueue::TakeAll() noexcept {
  TWaiter* const chain = m_first;
  for (TWaiter* waiter = chain; waiter; waiter = waiter->m_next) {
    waiter->m_isQueued = false;
  }
  m_first = m_last = nullptr;
  return chain;
}

// The link is read before the mark, and the wake is given an address only: once marked, the record is its thread's
// again and may be gone.
void TWaitQueue::Release(TWaiter* chain) noexcept {
  while (chain) {
    TWaiter* const next = chain->m_next;
    const TFutexWord* const address = &chain->m_state;
    if (chain->m_state.exchange(TWaiter::Released, std::memory_order_release) == TWaiter::Asleep) {
      FutexWakeOne(address);
    }
    chain = next;
  }
}

FutexResult TWaitQueue::Wait(TWaiter& waiter, TFutexLock& lock, const TDeadline& deadline) noexcept {
  const FutexResult result = waiter.Sleep(deadline);
  if (result == FutexResult::Woken) {
    return result;
  }
  {
    const TFutexGuard guard(lock);
    if (Remove(waiter)) {
      return result;
    }
  }
  waiter.SleepUntilReleased();
  return FutexResult::Woken;
}

unsigned int TWaitQueue::SizeForTest() const noexcept {
  unsigned int size = 0;
  for (const TWaiter* waiter = m_first; waiter; waiter = waiter->m_next) {
    ++size;
  }
  return size;
}

}  // namespace qilsys::synchronize
