/// The cancellation of a task that goes on on another thread.
#pragma once

#include <memory>

#include "qilsys/Export.h"
#include "qilsys/ReferenceCount.h"
#include "qilsys/TEvent.h"

namespace AsyncTask {

class SharedStateBase;

/// Stands on the thread that takes over a task, while it runs it: the thread has a new event of its own meanwhile, and a
/// signal of the task's event cancels the task's state.
class QILSYS_API ScopedCancelImpersonation {
 public:
  /// `event` is that of the task; with none, nothing cancels the state. With `restore` the thread's event makes way;
  /// without it a thread that has one is the logic assertion of `Cancel::Create`. If `event` is set already the state is
  /// cancelled at once. A failure leaves the thread as it was.
  ScopedCancelImpersonation(bool restore, RefCntPtr<TCancelEvent> event, const std::shared_ptr<SharedStateBase>& state);
  ScopedCancelImpersonation(const ScopedCancelImpersonation&) = delete;
  ScopedCancelImpersonation& operator=(const ScopedCancelImpersonation&) = delete;
  /// Waits while a signal is cancelling the state. With `restore` the thread then has the task's event, not the one that
  /// it had before: who wants that one keeps it. Without `restore` it has none.
  ~ScopedCancelImpersonation();

 private:
  void CancelOnSignal(const std::shared_ptr<SharedStateBase>& state);
  void StopCancelling();

  RefCntPtr<TCancelEvent> m_event;
  bool m_restore;
};

}  // namespace AsyncTask
