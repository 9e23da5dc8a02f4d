/// The locks of the library, and the guards that hold them for a scope.
///
/// | Lock              | `Lock`                          | `LockRead`                          |
/// |-------------------|---------------------------------|-------------------------------------|
/// | `TRecursiveMutex` | exclusive, again on its thread  | the same as `Lock`                  |
/// | `TReadWriteLock`  | exclusive, again on its thread  | shared; passes writers that wait    |
///
/// Both have the same names, so one guard serves both. A lock that stays free of contention costs one atomic exchange
/// each way and no call of the system. Neither is fair: a thread that comes along may take a lock before one that
/// sleeps.
#pragma once

#include <memory>

#include "qilsys/Export.h"

namespace qilsys::synchronize {
class TCriticalSection;
}

/// A mutex that its owning thread may lock again and must unlock as many times, on that thread.
class QILSYS_API TRecursiveMutex {
 public:
  /// The argument is not used: how long a thread spins before it sleeps is settled inside.
  explicit TRecursiveMutex(unsigned int spinCount = 0);
  TRecursiveMutex(const TRecursiveMutex&) = delete;
  TRecursiveMutex& operator=(const TRecursiveMutex&) = delete;
  ~TRecursiveMutex();

  void Lock();
  /// The same as `Lock`: readers exclude each other too.
  void LockRead();
  /// Locks without waiting: false if another thread holds the lock.
  bool TryLock();
  void Unlock();
  /// The same as `Unlock`.
  void UnlockRead();

 private:
  friend struct SynchronizeForTest;

  std::unique_ptr<qilsys::synchronize::TCriticalSection> m_section;
};

/// Many readers or one writer. Readers pass writers that wait, so a steady stream of readers can keep a writer out for
/// ever. The writer may lock again and may take read locks within. A reader that asks for the write lock waits for
/// itself, for ever. At most 65535 locks of a kind at once; one more is a logic assertion that leaves the lock wedged.
class QILSYS_API TReadWriteLock {
 public:
  /// The argument is not used, as for TRecursiveMutex.
  explicit TReadWriteLock(unsigned int spinCount = 0);
  TReadWriteLock(const TReadWriteLock&) = delete;
  TReadWriteLock& operator=(const TReadWriteLock&) = delete;
  ~TReadWriteLock();

  /// Waits until no reader and no other writer is left. A wait that the system refuses is a logic assertion.
  void Lock();
  /// Waits only for a writer that holds the lock.
  void LockRead();
  /// Ends an exclusive lock, on the thread that took it.
  void Unlock();
  /// Ends a shared lock, on any thread.
  void UnlockRead();

 private:
  friend struct SynchronizeForTest;
  struct Impl;

  std::unique_ptr<Impl> m_impl;
};

/// Holds `lock` exclusively while it lives.
template <class TLock>
class [[nodiscard]] TScopedLock {
 public:
  explicit TScopedLock(TLock& lock) : m_lock(lock) { m_lock.Lock(); }
  TScopedLock(const TScopedLock&) = delete;
  TScopedLock& operator=(const TScopedLock&) = delete;
  ~TScopedLock() { m_lock.Unlock(); }

 private:
  TLock& m_lock;
};

/// Holds `lock` for reading while it lives.
template <class TLock>
class [[nodiscard]] TScopedReadLock {
 public:
  explicit TScopedReadLock(TLock& lock) : m_lock(lock) { m_lock.LockRead(); }
  TScopedReadLock(const TScopedReadLock&) = delete;
  TScopedReadLock& operator=(const TScopedReadLock&) = delete;
  ~TScopedReadLock() { m_lock.UnlockRead(); }

 private:
  TLock& m_lock;
};
