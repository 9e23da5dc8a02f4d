/// The core of every event: the object that wakes threads, and the functions that a signal runs.
#pragma once

#include <chrono>
#include <functional>
#include <unordered_map>

#include "qilsys/TLocks.h"
#include "synchronize/TEventBase_platform.h"

class TEventBase {
 public:
  using TPlatformEvent = qilsys::synchronize::TPlatformEvent;
  using Kind = TPlatformEvent::Kind;

  explicit TEventBase(Kind kind);
  TEventBase(const TEventBase&) = delete;
  TEventBase& operator=(const TEventBase&) = delete;
  ~TEventBase();

  /// Sets the event outside every lock and then runs all callbacks with the lock of the table held. They stay in the
  /// table. If the event can't be set, no callback runs.
  void Signal();
  void Reset();
  bool IsSet();
  bool Wait(std::chrono::milliseconds timeout);
  bool Wait();
  void AddOnSignalCallback(void* key, std::function<void()> callback);
  /// Waits for callbacks that run on another thread.
  void RemoveOnSignalCallback(void* key);

  unsigned int WaitersForTest() { return m_event.WaitersForTest(); }

 private:
  void RunCallbacks();

  TPlatformEvent m_event;
  TRecursiveMutex m_mutex;
  std::unordered_map<void*, std::function<void()>> m_callbacks;
};
