/// What events and semaphores of Windows have in common: an object of the kernel, and the threads that wait for it.
#pragma once

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <atomic>

#include "base/Win32Handle_win.h"

namespace qilsys::synchronize {

/// Makes the calling thread's waits fail where SynchronizeForTest::FailWaits says so: false, with the last error set.
bool MayWait() noexcept;

/// The kernel can't be asked who waits, so this counts: from just before the call to just after it.
class TWaitable {
 public:
  explicit TWaitable(HANDLE handle) noexcept : m_handle(handle) {}

  HANDLE Get() const noexcept { return m_handle.Get(); }
  /// What WaitForSingleObject returns.
  DWORD Wait(DWORD milliseconds) noexcept;
  unsigned int WaitersForTest() const noexcept { return m_waiters.load(std::memory_order_relaxed); }

 private:
  const Win32Handle m_handle;
  std::atomic<unsigned int> m_waiters{0};
};

}  // namespace qilsys::synchronize
