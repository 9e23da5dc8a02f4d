// Cancel events: how a signal, and the end of an event, pass down the tree.
#include "qilsys/TEvent.h"

#include <set>
#include <typeinfo>
#include <utility>

#include "qilsys/LogicException.h"
#include "qilsys/TLocks.h"
#include "synchronize/SynchronizeForTest.h"

namespace {

constexpr char File[] = "main/synchronize/TEvent";

using ChildSet = std::set<RefCntPtr<TCancelEvent>>;

}  // namespace

class TCancelEvent::Impl final : public TEvent {
 public:
  ~Impl() override;

  void Signal() const override;
  void Add(RefCntPtr<TCancelEvent> child) const;
  void Remove(const RefCntPtr<TCancelEvent>& child) const;

 private:
  class Walk;

  // One level of a signal's way down: the event whose children are being signalled, null while no walk stands here, and
  // the child that it has come to, kept meanwhile.
  struct Step {
    const Impl* event = nullptr;
    Step* above = nullptr;
    RefCntPtr<TCancelEvent> child;
  };

  void SignalChildren() const;
  void DropFirstChild();

  mutable ChildSet m_childEvents;
  mutable TRecursiveMutex m_mutex;
  // Guarded by the mutex. A walk from above stands here, so that its depth takes no stack and no memory that may lack.
  mutable Step m_step;
  // Who takes over the children when this event goes because its parent does.
  ChildSet* m_heir = nullptr;
};

// The children's signals are what recursion would give: each event, then its children in the order of addresses, with
// the locks of all sets above held; only the levels are linked to one another instead of lying on the stack.
class TCancelEvent::Impl::Walk {
 public:
  explicit Walk(const Impl& event) : m_first{&event, nullptr, nullptr} { event.m_mutex.Lock(); }
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;
  // What a callback throws leaves all levels, the lowest first.
  ~Walk() {
    while (m_lowest) {
      Leave();
    }
  }

  void Run() {
    while (m_lowest) {
      if (NextChild()) {
        SignalChild(*m_lowest->child);
      } else {
        Leave();
      }
    }
  }

 private:
  // A callback may take children in and out, the one that is being signalled too, so this steps by address. The child
  // before goes last: with it may go closures, which may do the same.
  bool NextChild() {
    RefCntPtr<TCancelEvent>& child = m_lowest->child;
    const ChildSet& children = m_lowest->event->m_childEvents;
    const auto next = child ? children.upper_bound(child) : children.begin();
    if (next == children.end()) {
      return false;
    }
    child = *next;
    return true;
  }

  // A class derived from TCancelEvent may have a signal of its own, which is called, and takes stack.
  void SignalChild(const TCancelEvent& child) {
    if (typeid(child) != typeid(TCancelEvent)) {
      child.Signal();
      return;
    }
    const Impl& event = *child.m_impl;
    event.TEvent::Signal();
    Enter(event);
  }

  // Where this thread walks already, from a callback that has signalled an event above once more, there is no second
  // step: that level takes stack.
  void Enter(const Impl& event) {
    event.m_mutex.Lock();
    Step& step = event.m_step;
    if (step.event) {
      event.m_mutex.Unlock();
      event.SignalChildren();
      return;
    }
    step.event = &event;
    step.above = m_lowest;
    m_lowest = &step;
  }

  // The level above keeps the event alive until its next step.
  void Leave() {
    Step& step = *m_lowest;
    step.child.reset();
    m_lowest = step.above;
    std::exchange(step.event, nullptr)->m_mutex.Unlock();
  }

  Step m_first;
  Step* m_lowest = &m_first;
};

// Children that live by this event alone hand theirs to its set before they go, so that the depth of a tree takes no
// stack here either.
TCancelEvent::Impl::~Impl() {
  if (m_heir) {
    m_heir->merge(m_childEvents);
    return;
  }
  while (!m_childEvents.empty()) {
    DropFirstChild();
  }
}

// Nobody else holds a child whose count has come to 0 here, so it can be told its heir before it is destroyed.
void TCancelEvent::Impl::DropFirstChild() {
  TCancelEvent* const child = m_childEvents.begin()->get();
  if (!child) {
    m_childEvents.erase(m_childEvents.begin());
    return;
  }
  child->AddReference();
  m_childEvents.erase(m_childEvents.begin());
  if (child->RemoveReferenceInternal() == 0) {
    child->m_impl->m_heir = &m_childEvents;
    delete child;
  }
}

void TCancelEvent::Impl::Signal() const {
  TEvent::Signal();
  SignalChildren();
}

void TCancelEvent::Impl::SignalChildren() const { Walk(*this).Run(); }

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

unsigned int SynchronizeForTest::Waiters(const TCancelEvent& event) { return Waiters(*event.m_impl); }
