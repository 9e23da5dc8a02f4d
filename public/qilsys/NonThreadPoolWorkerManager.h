/// Threads of their own for work that must not occupy a place in the pool, counted so that a process can wait for them.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "qilsys/Export.h"

/// Runs each task on a new thread. Tasks must not throw: an exception that leaves one ends the process. Any thread may
/// call any operation.
class QILSYS_API NonThreadPoolWorkerManager {
 public:
  /// Each thread calls `onThreadStart` before its task and `onThreadEnd` after it, unless they are empty.
  NonThreadPoolWorkerManager(std::function<void()> onThreadStart, std::function<void()> onThreadEnd);
  NonThreadPoolWorkerManager(const NonThreadPoolWorkerManager&) = delete;
  NonThreadPoolWorkerManager& operator=(const NonThreadPoolWorkerManager&) = delete;
  /// Close without limit. If that was called before, with whatever result, nothing is waited for.
  ~NonThreadPoolWorkerManager();

  /// Starts a thread that runs the task. After Close the task is dropped, without being run and without a word. Throws
  /// std::system_error where the system gives no thread.
  void RunTask(std::function<void()> task);
  /// From now on drops tasks, and waits for those that run: true, or false when the time has run out. Times are as for
  /// IEvent::Wait. Threads that go on keep what they need, so the manager may be destroyed.
  bool Close(std::chrono::milliseconds timeout);
  /// The threads whose task has not ended.
  unsigned int GetThreadCount();

  /// The manager of the process, made by the first call, and by the first after Shutdown, with the functions that
  /// TThreadPool::Configure was given.
  static NonThreadPoolWorkerManager& Get();
  /// Close on the manager of the process, which is then destroyed, also if the time has run out. True if there is none.
  static bool Shutdown(std::chrono::milliseconds timeout);

 private:
  class WorkBarrier;

  static void RunOnThread(std::shared_ptr<WorkBarrier> barrier, std::function<void()> task,
                          std::function<void()> onThreadStart, std::function<void()> onThreadEnd);

  const std::shared_ptr<WorkBarrier> m_barrier;
  std::function<void()> m_onThreadStart;
  std::function<void()> m_onThreadEnd;
};

namespace TestHooks {

/// Puts a manager in place of that of the process and returns that one; either may be null. The caller owns what it gets,
/// and the process what it gives. Takes no lock.
QILSYS_API NonThreadPoolWorkerManager* SwapNonThreadPoolManager(NonThreadPoolWorkerManager* manager);

}  // namespace TestHooks

namespace AsyncTask {

/// Hands work to the manager of the process.
QILSYS_API void RunOnDedicatedThread(std::function<void()>&& work);

}  // namespace AsyncTask
