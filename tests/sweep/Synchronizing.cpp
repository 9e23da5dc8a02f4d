// Events, locks, semaphores and counted references.
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "qilsys/ReferenceCount.h"
#include "qilsys/TEvent.h"
#include "qilsys/TLocks.h"
#include "qilsys/TSemaphore.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

using std::chrono::milliseconds;

constexpr Leave Parts{Raises::Standard, Left::Unchanged, "its parts come from the operators"};
constexpr Leave Callbacks{Raises::Standard, Left::Unchanged,
                          "callbacks are functions and containers of the standard library"};

/// An event of each kind, one callback on the first of them.
struct Events {
  explicit Events(Shape) {
    event.AddOnSignalCallback(&called, [this] { ++called; });
    tree->Add(leaf);
  }
  std::string Observe() const {
    // Signals show which callbacks there are, and which children.
    Observed seen;
    seen.Add(called).Add(calledOther).Add(flag).Add(event.IsSet()).Add(tree->IsSet()).Add(leaf->IsSet());
    seen.Add(countdown.IsSet()).Add(index).Add(made.size());
    return seen.Bytes();
  }
  std::function<void()> LargeCallback() {
    return [this, room = std::vector<int>(10)] { calledOther += static_cast<int>(room.size()); };
  }

  TEvent event;
  TAutoResetEvent autoReset;
  TCountdownEvent countdown{2};
  RefCntPtr<TCancelEvent> tree{new TCancelEvent};
  RefCntPtr<TCancelEvent> leaf{new TCancelEvent};
  std::vector<std::unique_ptr<IEvent>> made;
  int called = 0;
  int calledOther = 0;
  bool flag = false;
  unsigned int index = 99;
};

constexpr Row<Events> MakingEvents[] = {
    {"TEvent", [](Events& e) { e.flag = TEvent(true).IsSet(); }, Parts},
    {"TAutoResetEvent", [](Events& e) { e.flag = !TAutoResetEvent().IsSet(); }, Parts},
    {"TCountdownEvent", [](Events& e) { e.flag = !TCountdownEvent(1).IsSet(); }, Parts},
    {"TCancelEvent",
     [](Events& e) {
       const RefCntPtr<TCancelEvent> made(new TCancelEvent);
       e.flag = !made->IsSet();
     },
     Parts},
};

constexpr Row<Events> UsingEvents[] = {
    {"Event_Signal", [](Events& e) { e.event.Signal(); }},
    {"Event_Reset", [](Events& e) { e.event.Signal(), e.event.Reset(); }},
    {"Event_Wait", [](Events& e) { e.flag = e.event.Wait(milliseconds(0)); }},
    {"AutoResetEvent_Signal", [](Events& e) { e.autoReset.Signal(), e.flag = e.autoReset.IsSet(); }},
    {"CountdownEvent_Signal", [](Events& e) { e.countdown.Signal(), e.countdown.Signal(); }},
    {"CancelEvent_Signal", [](Events& e) { e.tree->Signal(); }},
    {"CancelEvent_Add",
     [](Events& e) {
       const RefCntPtr<TCancelEvent> other(new TCancelEvent);
       e.tree->Add(other);
       e.tree->Signal();
       e.flag = other->IsSet();
     },
     Parts},
    {"CancelEvent_Remove", [](Events& e) { e.tree->Remove(e.leaf), e.tree->Signal(); }},
    {"AddOnSignalCallback_New",
     [](Events& e) {
       e.event.AddOnSignalCallback(&e.calledOther, e.LargeCallback());
       e.event.Signal();
     },
     Callbacks},
    {"AddOnSignalCallback_Known",
     [](Events& e) {
       e.event.AddOnSignalCallback(&e.called, e.LargeCallback());
       e.event.Signal();
     },
     Callbacks},
    {"RemoveOnSignalCallback", [](Events& e) { e.event.RemoveOnSignalCallback(&e.called), e.event.Signal(); }},
    {"WaitForAll",
     [](Events& e) {
       e.flag = WaitForAll({&e.event, &e.autoReset}, milliseconds(0));
     },
     Callbacks},
    {"WaitForAny",
     [](Events& e) {
       e.flag = WaitForAny({&e.event, &e.autoReset}, milliseconds(0));
     },
     Callbacks},
    {"WaitForAny_Index",
     [](Events& e) {
       e.flag = WaitForAny({&e.event, &e.autoReset, e.tree.get()}, milliseconds(0), e.index);
     },
     Callbacks},
};

/// Locks and a semaphore of one unit.
struct Locks {
  explicit Locks(Shape) {}
  std::string Observe() const { return Observed().Add(flag).Add(semaphore->TryAcquire()).Add(Restored()).Bytes(); }
  bool Restored() const {
    semaphore->Release();
    return true;
  }

  TRecursiveMutex mutex;
  TReadWriteLock lock;
  RefCntPtr<TSemaphore> semaphore = TSemaphore::Construct(2);
  bool flag = false;
};

constexpr Row<Locks> Locking[] = {
    {"TRecursiveMutex", [](Locks& l) { l.flag = TRecursiveMutex().TryLock(); }, Parts},
    {"TReadWriteLock", [](Locks&) { TReadWriteLock(); }, Parts},
    {"RecursiveMutex_Lock", [](Locks& l) { l.mutex.Lock(), l.mutex.Lock(), l.mutex.Unlock(), l.mutex.Unlock(); }},
    {"RecursiveMutex_TryLock", [](Locks& l) { l.flag = l.mutex.TryLock(), l.mutex.Unlock(); }},
    {"ReadWriteLock_Lock", [](Locks& l) { l.lock.Lock(), l.lock.Unlock(); }},
    {"ReadWriteLock_LockRead",
     [](Locks& l) { l.lock.LockRead(), l.lock.LockRead(), l.lock.UnlockRead(), l.lock.UnlockRead(); }},
    {"Semaphore_Construct", [](Locks& l) { l.flag = TSemaphore::Construct(1)->TryAcquire(); }, Parts},
    {"Semaphore_Acquire", [](Locks& l) { l.flag = l.semaphore->Acquire(0), l.semaphore->Release(); }},
    {"SemaphoreScope",
     [](Locks& l) {
       const RefCntPtr<TSemaphoreScope> scope(new TSemaphoreScope(l.semaphore));
       l.flag = scope->IsAcquired();
     },
     Parts},
    {"SemaphoreScope_Timed",
     [](Locks& l) {
       const RefCntPtr<TSemaphoreScope> scope(new TSemaphoreScope(l.semaphore, 0));
       scope->Reset();
       l.flag = !scope->IsAcquired();
     },
     Parts},
    {"RefCntPtr_Copies",
     [](Locks& l) {
       RefCntPtr<TSemaphore> copy = l.semaphore;
       RefCntPtr<TSemaphore> moved = std::move(copy);
       l.flag = moved->UseCount() == 2;
     }},
};

}  // namespace

void AddSynchronizing(std::vector<Operation>& operations) {
  AddRows<Events>(operations, MakingEvents);
  AddRows<Events>(operations, UsingEvents);
  AddRows<Locks>(operations, Locking);
}

}  // namespace qilsys::test::sweep
