/// What each system must give for semaphores.
#pragma once

#include <cstdint>

#include "synchronize/TOpaqueStorage.h"

namespace qilsys::synchronize {

/// A count of units. Operations that fail leave the reason as the thread's last error.
class TPlatformSemaphore {
 public:
  enum class WaitResult { Acquired, TimedOut, Failed };

  TPlatformSemaphore();
  TPlatformSemaphore(const TPlatformSemaphore&) = delete;
  TPlatformSemaphore& operator=(const TPlatformSemaphore&) = delete;
  ~TPlatformSemaphore();

  /// Called once, before everything else. False if `initial` is more than `maximum`.
  bool Create(std::uint32_t initial, std::uint32_t maximum);
  /// 0 looks without waiting, NoLimit waits as long as it takes. `Failed` if the system can't wait.
  WaitResult Wait(std::uint32_t milliseconds);
  /// Gives one unit: to a thread that waits, if there is one, by the order of arrival where the system promises it.
  /// False at the maximum; the count stays.
  bool Release();

  /// How many threads wait; see SynchronizeForTest.
  unsigned int WaitersForTest();

 private:
  TOpaqueStorage<32> m_semaphore;
};

}  // namespace qilsys::synchronize
