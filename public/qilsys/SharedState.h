/// The part of a future's state that doesn't depend on the type of its result: whether it is ready, the exception that its
/// task ended with, and how a cancellation reaches the task.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>

#include "qilsys/Export.h"
#include "qilsys/ReferenceCount.h"
#include "qilsys/TEvent.h"
#include "qilsys/TLocks.h"

namespace AsyncTask {

/// What becomes of the future of a task that is cancelled. The values are part of the interface.
enum class WhenCanceled : std::uint32_t {
  /// It becomes ready when the task has ended, with whatever that has come to.
  AwaitTask = 0,
  /// It becomes ready at once, as cancelled; what the task comes to later is dropped.
  Abandon = 1,
};

/// The base of the states behind futures, held by `std::shared_ptr` between the thread of the task and all that wait.
///
/// Becoming ready is one-way, and comes last: what the state holds is written before `MarkAsReady` and read after it, with
/// no lock. Which is why `HasException` and `CheckForException` are for states that are ready, or for the task's own thread.
class QILSYS_API SharedStateBase {
 public:
  SharedStateBase();
  SharedStateBase(const SharedStateBase&) = delete;
  SharedStateBase& operator=(const SharedStateBase&) = delete;
  /// Takes no callback off the cancel event: see RemoveCancelOnSignalCallback.
  virtual ~SharedStateBase();

  /// Does what cancels the task. Called on any thread, from callbacks of events too, and more than once.
  virtual void Cancel() = 0;
  virtual bool IsReady();

  /// Wakes all that wait and then runs the callbacks, on this thread. A second time it runs them again.
  void MarkAsReady();
  void Wait();
  /// False when the time has run out; times are as for IEvent::Wait.
  bool WaitFor(const std::chrono::milliseconds& timeout);
  /// For WaitForAll and WaitForAny.
  IEvent& GetRawReadyEvent();
  /// As the operations of IEvent: a callback that is added after the state has become ready doesn't run, and one that
  /// runs must not add or remove callbacks of this state.
  void AddOnReadyCallback(void* key, std::function<void()> callback);
  void RemoveOnReadyCallback(void* key);

  /// Keeps the first exception; later ones are dropped.
  void SetException(std::exception_ptr exception);
  bool HasException() const;
  /// Rethrows what the exception hook makes of the exception, if there is one.
  void CheckForException() const;

  /// Installs the event that cancels the task, once: a second is a logic assertion. Registers the function of
  /// SetOnCancelFunction on it, and signals it if the task counts as cancelled already.
  void SetCancelEvent(RefCntPtr<TCancelEvent> event);
  /// Signals the event, if one was installed.
  void SignalCancelEventIfSet();
  /// Takes the function off the event again, and waits while it runs on another thread. Without an event the logic
  /// assertion "Null pointer dereferenced".
  void RemoveCancelOnSignalCallback();
  /// What SetCancelEvent is to register. Takes no lock: set it before the state is shared, as the two below.
  void SetOnCancelFunction(std::unique_ptr<std::function<void()>> onCancel);
  bool IsCancelled() const;
  void SetWhenCanceled(WhenCanceled whenCanceled);
  /// Whether a task that is cancelled before it has begun runs all the same, and learns of it when it asks.
  void SetIgnoreCancelBeforeStart(bool ignore);

  /// Marks the task as one that runs on the thread that takes it.
  void SetDeferred();
  /// Whether the task is still to be taken.
  bool IsDeferred() const;
  /// True for the one caller that is to run the deferred task.
  bool TryTakingDeferredOwnership();

 protected:
  /// A logic assertion unless the state is ready.
  void AssertIsReady();

  const RefCntPtr<TCancelEvent>& GetCancelEvent() const { return m_cancel; }
  WhenCanceled GetWhenCanceled() const { return m_whenCanceled; }
  bool IgnoresCancelBeforeStart() const { return m_ignoreCancelBeforeStart; }
  /// True for the first caller. No lock is taken, so a callback of the cancel event may call it.
  bool MarkAsCancelled();

 private:
  void RegisterOnCancel();

  TRecursiveMutex m_exceptionLock;
  std::exception_ptr m_exception;
  RefCntPtr<TCancelEvent> m_cancel;
  TRecursiveMutex m_cancelLock;
  std::atomic<bool> m_isCancelled{false};
  WhenCanceled m_whenCanceled = WhenCanceled::AwaitTask;
  bool m_ignoreCancelBeforeStart = false;
  std::unique_ptr<std::function<void()>> m_onCancel;
  // 0: deferred, and nobody has taken the task.
  std::atomic<std::uint8_t> m_notDeferred{1};
  const std::unique_ptr<IEvent> m_ready;
};

}  // namespace AsyncTask
