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
  /// True where the queues of waiting threads are the library's own: a thread that is counted has arrived, and threads
  /// are released in the order of their arrival. False where they are the system's, which shows them to nobody and
  /// promises no order: a thread that is counted may be just before its wait.
  static const bool OwnsQueues;

  /// Threads that wait for the event.
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

  /// Makes every wait of this thread that would sleep fail with the system's error number given, until called with 0.
  static void FailWaits(int error);
};
