#include "qilsys/SharedState.h"

#include <utility>

#include "qilsys/AsyncTaskHooks.h"
#include "qilsys/LogicException.h"
#include "qilsys/ThreadSanitizer.h"

namespace {

constexpr char File[] = "main/thread/SharedState";

}  // namespace

namespace AsyncTask {

SharedStateBase::SharedStateBase() : m_ready(std::make_unique<TEvent>()) {}

SharedStateBase::~SharedStateBase() = default;

void SharedStateBase::MarkAsReady() { m_ready->Signal(); }
bool SharedStateBase::IsReady() { return m_ready->IsSet(); }
void SharedStateBase::Wait() { m_ready->Wait(); }
bool SharedStateBase::WaitFor(const std::chrono::milliseconds& timeout) { return m_ready->Wait(timeout); }
IEvent& SharedStateBase::GetRawReadyEvent() { return *m_ready; }

void SharedStateBase::AddOnReadyCallback(void* key, std::function<void()> callback) {
  m_ready->AddOnSignalCallback(key, std::move(callback));
}

void SharedStateBase::RemoveOnReadyCallback(void* key) { m_ready->RemoveOnSignalCallback(key); }

void SharedStateBase::SetException(std::exception_ptr exception) {
  const TScopedLock lock(m_exceptionLock);
  if (!m_exception) m_exception = std::move(exception);
}

bool SharedStateBase::HasException() const { return m_exception != nullptr; }

void SharedStateBase::CheckForException() const {
  if (HasException()) [[unlikely]] {
    std::rethrow_exception(_ApplyExceptionHook(m_exception));
  }
}

void SharedStateBase::SetCancelEvent(RefCntPtr<TCancelEvent> event) {
  const TScopedLock lock(m_cancelLock);
  QILSYS_LOGIC_ASSERT(!m_cancel, "!m_cancel", File, 56, 0xAE2A193B, "LogicException_LogicAssert_0xAE2A193B");
  m_cancel = event;
  if (m_onCancel) RegisterOnCancel();
  if (IsCancelled()) m_cancel->Signal();
}

// An event on which the function is missing would never cancel the task.
void SharedStateBase::RegisterOnCancel() try { m_cancel->AddOnSignalCallback(this, *m_onCancel); } catch (...) {
  m_cancel.reset();
  throw;
}

void SharedStateBase::SignalCancelEventIfSet() {
  if (m_cancel) m_cancel->Signal();
}

void SharedStateBase::RemoveCancelOnSignalCallback() { m_cancel->RemoveOnSignalCallback(this); }

void SharedStateBase::SetOnCancelFunction(std::unique_ptr<std::function<void()>> onCancel) {
  m_onCancel = std::move(onCancel);
}

bool SharedStateBase::IsCancelled() const { return m_isCancelled; }
void SharedStateBase::SetWhenCanceled(WhenCanceled whenCanceled) { m_whenCanceled = whenCanceled; }
void SharedStateBase::SetIgnoreCancelBeforeStart(bool ignore) { m_ignoreCancelBeforeStart = ignore; }
bool SharedStateBase::MarkAsCancelled() { return !m_isCancelled.exchange(true); }

void SharedStateBase::SetDeferred() {
  qilsys::base::AnnounceRelease(&m_notDeferred);
  m_notDeferred.exchange(0);
}

bool SharedStateBase::IsDeferred() const { return m_notDeferred == 0; }

bool SharedStateBase::TryTakingDeferredOwnership() {
  std::uint8_t deferred = 0;
  const bool isTaken = m_notDeferred.compare_exchange_strong(deferred, 1);
  if (isTaken) qilsys::base::AnnounceAcquire(&m_notDeferred);
  return isTaken;
}

void SharedStateBase::AssertIsReady() {
  // The name spells its code without "0x", on purpose: the field knows it so.
  QILSYS_LOGIC_ASSERT(m_ready->IsSet(), "m_ready->IsSet()", File, 125, 0xFCC690FC,
                      "LogicException_LogicAssert_FCC690FC");
}

}  // namespace AsyncTask
