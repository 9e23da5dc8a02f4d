#include "synchronize/TEventBase.h"

#include <string>

#include "base/SystemError_platform.h"
#include "qilsys/LogicException.h"
#include "synchronize/NoLimit.h"

namespace {

using qilsys::synchronize::NoLimit;

// Reports name the place by this path on every system.
constexpr char File[] = "main/synchronize/TEventBase_win";

std::string FailureText(const char* what) {
  return what + qilsys::base::SystemErrorText(qilsys::base::LastSystemError());
}

std::uint32_t PlatformTimeout(std::chrono::milliseconds timeout) {
  const std::int64_t limit = NoLimit;
  return timeout.count() >= limit ? NoLimit : static_cast<std::uint32_t>(timeout.count());
}

}  // namespace

TEventBase::TEventBase(Kind kind) : m_event(kind) {}

TEventBase::~TEventBase() = default;

void TEventBase::Signal() {
  if (m_event.Set()) [[likely]] {
    RunCallbacks();
    return;
  }
  ThrowLogicException(File, 51, FailureText("SetEvent() failed with error: ").c_str(),
                      QuillonError::MakeError(0xF2C0F1A4, "LogicException_LogicAssert_0xF2C0F1A4"));
}

void TEventBase::RunCallbacks() {
  const TScopedLock lock(m_mutex);
  for (const auto& [key, callback] : m_callbacks) {
    callback();
  }
}

void TEventBase::Reset() {
  if (!m_event.Reset()) [[unlikely]] {
    ThrowLogicException(File, 25, FailureText("ResetEvent() failed with error: ").c_str(),
                        QuillonError::MakeError(0x6BBE359A, "LogicException_LogicAssert_0x6BBE359A"));
  }
}

bool TEventBase::IsSet() { return m_event.Wait(0); }

bool TEventBase::Wait() { return m_event.Wait(NoLimit); }

bool TEventBase::Wait(std::chrono::milliseconds timeout) {
  QILSYS_LOGIC_ASSERT(timeout.count() >= 0, "timeout.count() >= 0", File, 64, 0x65AA68CA,
                      "LogicException_LogicAssert_0x65AA68CA");
  // A hook may have returned, and no time below zero can be waited for.
  return timeout.count() >= 0 && m_event.Wait(PlatformTimeout(timeout));
}

void TEventBase::AddOnSignalCallback(void* key, std::function<void()> callback) {
  const TScopedLock lock(m_mutex);
  m_callbacks[key] = std::move(callback);
}

void TEventBase::RemoveOnSignalCallback(void* key) {
  const TScopedLock lock(m_mutex);
  m_callbacks.erase(key);
}
