/// What each system must give for locks: a critical section, and a condition to wait for inside of it.
#pragma once

#include "synchronize/TOpaqueStorage.h"

namespace qilsys::synchronize {

/// A mutex that its thread may enter again and must leave as many times. A thread that finds it taken looks 4000 times
/// before it sleeps, on machines with more than one processor.
class TCriticalSection {
 public:
  TCriticalSection();
  TCriticalSection(const TCriticalSection&) = delete;
  TCriticalSection& operator=(const TCriticalSection&) = delete;
  ~TCriticalSection();

  void Enter() noexcept;
  bool TryEnter() noexcept;
  void Leave() noexcept;

  /// True once a thread sleeps at the entry, or is about to.
  bool IsContendedForTest() const noexcept;

 private:
  friend class TConditionVariable;

  TOpaqueStorage<48> m_section;
};

/// Threads that sleep until something has changed; each tests its condition again when it wakes.
class TConditionVariable {
 public:
  TConditionVariable();
  TConditionVariable(const TConditionVariable&) = delete;
  TConditionVariable& operator=(const TConditionVariable&) = delete;
  ~TConditionVariable();

  /// Leaves the section whatever its depth, sleeps until woken, and enters it again at the same depth. A wake that
  /// comes after the section was left is not missed. May return without a wake. False if the system can't wait; the
  /// section is entered again then too.
  bool Sleep(TCriticalSection& section) noexcept;
  /// Wakes one thread, if one sleeps: the one that has slept longest, where the system promises an order.
  void WakeOne() noexcept;

  /// How many threads sleep. Exact while the caller is inside of the section that they sleep in.
  unsigned int SleepersForTest() noexcept;

 private:
  TOpaqueStorage<32> m_condition;
};

}  // namespace qilsys::synchronize
