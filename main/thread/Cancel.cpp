#include "qilsys/Cancel.h"

#include <cstdlib>
#include <memory>
#include <utility>

#include "qilsys/AsyncTaskTls.h"
#include "qilsys/CancelException.h"
#include "qilsys/LogicException.h"

namespace {

constexpr char File[] = "main/thread/Cancel";

struct DropReference {
  void operator()(const TCancelEvent* event) const { event->RemoveReference(); }
};

[[noreturn]] void ThrowCancelled() {
  throw AsyncTask::CancelException(
      TError::ErrorInfo(QuillonError::MakeError(0x94A93C32, "QuillonException_AutoGen_0x94A93C32"), TError::Client,
                        grpc::StatusCode::UNKNOWN));
}

}  // namespace

namespace AsyncTask {

void Cancel::Create() {
  QILSYS_LOGIC_ASSERT(TLS::Get().GetCancelEvent() == nullptr, "TLS::Get().GetCancelEvent() == nullptr", File, 52,
                      0xCC8BF328, "LogicException_LogicAssert_0xCC8BF328");
  Set(new TCancelEvent);
}

void Cancel::Set(RefCntPtr<TCancelEvent> event) {
  TLS tls = TLS::Get();
  // The block's reference, which goes on every way out. The block has its new event by then: with the old one may go
  // closures, which may ask for the thread's event.
  const std::unique_ptr<const TCancelEvent, DropReference> old(tls.GetCancelEvent());
  if (event) event->AddReference();
  tls.SetCancelEvent(event.get());
  QILSYS_LOGIC_ASSERT(!old || !event, "!newCancelEvent", File, 75, 0x77EEF7F7, "LogicException_LogicAssert_0x77EEF7F7");
}

RefCntPtr<TCancelEvent> Cancel::Get() { return TLS::Get().GetCancelEvent(); }

TCancelEvent& Cancel::GetNonNull() {
  TCancelEvent* const ptr = TLS::Get().GetCancelEvent();
  QILSYS_LOGIC_ASSERT(nullptr != ptr, "nullptr != ptr", File, 91, 0x5E7B883F, "LogicException_LogicAssert_0x5E7B883F");
  if (ptr == nullptr) std::abort();
  return *ptr;
}

void Cancel::ThrowIfCancelled() {
  if (Get()->IsSet()) [[unlikely]] {
    ThrowCancelled();
  }
}

Cancel::CancelEventSetter::CancelEventSetter(RefCntPtr<TCancelEvent> event) : m_previous(Cancel::Get()) {
  Cancel::Set(nullptr);
  Cancel::Set(std::move(event));
}

Cancel::CancelEventSetter::CancelEventSetter(const CancelEventSetter&) = default;
Cancel::CancelEventSetter& Cancel::CancelEventSetter::operator=(const CancelEventSetter&) = default;

Cancel::CancelEventSetter::~CancelEventSetter() noexcept(false) {
  Cancel::Set(nullptr);
  Cancel::Set(m_previous);
}

Cancel::SuppressParentCancel::SuppressParentCancel() : CancelEventSetter(new TCancelEvent) {}

Cancel::SuppressParentCancel::SuppressParentCancel(const SuppressParentCancel&) = default;
Cancel::SuppressParentCancel& Cancel::SuppressParentCancel::operator=(const SuppressParentCancel&) = default;

Cancel::SuppressParentCancel::~SuppressParentCancel() noexcept(false) {
  const RefCntPtr<TCancelEvent> own = Cancel::Get();
  // A copy's end finds the enclosing event back in its place, which must not become a child of itself.
  if (!own || own != GetPrevious()) GetPrevious()->Add(own);
}

void Cancel::SuppressParentCancel::ClearPendingCancel() {
  if (GetPrevious()) GetPrevious()->Reset();
}

}  // namespace AsyncTask
