#include "qilsys/TThreadPool.h"

#include <tbb/concurrent_queue.h>

#include <atomic>
#include <thread>
#include <utility>

#include "qilsys/LogicException.h"
#include "qilsys/TEvent.h"
#include "qilsys/TSystem.h"
#include "qilsys/ThreadSanitizer.h"
#include "thread/ThreadFunctions.h"

namespace {

using qilsys::base::AnnounceAcquire;
using qilsys::base::AnnounceRelease;
using qilsys::thread::CallIfAny;
using std::chrono::milliseconds;

constexpr char File[] = "main/thread/TThreadPool";

unsigned int CurrentThreadId() { return static_cast<unsigned int>(TSystem::ThreadID()); }

}  // namespace

// Shared between the pool and its threads, so that these may outlive it.
struct TThreadPool::ThreadPoolState {
  void Push(std::function<void()> work);
  void RunItems();
  void EndThread();

  // An empty function ends the thread that takes it.
  tbb::concurrent_bounded_queue<std::function<void()>> m_queue;
  std::atomic<std::uint64_t> m_useCount{0};
  std::atomic<std::uint64_t> m_threadCount{0};
  TEvent m_allThreadsExited;
};

void TThreadPool::ThreadPoolState::Push(std::function<void()> work) {
  AnnounceRelease(&m_queue);
  m_queue.push(std::move(work));
}

void TThreadPool::ThreadPoolState::RunItems() {
  for (;;) {
    std::function<void()> work;
    m_queue.pop(work);
    AnnounceAcquire(&m_queue);
    if (!work) return;
    work();
    --m_useCount;
  }
}

void TThreadPool::ThreadPoolState::EndThread() {
  AnnounceRelease(&m_threadCount);
  if (--m_threadCount == 0) {
    AnnounceAcquire(&m_threadCount);
    m_allThreadsExited.Signal();
  }
}

// Where the threads of a pool wait until all of them are there. The pool's counts and ids are complete for whatever runs on
// them, and if the system refuses the last of them, the others can be sent home without having done anything.
class TThreadPool::StartGate {
 public:
  // For a new thread: says who it is, and returns whether the pool has come to be.
  bool Pass() {
    m_threadId = CurrentThreadId();
    m_hasArrived.Signal();
    m_isDecided.Wait();
    return m_isOpen;
  }
  // The id of the thread that was started last.
  unsigned int NextArrival() {
    m_hasArrived.Wait();
    return m_threadId;
  }
  void Decide(bool isOpen) {
    m_isOpen = isOpen;
    m_isDecided.Signal();
  }

 private:
  TAutoResetEvent m_hasArrived;
  TEvent m_isDecided;
  unsigned int m_threadId = 0;
  bool m_isOpen = false;
};

TThreadPool::TThreadPool(unsigned int threads, std::function<void()> onThreadStart, std::function<void()> onThreadEnd)
    : m_state(std::make_shared<ThreadPoolState>()),
      m_onThreadStart(std::move(onThreadStart)),
      m_onThreadEnd(std::move(onThreadEnd)) {
  const auto gate = std::make_shared<StartGate>();
  try {
    for (unsigned int i = 0; i < threads; ++i) {
      AddThread(gate);
    }
  } catch (...) {
    gate->Decide(false);
    throw;
  }
  gate->Decide(true);
}

TThreadPool::~TThreadPool() { JoinAll(milliseconds::max()); }

void TThreadPool::AddThread(const std::shared_ptr<StartGate>& gate) {
  // Nothing may fail any more once the thread runs.
  std::set<unsigned int> ids{0};
  auto id = ids.extract(ids.begin());
  const auto body = [](const std::shared_ptr<StartGate>& start, std::shared_ptr<ThreadPoolState> state,
                       std::function<void()> onThreadStart, std::function<void()> onThreadEnd) {
    if (start->Pass()) RunOnThreadPool(std::move(state), std::move(onThreadStart), std::move(onThreadEnd));
  };
  std::thread thread(body, gate, m_state, m_onThreadStart, m_onThreadEnd);
  id.value() = gate->NextArrival();
  m_threadIds.insert(std::move(id));
  thread.detach();
  ++m_state->m_threadCount;
}

void TThreadPool::RunOnThreadPool(std::shared_ptr<ThreadPoolState> state, std::function<void()> onThreadStart,
                                  std::function<void()> onThreadEnd) {
  CallIfAny(onThreadStart);
  state->RunItems();
  CallIfAny(onThreadEnd);
  // Who waits for the threads may count on it that they hold nothing of his any more.
  onThreadStart = nullptr;
  onThreadEnd = nullptr;
  state->EndThread();
}

bool TThreadPool::AddWork(std::function<void()> work, TThreadPoolWork kind) {
  const TScopedReadLock lock(m_lock);
  if (m_closed) return false;
  QILSYS_LOGIC_ASSERT(work, "func", File, 113, 0x05F20444, "LogicException_LogicAssert_0x05F20444");
  // A hook may have returned, and an empty function would end a thread.
  if (!work) return false;
  const std::uint64_t inUse = m_state->m_useCount++;
  if (inUse >= m_state->m_threadCount && kind != TThreadPoolWork::Always) {
    --m_state->m_useCount;
    return false;
  }
  try {
    m_state->Push(std::move(work));
  } catch (...) {
    --m_state->m_useCount;
    throw;
  }
  return true;
}

bool TThreadPool::JoinAll(milliseconds timeout) {
  const TScopedLock lock(m_lock);
  if (m_closed) return false;
  m_closed = true;
  // Behind all that was taken before.
  const std::uint64_t threads = m_state->m_threadCount;
  for (std::uint64_t i = 0; i < threads; ++i) {
    m_state->Push(nullptr);
  }
  return m_state->m_allThreadsExited.Wait(timeout);
}

unsigned int TThreadPool::GetNumberOfThreads() const { return static_cast<unsigned int>(m_threadIds.size()); }

unsigned long long TThreadPool::GetThreadPoolUseCount() const { return m_state->m_useCount; }

bool TThreadPool::IsThreadPoolThread() { return m_threadIds.contains(CurrentThreadId()); }
