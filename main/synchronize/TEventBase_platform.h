/// What each system must give for events: the object that wakes threads, without callbacks.
#pragma once

#include <cstdint>

#include "synchronize/TOpaqueStorage.h"

namespace qilsys::synchronize {

/// An unnamed event, unset at first. Operations that fail return false and leave the reason as the thread's last
/// error.
///
/// A set event is handed to the threads that are waiting at that moment, whatever becomes of the state afterwards: all
/// of them on manual reset, one on auto reset, where an event that nobody waits for stays set for one waiter to come.
/// That one has waited longest, where the system promises an order. Setting releases its waiters as its last act and
/// touches nothing of the event after that, so a waiter that knows of no other use may destroy it.
class TPlatformEvent {
 public:
  enum class Kind { ManualReset, AutoReset };

  /// Creation isn't checked: an event that could not be created fails to be set and reset, and waits are false.
  explicit TPlatformEvent(Kind kind);
  TPlatformEvent(const TPlatformEvent&) = delete;
  TPlatformEvent& operator=(const TPlatformEvent&) = delete;
  ~TPlatformEvent();

  bool Set();
  bool Reset();
  /// True if the event was or became set within the time; on auto reset this has taken the signal. 0 looks without
  /// waiting, NoLimit waits as long as it takes.
  bool Wait(std::uint32_t milliseconds);

  /// How many threads wait; see SynchronizeForTest.
  unsigned int WaitersForTest();

 private:
  TOpaqueStorage<32> m_event;
};

}  // namespace qilsys::synchronize
