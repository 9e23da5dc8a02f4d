// The Linux sibling makes semaphores of a queue of waiting threads.
#include "synchronize/TSemaphore_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include "synchronize/NoLimit.h"
#include "synchronize/TWaitable_win.h"

namespace qilsys::synchronize {

using WaitResult = TPlatformSemaphore::WaitResult;

TPlatformSemaphore::TPlatformSemaphore() { m_semaphore.Construct<TWaitable>(nullptr); }

TPlatformSemaphore::~TPlatformSemaphore() { m_semaphore.Destroy<TWaitable>(); }

// A count above the signed maximum arrives as a negative one, which the system refuses.
bool TPlatformSemaphore::Create(std::uint32_t initial, std::uint32_t maximum) {
  m_semaphore.Destroy<TWaitable>();
  const HANDLE handle = CreateSemaphoreW(nullptr, static_cast<LONG>(initial), static_cast<LONG>(maximum), nullptr);
  return m_semaphore.Construct<TWaitable>(handle).Get() != nullptr;
}

WaitResult TPlatformSemaphore::Wait(std::uint32_t milliseconds) {
  static_assert(NoLimit == INFINITE);
  switch (m_semaphore.As<TWaitable>().Wait(milliseconds)) {
    case WAIT_OBJECT_0:
      return WaitResult::Acquired;
    case WAIT_FAILED:
      return WaitResult::Failed;
    default:
      return WaitResult::TimedOut;
  }
}

bool TPlatformSemaphore::Release() { return ReleaseSemaphore(m_semaphore.As<TWaitable>().Get(), 1, nullptr) != FALSE; }

unsigned int TPlatformSemaphore::WaitersForTest() { return m_semaphore.As<TWaitable>().WaitersForTest(); }

}  // namespace qilsys::synchronize
