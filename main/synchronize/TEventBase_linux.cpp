// The Windows sibling wraps the system's own events.
#include "synchronize/TEventBase_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <atomic>

#include "qilsys/ThreadSanitizer.h"
#include "synchronize/TWaitQueue_linux.h"

namespace qilsys::synchronize {
namespace {

// A lone flag would lose the second of two sets before a waiter has run, and a set followed by a reset would release
// nobody; so each set takes those that it releases out of the queue.
//
// `m_isSet` is written under the lock only. Without the lock it may be found false, which answers a poll, but never
// true: a waiter that went by that could destroy the event before its setter has unlocked. The lock orders what was
// written before a set, so the accesses themselves are relaxed. A set event has an empty queue.
struct Event {
  explicit Event(TPlatformEvent::Kind kind) : m_isManual(kind == TPlatformEvent::Kind::ManualReset) {}

  bool Poll();
  bool TakeIfSet();
  TWaiter* SetAndTake();

  TFutexLock m_lock;
  std::atomic<bool> m_isSet{false};
  const bool m_isManual;
  TWaitQueue m_waiters;
};

bool Event::Poll() {
  if (!m_isSet.load(std::memory_order_relaxed)) {
    return false;
  }
  const TFutexGuard guard(m_lock);
  return TakeIfSet();
}

bool Event::TakeIfSet() {
  const bool isSet = m_isSet.load(std::memory_order_relaxed);
  if (isSet && !m_isManual) {
    m_isSet.store(false, std::memory_order_relaxed);
  }
  return isSet;
}

TWaiter* Event::SetAndTake() {
  const TFutexGuard guard(m_lock);
  TWaiter* const released = m_isManual ? m_waiters.TakeAll() : m_waiters.TakeFirst();
  if (m_isManual || !released) {
    m_isSet.store(true, std::memory_order_relaxed);
  }
  return released;
}

bool SleepOn(Event& event, const TDeadline& deadline) {
  TWaiter waiter;
  {
    const TFutexGuard guard(event.m_lock);
    if (event.TakeIfSet()) {
      return true;
    }
    event.m_waiters.Add(waiter);
  }
  return event.m_waiters.Wait(waiter, event.m_lock, deadline) == FutexResult::Woken;
}

}  // namespace

TPlatformEvent::TPlatformEvent(Kind kind) { m_event.Construct<Event>(kind); }

TPlatformEvent::~TPlatformEvent() { m_event.Destroy<Event>(); }

bool TPlatformEvent::Set() {
  base::AnnounceRelease(this);
  TWaitQueue::Release(m_event.As<Event>().SetAndTake());
  return true;
}

bool TPlatformEvent::Reset() {
  Event& event = m_event.As<Event>();
  const TFutexGuard guard(event.m_lock);
  event.m_isSet.store(false, std::memory_order_relaxed);
  return true;
}

bool TPlatformEvent::Wait(std::uint32_t milliseconds) {
  Event& event = m_event.As<Event>();
  const bool isSet = event.Poll() || (milliseconds != 0 && SleepOn(event, TDeadline::After(milliseconds)));
  if (isSet) {
    base::AnnounceAcquire(this);
  }
  return isSet;
}

unsigned int TPlatformEvent::WaitersForTest() {
  Event& event = m_event.As<Event>();
  const TFutexGuard guard(event.m_lock);
  return event.m_waiters.SizeForTest();
}

}  // namespace qilsys::synchronize
