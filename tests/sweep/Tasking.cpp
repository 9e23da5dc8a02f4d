// Tasks: cancellation, the states behind futures, and the threads that run them.
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "qilsys/AsyncTask.h"
#include "support/Eventually.h"
#include "sweep/FailingHeap.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

using namespace AsyncTask;
using std::chrono::milliseconds;

constexpr Leave Parts{Raises::Standard, Left::Unchanged, "its parts come from the operators"};
constexpr Leave Functions{Raises::Standard, Left::Unchanged, "callbacks are functions of the standard library"};
constexpr Leave Lists{Raises::Standard, Left::Unchanged, "messages are lists of the standard library"};
constexpr Leave ListsAndTexts{Raises::Either, Left::Unchanged, Lists.reason};
constexpr Leave PartsAndTexts{Raises::Either, Left::Unchanged, "its parts come from the operators, and it logs a line"};

constexpr milliseconds NoTimeLimit = milliseconds::max();

/// A callback that has no room inside a std::function.
template <class Result, class... Arguments>
std::function<Result(Arguments...)> LargeFunction() {
  return [room = std::vector<int>(10)](Arguments...) { return Result(); };
}

class State : public SharedStateBase {
 public:
  void Cancel() override {}
};

/// A thread with an event, beneath another.
struct Cancelling {
  explicit Cancelling(Shape) { around->Add(event); }
  Cancelling(const Cancelling&) = delete;
  Cancelling& operator=(const Cancelling&) = delete;
  ~Cancelling() { Cancel::Set(nullptr); }
  std::string Observe() const {
    return Observed().Add(flag).Add(Cancel::Get() == nullptr).Add(TLS::Get().GetDepth()).Add(event->UseCount()).Bytes();
  }

  RefCntPtr<TCancelEvent> around{new TCancelEvent};
  RefCntPtr<TCancelEvent> event{new TCancelEvent};
  std::shared_ptr<State> state = std::make_shared<State>();
  bool flag = false;
};

/// Runs `action` on a thread that has this event.
template <class Action>
void With(const RefCntPtr<TCancelEvent>& event, Action action) {
  const Cancel::CancelEventSetter setter(event);
  action();
}

constexpr Row<Cancelling> CancellingTasks[] = {
    {"TLS",
     [](Cancelling& c) {
       TLS tls = TLS::Get();
       tls.IncrementDepth(), tls.DecrementDepth(), tls.SetDepth(tls.GetDepth());
       tls.SetCancelEvent(tls.GetCancelEvent()), tls.SetWaitHandler(tls.GetWaitHandler());
       tls.SetThreadCleanupFunc(tls.GetThreadCleanupFunc());
       c.flag = true;
     }},
    {"Cancel_Create", [](Cancelling& c) { Cancel::Create(), c.flag = !Cancel::GetNonNull().IsSet(); }, Parts},
    {"Cancel_Set", [](Cancelling& c) { Cancel::Set(c.event), c.flag = Cancel::Get() == c.event; }},
    {"CancelEventSetter", [](Cancelling& c) { With(c.event, [&] { c.flag = Cancel::Get() == c.event; }); }},
    {"ThrowIfCancelled_Unset", [](Cancelling& c) { With(c.event, [] { Cancel::ThrowIfCancelled(); }); }},
    {"ThrowIfCancelled_Set",
     [](Cancelling& c) {
       c.event->Signal();
       With(c.event, [&] {
         try {
           Cancel::ThrowIfCancelled();
         } catch (const CancelException&) {
           c.flag = true;
         }
       });
     },
     ListsAndTexts},
    {"SuppressParentCancel",
     [](Cancelling&) {
       const RefCntPtr<TCancelEvent> enclosing(new TCancelEvent);
       With(enclosing, [&] {
         Cancel::SuppressParentCancel suppressing;
         suppressing.ClearPendingCancel();
       });
     },
     Parts},
    {"ScopedCancelImpersonation",
     [](Cancelling& c) {
       const ScopedCancelImpersonation scope(false, c.event, c.state);
       c.flag = Cancel::Get() != c.event;
     },
     Parts},
    {"ScopedCancelImpersonation_Restoring",
     [](Cancelling& c) { With(c.around, [&] { const ScopedCancelImpersonation scope(true, c.event, c.state); }); },
     Parts},
};

