/// A counted semaphore, and the object that holds one of its units.
#pragma once

#include "qilsys/Export.h"
#include "qilsys/ReferenceCount.h"

/// Counts units from 0 to 0x7FFFFFFF. Any thread may take and give back; waiters get units in the order of their
/// arrival, as a rule on Windows, which doesn't promise it. Failures raise QuillonException with the system's error
/// number in the message.
class QILSYS_API TSemaphore : public RefCntObject {
 public:
  TSemaphore(const TSemaphore&) = delete;
  TSemaphore& operator=(const TSemaphore&) = delete;

  /// Makes a semaphore with `count` units to begin with. A count above 0x7FFFFFFF raises.
  static RefCntPtr<TSemaphore> Construct(unsigned int count);

  /// Takes a unit without waiting: false if there is none.
  virtual bool TryAcquire() = 0;
  /// Waits for a unit: false when the time has run out, or the wait failed. 0xFFFFFFFF means without limit.
  virtual bool Acquire(unsigned int timeoutMilliseconds) = 0;
  /// Waits for a unit without limit. Raises if the system can't wait.
  virtual void Acquire() = 0;
  /// Gives a unit back. Nobody checks that it was taken before; raises at the maximum, and the count stays.
  virtual void Release() = 0;

 protected:
  TSemaphore();
  ~TSemaphore() override;
};

/// Holds a unit of a semaphore from its construction until its last reference goes, or `Reset`. Not for concurrent
/// `Reset`. A null semaphore is a logic assertion.
/// A unit that the semaphore refuses to take back is reported by `Reset` and dropped in silence by the destructor.
class QILSYS_API TSemaphoreScope : public RefCntObject {
 public:
  /// Waits for a unit without limit.
  explicit TSemaphoreScope(RefCntPtr<TSemaphore> semaphore);
  /// Waits for a unit as long as given; see `IsAcquired` for the outcome.
  TSemaphoreScope(RefCntPtr<TSemaphore> semaphore, unsigned int timeoutMilliseconds);
  TSemaphoreScope(const TSemaphoreScope&) = delete;
  TSemaphoreScope& operator=(const TSemaphoreScope&) = delete;

  /// True while this scope holds a unit.
  bool IsAcquired() const;
  /// Gives the unit back, if there is one. If that raises, the scope still holds it.
  void Reset();

 private:
  ~TSemaphoreScope() override;

  RefCntPtr<TSemaphore> m_semaphore;
};
