#include "qilsys/TEvent.h"

#include <utility>

#include "qilsys/TLocks.h"
#include "synchronize/SynchronizeForTest.h"
#include "synchronize/TEventBase.h"

IEvent::~IEvent() = default;

TEvent::TEvent(bool initiallySet) : m_base(std::make_unique<TEventBase>(TEventBase::Kind::ManualReset)) {
  if (initiallySet) {
    m_base->Signal();
  }
}

TEvent::~TEvent() = default;

void TEvent::Signal() const { m_base->Signal(); }
bool TEvent::IsSet() const { return m_base->IsSet(); }
bool TEvent::Wait(std::chrono::milliseconds timeout) const { return m_base->Wait(timeout); }
bool TEvent::Wait() const { return m_base->Wait(); }
void TEvent::Reset() const { m_base->Reset(); }
void TEvent::AddOnSignalCallback(void* key, std::function<void()> callback) const {
  m_base->AddOnSignalCallback(key, std::move(callback));
}
void TEvent::RemoveOnSignalCallback(void* key) const { m_base->RemoveOnSignalCallback(key); }

TAutoResetEvent::TAutoResetEvent() : m_base(std::make_unique<TEventBase>(TEventBase::Kind::AutoReset)) {}

TAutoResetEvent::~TAutoResetEvent() = default;

void TAutoResetEvent::Signal() const { m_base->Signal(); }
bool TAutoResetEvent::IsSet() const { return m_base->IsSet(); }
bool TAutoResetEvent::Wait(std::chrono::milliseconds timeout) const { return m_base->Wait(timeout); }
bool TAutoResetEvent::Wait() const { return m_base->Wait(); }
void TAutoResetEvent::Reset() const { m_base->Reset(); }
void TAutoResetEvent::AddOnSignalCallback(void* key, std::function<void()> callback) const {
  m_base->AddOnSignalCallback(key, std::move(callback));
}
void TAutoResetEvent::RemoveOnSignalCallback(void* key) const { m_base->RemoveOnSignalCallback(key); }

struct TCountdownEvent::Impl {
  explicit Impl(unsigned int count) : m_count(count), m_initialCount(count) {}

  TEvent m_event;
  std::uint32_t m_count;
  const std::uint32_t m_initialCount;
  TRecursiveMutex m_mutex;
};

TCountdownEvent::TCountdownEvent(unsigned int count) : m_impl(std::make_unique<Impl>(count)) {}

TCountdownEvent::~TCountdownEvent() = default;

void TCountdownEvent::Signal() const {
  const TScopedLock lock(m_impl->m_mutex);
  if (--m_impl->m_count == 0) {
    m_impl->m_event.Signal();
  }
}

void TCountdownEvent::Reset() const {
  const TScopedLock lock(m_impl->m_mutex);
  m_impl->m_count = m_impl->m_initialCount;
  m_impl->m_event.Reset();
}

bool TCountdownEvent::IsSet() const { return m_impl->m_event.IsSet(); }
bool TCountdownEvent::Wait(std::chrono::milliseconds timeout) const { return m_impl->m_event.Wait(timeout); }
bool TCountdownEvent::Wait() const { return m_impl->m_event.Wait(); }
void TCountdownEvent::AddOnSignalCallback(void* key, std::function<void()> callback) const {
  m_impl->m_event.AddOnSignalCallback(key, std::move(callback));
}
void TCountdownEvent::RemoveOnSignalCallback(void* key) const { m_impl->m_event.RemoveOnSignalCallback(key); }

unsigned int SynchronizeForTest::Waiters(const TEvent& event) { return event.m_base->WaitersForTest(); }
unsigned int SynchronizeForTest::Waiters(const TAutoResetEvent& event) { return event.m_base->WaitersForTest(); }
unsigned int SynchronizeForTest::Waiters(const TCountdownEvent& event) { return Waiters(event.m_impl->m_event); }