/// A state, with an event or still without.
struct States {
  explicit States(Shape) {
    state.SetOnCancelFunction(std::make_unique<std::function<void()>>([this] { ++cancels; }));
    state.AddOnReadyCallback(&callbacks, [this] { ++callbacks; });
  }
  std::string Observe() const {
    return Observed().Add(flag).Add(callbacks).Add(cancels).Add(state.HasException()).Add(state.IsDeferred()).Bytes();
  }

  State state;
  RefCntPtr<TCancelEvent> event{new TCancelEvent};
  std::exception_ptr failure = std::make_exception_ptr(1);
  int callbacks = 0;
  int other = 0;
  int cancels = 0;
  bool flag = false;
};

constexpr Row<States> UsingStates[] = {
    {"SharedState", [](States& s) { s.flag = !State().IsReady(); }, Parts},
    {"SharedState_MarkAsReady",
     [](States& s) { s.state.MarkAsReady(), s.state.Wait(), s.flag = s.state.WaitFor(milliseconds(0)); }},
    {"SharedState_AddOnReadyCallback",
     [](States& s) {
       s.state.AddOnReadyCallback(&s.other, LargeFunction<void>());
       s.state.RemoveOnReadyCallback(&s.other);
     },
     Functions},
    {"SharedState_SetException", [](States& s) { s.state.SetException(s.failure); }},
    {"SharedState_SetCancelEvent",
     [](States& s) {
       s.state.SetCancelEvent(s.event);
       s.state.SignalCancelEventIfSet();
       s.state.RemoveCancelOnSignalCallback();
     },
     Functions},
    {"SharedState_SetOnCancelFunction",
     [](States& s) { s.state.SetOnCancelFunction(std::make_unique<std::function<void()>>(LargeFunction<void>())); },
     Functions},
    {"SharedState_Modes",
     [](States& s) { s.state.SetWhenCanceled(WhenCanceled::Abandon), s.state.SetIgnoreCancelBeforeStart(true); }},
    {"SharedState_Deferred", [](States& s) { s.state.SetDeferred(), s.flag = s.state.TryTakingDeferredOwnership(); }},
    {"WaitHandlerScopeGuard",
     [](States&) {
       const WaitHandlerScopeGuard guard(nullptr);
       const OwningWaitHandlerScopeGuard owning(nullptr);
     }},
};

/// Exceptions of tasks, and the hooks of the host.
struct Raising {
  explicit Raising(Shape shape) : message(shape == Shape::Inline ? "short" : "a message that needs a block") {}
  Raising(const Raising&) = delete;
  Raising& operator=(const Raising&) = delete;
  ~Raising() { SetExceptionHook(nullptr), SetExecutionHook(nullptr), SetOnSharedStateCreatedHook(nullptr); }
  std::string Observe() const {
    Observed seen;
    seen.AddAll(exception.GetMessages()).Add(exception.IsOrphanQuery()).Add(flag).Add(made != nullptr);
    return seen.Bytes();
  }

  TStringCore message;
  TError::ErrorInfo info{QuillonError::MakeError(7, "A_Name_That_Needs_A_Block"), TError::Content,
                         grpc::StatusCode::ABORTED};
  CancelException exception{"another message that needs a block", info, true};
  std::unique_ptr<QuillonException> made;
  bool flag = false;
};

