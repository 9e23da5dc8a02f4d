/// A fixed number of threads that take work from one queue; one such pool for the process, and local ones.
///
/// A pool does not let optional work wait behind busy threads: who offers some while every thread has work is told so,
/// and does it himself. So work spreads over the threads that there are, and no further.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>

#include "qilsys/Export.h"
#include "qilsys/Launch.h"
#include "qilsys/TLocks.h"
#include "qilsys/TStringCore.h"

/// How an item of work stands to the load of a pool. Other values than the named ones read as `IfThreadIsFree`.
enum class TThreadPoolWork : std::uint32_t {
  /// Taken only where a thread can be expected to be free. Both counts are read without a lock, so this is a good
  /// estimate and no promise; right after the pool was made its threads count as free.
  IfThreadIsFree = 0,
  /// Taken whatever the load, behind what waits already.
  Always = 1,
};

/// The threads are started by the constructor; there will never be more, also where some of them block. Items must not
/// throw: an exception that leaves one ends the process. Any thread may call any operation.
class QILSYS_API TThreadPool {
 public:
  /// Each thread calls `onThreadStart` before its first item and `onThreadEnd` after its last, unless they are empty.
  /// Throws std::system_error where the system gives no thread; those that were started have ended then, or are about
  /// to, and have called neither function.
  TThreadPool(unsigned int threads, std::function<void()> onThreadStart, std::function<void()> onThreadEnd);
  TThreadPool(const TThreadPool&) = delete;
  TThreadPool& operator=(const TThreadPool&) = delete;
  /// JoinAll without limit. If that was called before, with whatever result, nothing is waited for.
  ~TThreadPool();

  /// True if `work` will run. False if the pool is closed, or if all threads are busy and `kind` is optional: the function
  /// has been destroyed then, without being called. An empty function is a logic assertion. Waits while a JoinAll is in
  /// progress; an item must not call this on its own pool then, as each would wait for the other.
  bool AddWork(std::function<void()> work, TThreadPoolWork kind);
  /// Closes the pool and waits until all taken items have run and all threads have ended: true, or false when the time
  /// has run out, or at once if the pool was closed before. Times are as for IEvent::Wait. Threads that go on keep what
  /// they need, so the pool may be destroyed. A pool of no threads has none that could end, and waits out its time.
  bool JoinAll(std::chrono::milliseconds timeout);

  /// As many as the pool was made with, also after they have ended.
  unsigned int GetNumberOfThreads() const;
  /// Taken items that have not finished, those that run included.
  unsigned long long GetThreadPoolUseCount() const;
  /// Whether the calling thread is one of the pool.
  bool IsThreadPoolThread();

  /// Says how Get makes the pool of the process; `log` may be empty. Has no effect on one that exists. Takes no lock: it
  /// belongs to start-up.
  static void Configure(unsigned int threads, std::function<void()> onThreadStart, std::function<void()> onThreadEnd,
                        std::function<void(TStringCore)> log);
  /// The pool of the process, made by the first call, and by the first after Shutdown. A logic assertion where Configure
  /// has not been called, or with no threads.
  static TThreadPool& Get();
  /// JoinAll on the pool of the process, which is then destroyed, also if the time has run out. True if there is none.
  static bool Shutdown(std::chrono::milliseconds timeout);

 private:
  struct ThreadPoolState;
  class StartGate;

  void AddThread(const std::shared_ptr<StartGate>& gate);
  static void RunOnThreadPool(std::shared_ptr<ThreadPoolState> state, std::function<void()> onThreadStart,
                              std::function<void()> onThreadEnd);

  const std::shared_ptr<ThreadPoolState> m_state;
  std::function<void()> m_onThreadStart;
  std::function<void()> m_onThreadEnd;
  std::set<unsigned int> m_threadIds;
  TReadWriteLock m_lock;
  bool m_closed = false;
};

namespace TestHooks {

/// Puts a pool in place of that of the process and returns that one; either may be null. The caller owns what it gets, and
/// the process what it gives. Takes no lock.
QILSYS_API TThreadPool* SwapThreadPool(TThreadPool* pool);

}  // namespace TestHooks

/// Calls `body` once for each index from `begin` up to, not including, `end`, on a pool of its own with that many threads
/// and on the calling thread, which takes an index whenever all of them are busy. Each index is an item, which pays where
/// a call takes microseconds or more. Returns when all calls have ended.
///
/// One exception of those that `body` throws on the pool is rethrown, once all indices have been seen to. One thrown on the
/// calling thread leaves at once, and the indices that nobody has taken are left out. Without threads it never returns.
QILSYS_API void ParallelForThread(unsigned int threads, unsigned long long begin, unsigned long long end,
                                  const std::function<void(unsigned long long)>& body);

namespace AsyncTask {

/// Hands work to the pool of the process: whatever its load by the policies Pool and PoolOrWaiter, and if a thread is free
/// by all others. As TThreadPool::AddWork otherwise.
QILSYS_API bool ScheduleOnThreadPool(std::function<void()>&& work, Launch policy);

}  // namespace AsyncTask
