// The Windows sibling wraps the system's own critical sections and condition variables.
#include "synchronize/TLocks_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <atomic>
#include <thread>

#include "qilsys/ThreadSanitizer.h"
#include "synchronize/TWaitQueue_linux.h"

namespace qilsys::synchronize {
namespace {

// Not a recursive mutex of the C library: one that was locked twice stays locked during a wait on a condition.
//
// `m_owner` is written by the holder only, while it holds `m_lock`. Others may read any value of it, but never their
// own thread, so relaxed suffices. `m_depth` is the holder's.
struct Section {
  bool IsMine() const { return m_owner.load(std::memory_order_relaxed) == std::this_thread::get_id(); }

  void Own(unsigned int depth) {
    base::AnnounceAcquire(this);
    m_owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    m_depth = depth;
  }

  void Disown() {
    base::AnnounceRelease(this);
    m_owner.store(std::thread::id(), std::memory_order_relaxed);
    m_lock.Unlock();
  }

  TFutexLock m_lock;
  unsigned int m_depth = 0;
  std::atomic<std::thread::id> m_owner{};
};

static_assert(std::atomic<std::thread::id>::is_always_lock_free);

struct Condition {
  TFutexLock lock;
  TWaitQueue sleepers;
};

}  // namespace

TCriticalSection::TCriticalSection() { m_section.Construct<Section>(); }

TCriticalSection::~TCriticalSection() { m_section.Destroy<Section>(); }

void TCriticalSection::Enter() noexcept {
  Section& section = m_section.As<Section>();
  if (section.IsMine()) {
    ++section.m_depth;
    return;
  }
  section.m_lock.Lock();
  section.Own(1);
}

bool TCriticalSection::TryEnter() noexcept {
  Section& section = m_section.As<Section>();
  if (section.IsMine()) {
    ++section.m_depth;
    return true;
  }
  const bool isEntered = section.m_lock.TryLock();
  if (isEntered) {
    section.Own(1);
  }
  return isEntered;
}

void TCriticalSection::Leave() noexcept {
  Section& section = m_section.As<Section>();
  if (--section.m_depth == 0) {
    section.Disown();
  }
}

bool TCriticalSection::IsContendedForTest() const noexcept {
  return m_section.As<Section>().m_lock.IsContendedForTest();
}

TConditionVariable::TConditionVariable() { m_condition.Construct<Condition>(); }

TConditionVariable::~TConditionVariable() { m_condition.Destroy<Condition>(); }

// Queued before the section is left, so whoever changes the condition inside of it finds this thread to wake.
bool TConditionVariable::Sleep(TCriticalSection& criticalSection) noexcept {
  Condition& condition = m_condition.As<Condition>();
  Section& section = criticalSection.m_section.As<Section>();
  TWaiter waiter;
  {
    const TFutexGuard guard(condition.lock);
    condition.sleepers.Add(waiter);
  }
  const unsigned int depth = section.m_depth;
  section.Disown();
  const FutexResult result = condition.sleepers.Wait(waiter, condition.lock, TDeadline::Never());
  section.m_lock.Lock();
  section.Own(depth);
  return result == FutexResult::Woken;
}

void TConditionVariable::WakeOne() noexcept {
  Condition& condition = m_condition.As<Condition>();
  TWaiter* first = nullptr;
  {
    const TFutexGuard guard(condition.lock);
    first = condition.sleepers.TakeFirst();
  }
  TWaitQueue::Release(first);
}

unsigned int TConditionVariable::SleepersForTest() noexcept {
  Condition& condition = m_condition.As<Condition>();
  const TFutexGuard guard(condition.lock);
  return condition.sleepers.SizeForTest();
}

}  // namespace qilsys::synchronize
