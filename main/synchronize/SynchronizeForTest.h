/// What tests see of the inside of locks and events: who waits, so that no test has to sleep. And how they make a wait
/// fail.
#pragma once

class TAutoResetEvent;
class TCancelEvent;
class TCountdownEvent;
class TEvent;
class TReadWriteLock;
class TRecursiveMutex;
class TSemaphore;

struct SynchronizeForTest {
  /// False where the system keeps the queue of waiting threads to itself and they can only be counted on their way in.
  static const bool s_countsThoseWhoArrived;

  /// Threads that wait for the event. Where `s_countsThoseWhoArrived` holds, a signal that follows reaches each of them;
  /// else one may be just before its wait.
  static unsigned int Waiters(const TEvent& event);
  static unsigned int Waiters(const TAutoResetEvent& event);
  static unsigned int Waiters(const TCountdownEvent& event);
  static unsigned int Waiters(const TCancelEvent& event);
  /// Threads that wait for a unit; as above.
  static unsigned int Waiters(TSemaphore& semaphore);
  /// Writers that sleep until the readers have gone.
  static unsigned int WaitingWriters(TReadWriteLock& lock);
  /// True once a thread sleeps on the lock, or is about to.
  static bool IsContended(const TRecursiveMutex& mutex);
  static bool IsContended(const TReadWriteLock& lock);

  /// Makes every wait of this thread that would sleep fail with the system's error number given, until called with 0.
  static void FailWaits(int error);
};
