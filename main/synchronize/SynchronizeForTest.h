/// What tests see of the inside of locks and events: who waits, so that no test has to sleep.
#pragma once

class TAutoResetEvent;
class TCancelEvent;
class TCountdownEvent;
class TEvent;
class TReadWriteLock;
class TRecursiveMutex;
class TSemaphore;

struct SynchronizeForTest {
  /// Threads that wait for the event; a signal that follows reaches each of them.
  static unsigned int Waiters(const TEvent& event);
  static unsigned int Waiters(const TAutoResetEvent& event);
  static unsigned int Waiters(const TCountdownEvent& event);
  static unsigned int Waiters(const TCancelEvent& event);
  /// Threads that wait for a unit.
  static unsigned int Waiters(TSemaphore& semaphore);
  /// Writers that sleep until the readers have gone.
  static unsigned int WaitingWriters(TReadWriteLock& lock);
  /// True once a thread sleeps on the lock, or is about to.
  static bool IsContended(const TRecursiveMutex& mutex);
  static bool IsContended(const TReadWriteLock& lock);
};
