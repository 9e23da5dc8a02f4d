// On Linux, events and semaphores are made of TWaitQueue_linux.cpp.
#include "synchronize/TWaitable_win.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include "synchronize/SynchronizeForTest.h"

namespace qilsys::synchronize {
namespace {

thread_local DWORD t_errorForTest = 0;

}  // namespace

bool MayWait() noexcept {
  if (t_errorForTest != 0) [[unlikely]] {
    SetLastError(t_errorForTest);
    return false;
  }
  return true;
}

// A poll waits for nothing. Beside a call that goes to sleep the count costs nothing that could be measured.
DWORD TWaitable::Wait(DWORD milliseconds) noexcept {
  if (milliseconds == 0) {
    return WaitForSingleObject(Get(), 0);
  }
  if (!MayWait()) [[unlikely]] {
    return WAIT_FAILED;
  }
  m_waiters.fetch_add(1, std::memory_order_relaxed);
  const DWORD result = WaitForSingleObject(Get(), milliseconds);
  m_waiters.fetch_sub(1, std::memory_order_relaxed);
  return result;
}

}  // namespace qilsys::synchronize

const bool SynchronizeForTest::OwnsQueues = false;

void SynchronizeForTest::FailWaits(int error) { qilsys::synchronize::t_errorForTest = static_cast<DWORD>(error); }
