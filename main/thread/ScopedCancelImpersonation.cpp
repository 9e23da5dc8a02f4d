#include "qilsys/ScopedCancelImpersonation.h"

#include <utility>

#include "qilsys/Cancel.h"
#include "qilsys/SharedState.h"

namespace AsyncTask {

ScopedCancelImpersonation::ScopedCancelImpersonation(bool restore, RefCntPtr<TCancelEvent> event,
                                                     const std::shared_ptr<SharedStateBase>& state)
    : m_event(std::move(event)), m_restore(restore) {
  const RefCntPtr<TCancelEvent> before = Cancel::Get();
  try {
    if (m_restore) Cancel::Set(nullptr);
    Cancel::Create();
    if (m_event) CancelOnSignal(state);
  } catch (...) {
    StopCancelling();
    Cancel::Set(nullptr);
    Cancel::Set(before);
    throw;
  }
}

ScopedCancelImpersonation::~ScopedCancelImpersonation() {
  StopCancelling();
  Cancel::Set(nullptr);
  if (m_restore) Cancel::Set(m_event);
}

// A signal between the two steps cancels twice, which a state must bear; one before them would be missed.
void ScopedCancelImpersonation::CancelOnSignal(const std::shared_ptr<SharedStateBase>& state) {
  m_event->AddOnSignalCallback(this, [state] { state->Cancel(); });
  if (m_event->IsSet()) state->Cancel();
}

void ScopedCancelImpersonation::StopCancelling() {
  if (m_event) m_event->RemoveOnSignalCallback(this);
}

}  // namespace AsyncTask
