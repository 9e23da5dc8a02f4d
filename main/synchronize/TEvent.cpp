#include "qilsys/TEvent.h"

#include <set>
#include <utility>

#include "qilsys/LogicException.h"
#include "qilsys/TLocks.h"
#include "synchronize/SynchronizeForTest.h"
#include "synchronize/TEventBase.h"

namespace {

constexpr char File[] = "main/synchronize/TEvent";

}  // namespace

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

class TCancelEvent::Impl final : public TEvent {
 public:
  ~Impl() override = default;

  void Signal() const override;
  void Add(RefCntPtr<TCancelEvent> child) const;
  void Remove(const RefCntPtr<TCancelEvent>& child) const;

 private:
  mutable std::set<RefCntPtr<TCancelEvent>> m_childEvents;
  mutable TRecursiveMutex m_mutex;
};

void TCancelEvent::Impl::Signal() const {
  TEvent::Signal();
  const TScopedLock lock(m_mutex);
  // A child's callback may take children in and out, that child too: step by address, and keep the child meanwhile.
  for (auto it = m_childEvents.begin(); it != m_childEvents.end();) {
    const RefCntPtr<TCancelEvent> child = *it;
    child->Signal();
    it = m_childEvents.upper_bound(child);
  }
}

void TCancelEvent::Impl::Add(RefCntPtr<TCancelEvent> child) const {
  const TScopedLock lock(m_mutex);
  const bool isNew = m_childEvents.insert(child).second;
  QILSYS_LOGIC_ASSERT(isNew, "Attempted to insert duplicate event.", File, 94, 0x8DB0B7A4,
                      "LogicException_LogicAssert_0x8DB0B7A4");
  if (IsSet()) {
    child->Signal();
  }
}

void TCancelEvent::Impl::Remove(const RefCntPtr<TCancelEvent>& child) const {
  const TScopedLock lock(m_mutex);
  const auto it = m_childEvents.find(child);
  QILSYS_LOGIC_ASSERT(it != m_childEvents.end(), "it != m_childEvents.end()", File, 106, 0xE1DDA3CC,
                      "LogicException_LogicAssert_0xE1DDA3CC");
  if (it != m_childEvents.end()) {
    m_childEvents.erase(it);
  }
}

TCancelEvent::TCancelEvent() : m_impl(std::make_unique<Impl>()) {}

TCancelEvent::~TCancelEvent() = default;

void TCancelEvent::Signal() const { m_impl->Signal(); }
bool TCancelEvent::IsSet() const { return m_impl->IsSet(); }
bool TCancelEvent::Wait(std::chrono::milliseconds timeout) const { return m_impl->Wait(timeout); }
bool TCancelEvent::Wait() const { return m_impl->Wait(); }
void TCancelEvent::Reset() const { m_impl->Reset(); }
void TCancelEvent::AddOnSignalCallback(void* key, std::function<void()> callback) const {
  m_impl->AddOnSignalCallback(key, std::move(callback));
}
void TCancelEvent::RemoveOnSignalCallback(void* key) const { m_impl->RemoveOnSignalCallback(key); }
void TCancelEvent::Add(RefCntPtr<TCancelEvent> child) const { m_impl->Add(std::move(child)); }
void TCancelEvent::Remove(RefCntPtr<TCancelEvent> child) const { m_impl->Remove(child); }

unsigned int SynchronizeForTest::Waiters(const TEvent& event) { return event.m_base->WaitersForTest(); }
unsigned int SynchronizeForTest::Waiters(const TAutoResetEvent& event) { return event.m_base->WaitersForTest(); }
unsigned int SynchronizeForTest::Waiters(const TCountdownEvent& event) { return Waiters(event.m_impl->m_event); }
unsigned int SynchronizeForTest::Waiters(const TCancelEvent& event) { return Waiters(*event.m_impl); }