constexpr Row<Raising> Exceptions[] = {
    {"CancelException_FromInfo", [](Raising& r) { r.made = std::make_unique<CancelException>(r.info); }, Lists},
    {"CancelException_FromMessage",
     [](Raising& r) { r.made = std::make_unique<CancelException>(r.message, r.info, false); }, Lists},
    {"CancelException_FromMessages",
     [](Raising& r) { r.made = std::make_unique<CancelException>(std::list<TStringCore>{r.message}, r.info); }, Lists},
    {"CancelException_Clone", [](Raising& r) { r.made.reset(r.exception.Clone()); }, Parts},
    {"InvalidFutureException", [](Raising& r) { r.made = std::make_unique<InvalidFutureException>(r.info); }, Lists},
    {"SetExceptionHook",
     [](Raising& r) {
       SetExceptionHook(LargeFunction<std::exception_ptr, std::exception_ptr>());
       r.flag = _ApplyExceptionHook(nullptr) == nullptr;
     },
     Functions},
    {"SetExecutionHook",
     [](Raising& r) {
       SetExecutionHook(LargeFunction<std::function<void()>, std::function<void()>, bool>());
       r.flag = _ApplyExecutionHook(nullptr, true) == nullptr;
     },
     Functions},
    {"SetOnSharedStateCreatedHook",
     [](Raising& r) {
       SetOnSharedStateCreatedHook(LargeFunction<void, std::weak_ptr<SharedStateBase>>());
       _ApplyOnSharedStateCreatedHook({});
       r.flag = true;
     },
     Functions},
};

/// Waits at its end until threads that are over have given back what they held.
class Settled {
 public:
  Settled() {
    // What is made once is never given back.
    TThreadPool::Shutdown(milliseconds(0));
    NonThreadPoolWorkerManager::Shutdown(milliseconds(0));
    TThreadPool::Configure(0, nullptr, nullptr, nullptr);
    m_before = LiveBlocks();
  }
  Settled(const Settled&) = delete;
  Settled& operator=(const Settled&) = delete;
  ~Settled() {
    // What is never given back is found by the comparison that follows.
    Eventually([this] { return LiveBlocks() <= m_before; }, std::chrono::seconds(2));
  }

 private:
  long m_before = 0;
};

/// A process without a pool and without a manager.
struct NoThreads {
  explicit NoThreads(Shape) {}
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;
  ~NoThreads() { TThreadPool::Configure(0, nullptr, nullptr, nullptr); }
  std::string Observe() const { return Observed().Add(flag).Bytes(); }

  bool flag = false;
};

constexpr Leave MadeOnce{Raises::Standard, Left::Unchanged, "what is made once comes from the operators", Result::Same,
                         When::Sometimes};

constexpr Row<NoThreads> EndingTasks[] = {
    {"ThreadPool_Configure",
     [](NoThreads&) {
       std::function<void()> start = LargeFunction<void>();
       std::function<void()> end = LargeFunction<void>();
       std::function<void(TStringCore)> log = LargeFunction<void, TStringCore>();
       TThreadPool::Configure(1, std::move(start), std::move(end), std::move(log));
     },
     Functions},
    {"ThreadPool_ShutdownOfNone", [](NoThreads& n) { n.flag = TThreadPool::Shutdown(milliseconds(0)); }, MadeOnce},
    {"NonThreadPoolWorkerManager_ShutdownOfNone",
     [](NoThreads& n) { n.flag = NonThreadPoolWorkerManager::Shutdown(milliseconds(0)); }, MadeOnce},
};

/// A pool and a manager, and those of the process.
struct Threads {
  explicit Threads(Shape) {
    TThreadPool::Configure(1, LargeFunction<void>(), nullptr, LargeFunction<void, TStringCore>());
  }
  Threads(const Threads&) = delete;
  Threads& operator=(const Threads&) = delete;
  ~Threads() {
    TThreadPool::Shutdown(NoTimeLimit);
    NonThreadPoolWorkerManager::Shutdown(NoTimeLimit);
    TThreadPool::Configure(0, nullptr, nullptr, nullptr);
  }
  std::string Observe() const { return Observed().Add(flag).Add(calls->load()).Add(pool.GetNumberOfThreads()).Bytes(); }
  /// Counts a call, and tells of it by an event.
  std::function<void()> Work() {
    return [this, room = std::vector<int>(10)] {
      *calls += static_cast<int>(room.size());
      hasRun.Signal();
    };
  }

