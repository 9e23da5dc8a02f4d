#include "qilsys/NonThreadPoolWorkerManager.h"

#include <atomic>
#include <thread>
#include <utility>

#include "qilsys/TEvent.h"
#include "qilsys/TLocks.h"
#include "thread/ThreadFunctions.h"

using qilsys::thread::CallIfAny;
using std::chrono::milliseconds;

// Shared between the manager and its threads, so that these may outlive it.
class NonThreadPoolWorkerManager::WorkBarrier {
 public:
  // Counts a thread in, unless the barrier is closed.
  bool Enter() {
    const TScopedLock lock(m_lock);
    if (m_closed) return false;
    ++m_threadCount;
    return true;
  }

  // A count that comes to 0 while the barrier is open says nothing: more may come, and Close looks at the count itself.
  void Leave() {
    const TScopedLock lock(m_lock);
    if (--m_threadCount == 0 && m_closed) m_allDone.Signal();
  }

  bool Close(milliseconds timeout) { return CloseAndCount() == 0 || m_allDone.Wait(timeout); }

  bool IsClosed() {
    const TScopedLock lock(m_lock);
    return m_closed;
  }

  unsigned int Count() {
    const TScopedLock lock(m_lock);
    return m_threadCount;
  }

 private:
  unsigned int CloseAndCount() {
    const TScopedLock lock(m_lock);
    m_closed = true;
    return m_threadCount;
  }

  unsigned int m_threadCount = 0;
  bool m_closed = false;
  TRecursiveMutex m_lock;
  TEvent m_allDone;
};

NonThreadPoolWorkerManager::NonThreadPoolWorkerManager(std::function<void()> onThreadStart,
                                                       std::function<void()> onThreadEnd)
    : m_barrier(std::make_shared<WorkBarrier>()),
      m_onThreadStart(std::move(onThreadStart)),
      m_onThreadEnd(std::move(onThreadEnd)) {}

NonThreadPoolWorkerManager::~NonThreadPoolWorkerManager() {
  if (!m_barrier->IsClosed()) m_barrier->Close(milliseconds::max());
}

void NonThreadPoolWorkerManager::RunTask(std::function<void()> task) {
  if (!m_barrier->Enter()) return;
  try {
    std::thread(&RunOnThread, m_barrier, std::move(task), m_onThreadStart, m_onThreadEnd).detach();
  } catch (...) {
    m_barrier->Leave();
    throw;
  }
}

bool NonThreadPoolWorkerManager::Close(milliseconds timeout) { return m_barrier->Close(timeout); }

unsigned int NonThreadPoolWorkerManager::GetThreadCount() { return m_barrier->Count(); }

void NonThreadPoolWorkerManager::RunOnThread(std::shared_ptr<WorkBarrier> barrier, std::function<void()> task,
                                             std::function<void()> onThreadStart, std::function<void()> onThreadEnd) {
  CallIfAny(onThreadStart);
  task();
  CallIfAny(onThreadEnd);
  // Who waits for the threads may count on it that they hold nothing of his any more.
  task = nullptr;
  onThreadStart = nullptr;
  onThreadEnd = nullptr;
  barrier->Leave();
}

namespace {

std::atomic<NonThreadPoolWorkerManager*> g_manager = nullptr;

// Never destroyed, since threads may work on while the process's own statics are.
TRecursiveMutex& Mutex() {
  static TRecursiveMutex& s_mutex = *new TRecursiveMutex;
  return s_mutex;
}

}  // namespace

NonThreadPoolWorkerManager& NonThreadPoolWorkerManager::Get() {
  const TScopedLock lock(Mutex());
  if (g_manager == nullptr) {
    const qilsys::thread::ThreadFunctions& functions = qilsys::thread::ConfiguredFunctions();
    g_manager = new NonThreadPoolWorkerManager(functions.onStart, functions.onEnd);
  }
  return *g_manager;
}

bool NonThreadPoolWorkerManager::Shutdown(milliseconds timeout) {
  const TScopedLock lock(Mutex());
  if (g_manager == nullptr) return true;
  const bool haveEnded = g_manager.load()->Close(timeout);
  delete g_manager.exchange(nullptr);
  return haveEnded;
}

NonThreadPoolWorkerManager* TestHooks::SwapNonThreadPoolManager(NonThreadPoolWorkerManager* manager) {
  return g_manager.exchange(manager);
}

void AsyncTask::RunOnDedicatedThread(std::function<void()>&& work) {
  NonThreadPoolWorkerManager::Get().RunTask(std::move(work));
}
