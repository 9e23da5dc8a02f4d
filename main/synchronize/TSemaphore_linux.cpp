// The Windows sibling wraps the system's own semaphores.
#include "synchronize/TSemaphore_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <cerrno>

#include "qilsys/ThreadSanitizer.h"
#include "synchronize/TWaitQueue_linux.h"

namespace qilsys::synchronize {
namespace {

using WaitResult = TPlatformSemaphore::WaitResult;

// Not the semaphore of the C library: its maximum is not ours to choose, and it lets a thread that comes along take
// the unit that a waiter was woken for.
//
// The lock guards the rest. While a thread waits the count is 0: a unit that is given back goes straight to it.
struct Semaphore {
  bool TakeUnit();

  TFutexLock m_lock;
  std::uint32_t m_count = 0;
  std::uint32_t m_maximum = 0;
  TWaitQueue m_waiters;
};

bool Semaphore::TakeUnit() {
  const bool hasUnit = m_count != 0;
  m_count -= hasUnit;
  return hasUnit;
}

WaitResult ResultOf(FutexResult result) {
  switch (result) {
    case FutexResult::Woken:
      return WaitResult::Acquired;
    case FutexResult::TimedOut:
      return WaitResult::TimedOut;
    default:
      return WaitResult::Failed;
  }
}

WaitResult WaitForUnit(Semaphore& semaphore, std::uint32_t milliseconds) {
  TWaiter waiter;
  {
    const TFutexGuard guard(semaphore.m_lock);
    if (semaphore.TakeUnit()) {
      return WaitResult::Acquired;
    }
    if (milliseconds == 0) {
      return WaitResult::TimedOut;
    }
    semaphore.m_waiters.Add(waiter);
  }
  return ResultOf(semaphore.m_waiters.Wait(waiter, semaphore.m_lock, TDeadline::After(milliseconds)));
}

}  // namespace

TPlatformSemaphore::TPlatformSemaphore() { m_semaphore.Construct<Semaphore>(); }

TPlatformSemaphore::~TPlatformSemaphore() { m_semaphore.Destroy<Semaphore>(); }

bool TPlatformSemaphore::Create(std::uint32_t initial, std::uint32_t maximum) {
  if (initial > maximum) {
    errno = EINVAL;
    return false;
  }
  Semaphore& semaphore = m_semaphore.As<Semaphore>();
  semaphore.m_count = initial;
  semaphore.m_maximum = maximum;
  return true;
}

WaitResult TPlatformSemaphore::Wait(std::uint32_t milliseconds) {
  const WaitResult result = WaitForUnit(m_semaphore.As<Semaphore>(), milliseconds);
  if (result == WaitResult::Acquired) {
    base::AnnounceAcquire(this);
  }
  return result;
}

bool TPlatformSemaphore::Release() {
  Semaphore& semaphore = m_semaphore.As<Semaphore>();
  TWaiter* waiter = nullptr;
  base::AnnounceRelease(this);
  {
    const TFutexGuard guard(semaphore.m_lock);
    waiter = semaphore.m_waiters.TakeFirst();
    if (!waiter && semaphore.m_count == semaphore.m_maximum) {
      errno = EOVERFLOW;
      return false;
    }
    semaphore.m_count += waiter ? 0 : 1;
  }
  TWaitQueue::Release(waiter);
  return true;
}

unsigned int TPlatformSemaphore::WaitersForTest() {
  Semaphore& semaphore = m_semaphore.As<Semaphore>();
  const TFutexGuard guard(semaphore.m_lock);
  return semaphore.m_waiters.SizeForTest();
}

}  // namespace qilsys::synchronize