  Settled settled;
  std::unique_ptr<std::atomic<int>> calls = std::make_unique<std::atomic<int>>(0);
  TAutoResetEvent hasRun;
  TThreadPool pool{1, nullptr, nullptr};
  NonThreadPoolWorkerManager manager{nullptr, nullptr};
  bool flag = false;
};

constexpr Row<Threads> RunningTasks[] = {
    {"ThreadPool",
     [](Threads& t) {
       TThreadPool made(2, LargeFunction<void>(), LargeFunction<void>());
       t.flag = made.JoinAll(NoTimeLimit);
     },
     Parts},
    {"ThreadPool_AddWork",
     [](Threads& t) { t.flag = t.pool.AddWork(t.Work(), TThreadPoolWork::Always), t.hasRun.Wait(); }, Functions},
    {"ThreadPool_JoinAll", [](Threads& t) { t.flag = t.pool.JoinAll(NoTimeLimit); }},
    {"ThreadPool_Facts",
     [](Threads& t) { t.flag = t.pool.IsThreadPoolThread() || t.pool.GetThreadPoolUseCount() != 0; }},
    {"ThreadPool_Get", [](Threads& t) { t.flag = TThreadPool::Get().GetNumberOfThreads() == 1; }, PartsAndTexts},
    {"ThreadPool_Shutdown", [](Threads& t) { t.flag = TThreadPool::Shutdown(milliseconds(0)); }},
    {"SwapThreadPool",
     [](Threads& t) {
       t.flag = TestHooks::SwapThreadPool(&t.pool) == nullptr;
       TestHooks::SwapThreadPool(nullptr);
     }},
    {"ScheduleOnThreadPool",
     [](Threads& t) {
       TestHooks::SwapThreadPool(&t.pool);
       const struct SwapBack {
         ~SwapBack() { TestHooks::SwapThreadPool(nullptr); }
       } back;
       t.flag = ScheduleOnThreadPool(t.Work(), Launch::Pool), t.hasRun.Wait();
     },
     Functions},
    {"ParallelForThread", [](Threads&) { ParallelForThread(1, 0, 2, [](unsigned long long) {}); }, Parts},
    {"NonThreadPoolWorkerManager",
     [](Threads& t) {
       NonThreadPoolWorkerManager made(LargeFunction<void>(), LargeFunction<void>());
       t.flag = made.GetThreadCount() == 0;
     },
     Parts},
    {"NonThreadPoolWorkerManager_RunTask",
     [](Threads& t) { t.manager.RunTask(t.Work()), t.flag = t.manager.Close(NoTimeLimit); }, Parts},
    {"NonThreadPoolWorkerManager_Close", [](Threads& t) { t.flag = t.manager.Close(milliseconds(0)); }},
    {"NonThreadPoolWorkerManager_Get",
     [](Threads& t) { t.flag = NonThreadPoolWorkerManager::Get().GetThreadCount() == 0; }, Parts},
    {"NonThreadPoolWorkerManager_Shutdown",
     [](Threads& t) { t.flag = NonThreadPoolWorkerManager::Shutdown(milliseconds(0)); }},
    {"SwapNonThreadPoolManager",
     [](Threads& t) {
       t.flag = TestHooks::SwapNonThreadPoolManager(&t.manager) == nullptr;
       TestHooks::SwapNonThreadPoolManager(nullptr);
     }},
    {"RunOnDedicatedThread", [](Threads& t) { RunOnDedicatedThread(t.Work()), t.hasRun.Wait(); }, Parts},
};

}  // namespace

void AddTasking(std::vector<Operation>& operations) {
  AddRows<Cancelling>(operations, CancellingTasks);
  AddRows<States>(operations, UsingStates);
  AddRows<Raising>(operations, Exceptions);
  AddRows<NoThreads>(operations, EndingTasks);
  AddRows<Threads>(operations, RunningTasks);
}

}  // namespace qilsys::test::sweep
