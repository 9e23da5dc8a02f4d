// The pool of the process: how it is configured, made and ended.
#include <atomic>
#include <memory>
#include <utility>

#include "qilsys/LogicException.h"
#include "qilsys/TThreadPool.h"
#include "thread/ThreadFunctions.h"

namespace {

// Reports name the place by this path.
constexpr char File[] = "main/thread/TThreadPool";

unsigned int g_numThreads = 0;
std::atomic<TThreadPool*> g_pool = nullptr;

// These are never destroyed, since threads of the pool may work on while the process's own statics are.
TRecursiveMutex& Mutex() {
  static TRecursiveMutex& s_mutex = *new TRecursiveMutex;
  return s_mutex;
}

std::function<void(TStringCore)>& Log() {
  static auto& s_log = *new std::function<void(TStringCore)>;
  return s_log;
}

TThreadPool* MakePool() {
  const qilsys::thread::ThreadFunctions& functions = qilsys::thread::ConfiguredFunctions();
  return new TThreadPool(g_numThreads, functions.onStart, functions.onEnd);
}

TStringCore LogLine() {
  return TStringCore("Started thread pool with: ") + TStringCore::number(g_numThreads) + " threads";
}

}  // namespace

qilsys::thread::ThreadFunctions& qilsys::thread::ConfiguredFunctions() {
  static ThreadFunctions& s_functions = *new ThreadFunctions;
  return s_functions;
}

void TThreadPool::Configure(unsigned int threads, std::function<void()> onThreadStart,
                            std::function<void()> onThreadEnd, std::function<void(TStringCore)> log) {
  g_numThreads = threads;
  qilsys::thread::ConfiguredFunctions() = {std::move(onThreadStart), std::move(onThreadEnd)};
  Log() = std::move(log);
}

TThreadPool& TThreadPool::Get() {
  const TScopedLock lock(Mutex());
  if (TThreadPool* const pool = g_pool) return *pool;
  QILSYS_LOGIC_ASSERT(g_numThreads > 0, "g_numThreads > 0", File, 59, 0x425D0794,
                      "LogicException_LogicAssert_0x425D0794");
  // Before the pool is there, so that a lack of memory leaves none.
  TStringCore line = Log() ? LogLine() : TStringCore();
  TThreadPool* const pool = MakePool();
  g_pool = pool;
  if (Log()) Log()(std::move(line));
  return *pool;
}

bool TThreadPool::Shutdown(std::chrono::milliseconds timeout) {
  const TScopedLock lock(Mutex());
  if (g_pool == nullptr) return true;
  const bool haveEnded = g_pool.load()->JoinAll(timeout);
  delete g_pool.exchange(nullptr);
  return haveEnded;
}

TThreadPool* TestHooks::SwapThreadPool(TThreadPool* pool) { return g_pool.exchange(pool); }

bool AsyncTask::ScheduleOnThreadPool(std::function<void()>&& work, Launch policy) {
  const bool always = policy == Launch::Pool || policy == Launch::PoolOrWaiter;
  return TThreadPool::Get().AddWork(std::move(work),
                                    always ? TThreadPoolWork::Always : TThreadPoolWork::IfThreadIsFree);
}
