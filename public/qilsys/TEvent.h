/// Events that wake waiting threads and, in addition, call back on the thread that signals.
///
/// | Class             | Set until                        | A successful wait       | Lives by        |
/// |-------------------|----------------------------------|-------------------------|-----------------|
/// | `TEvent`          | `Reset`                          | leaves it set           | plain ownership |
/// | `TAutoResetEvent` | one waiter has taken the signal  | takes the signal        | plain ownership |
/// | `TCountdownEvent` | `Reset`, after `count` signals   | leaves it set           | plain ownership |
/// | `TCancelEvent`    | `Reset`; signals its children    | leaves it set           | reference count |
///
/// A set that is followed at once by a reset still releases every thread that was waiting, and no two signals of a
/// TAutoResetEvent melt into one while threads wait. Waiting threads are released in the order of their arrival, as a
/// rule on Windows, which doesn't promise it, and always elsewhere.
///
/// Any thread may call any operation. An event must outlive every call on it: `Signal` runs callbacks after it has
/// released the waiters, so a waiter that destroys the event must know that its signaller has returned, or each of
/// them must hold a reference of its own.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "qilsys/Export.h"
#include "qilsys/ReferenceCount.h"

class TEventBase;

/// What every event can do. All operations are `const`: a constant reference is enough to signal.
class QILSYS_API IEvent {
 public:
  IEvent() = default;
  IEvent(const IEvent&) = default;
  IEvent& operator=(const IEvent&) = default;
  virtual ~IEvent();

  /// Sets the event, which releases waiters, and then runs every callback on this thread, also when the event was set
  /// before. Holds the event's callback lock meanwhile. What a callback throws passes out of here.
  virtual void Signal() const = 0;
  /// A wait of zero length: on a TAutoResetEvent a true result has taken the signal.
  virtual bool IsSet() const = 0;
  /// Waits until the event is set: true, or false when the time has run out, on Windows up to 16 milliseconds early.
  /// 0xFFFFFFFF milliseconds or more means without limit; a negative time is a logic assertion.
  virtual bool Wait(std::chrono::milliseconds timeout) const = 0;
  /// Waits without limit. False only if the system can't wait.
  virtual bool Wait() const = 0;
  /// Unsets the event and runs no callback.
  virtual void Reset() const = 0;
  /// Registers `callback` under `key`, in place of an earlier one. Doesn't look at the state: a caller that cares
  /// tests `IsSet` afterwards. A callback must not add or remove callbacks of the event that is running it.
  virtual void AddOnSignalCallback(void* key, std::function<void()> callback) const = 0;
  /// Drops the callback of `key`, if there is one. When this returns, it runs on no other thread any more.
  virtual void RemoveOnSignalCallback(void* key) const = 0;
};

/// Stays set until `Reset`, and releases all that wait.
class QILSYS_API TEvent : public IEvent {
 public:
  explicit TEvent(bool initiallySet = false);
  TEvent(const TEvent&) = delete;
  TEvent& operator=(const TEvent&) = delete;
  ~TEvent() override;

  void Signal() const override;
  bool IsSet() const override;
  bool Wait(std::chrono::milliseconds timeout) const override;
  bool Wait() const override;
  void Reset() const override;
  void AddOnSignalCallback(void* key, std::function<void()> callback) const override;
  void RemoveOnSignalCallback(void* key) const override;

 private:
  friend struct SynchronizeForTest;

  std::unique_ptr<TEventBase> m_base;
};

/// Each signal releases one waiter, the present one or the next to come. Signals without a waiter between them are one.
class QILSYS_API TAutoResetEvent : public IEvent {
 public:
  TAutoResetEvent();
  TAutoResetEvent(const TAutoResetEvent&) = delete;
  TAutoResetEvent& operator=(const TAutoResetEvent&) = delete;
  ~TAutoResetEvent() override;

  void Signal() const override;
  bool IsSet() const override;
  bool Wait(std::chrono::milliseconds timeout) const override;
  bool Wait() const override;
  void Reset() const override;
  void AddOnSignalCallback(void* key, std::function<void()> callback) const override;
  void RemoveOnSignalCallback(void* key) const override;

 private:
  friend struct SynchronizeForTest;

  std::unique_ptr<TEventBase> m_base;
};

/// Becomes set by the signal that takes its count to exactly 0; only that signal runs the callbacks.
class QILSYS_API TCountdownEvent : public IEvent {
 public:
  /// Starts unset with `count` signals to go. With 0 it starts unset too, and a signal wraps the count.
  explicit TCountdownEvent(unsigned int count);
  TCountdownEvent(const TCountdownEvent&) = delete;
  TCountdownEvent& operator=(const TCountdownEvent&) = delete;
  ~TCountdownEvent() override;

  /// Counts down by one; below 0 the count wraps and nothing more happens.
  void Signal() const override;
  bool IsSet() const override;
  bool Wait(std::chrono::milliseconds timeout) const override;
  bool Wait() const override;
  /// Unsets the event and restores the count that it was made with.
  void Reset() const override;
  void AddOnSignalCallback(void* key, std::function<void()> callback) const override;
  void RemoveOnSignalCallback(void* key) const override;

 private:
  friend struct SynchronizeForTest;
  struct Impl;

  std::unique_ptr<Impl> m_impl;
};

/// An event that hands its signal on to child events, down a tree of any depth: neither a signal nor the end of a tree
/// takes more stack for more levels, but for levels of classes derived from this one, whose own `Signal` is called.
/// Made by `new` and held by RefCntPtr. A cycle is not supported: a signal would never end.
class QILSYS_API TCancelEvent : public RefCntObject, public IEvent {
 public:
  TCancelEvent();
  TCancelEvent(const TCancelEvent&) = delete;
  TCancelEvent& operator=(const TCancelEvent&) = delete;

  /// Sets this event and runs its callbacks, then signals each child in the order of addresses, its children
  /// before the next. Holds the lock of the set of children meanwhile, and with it those of all sets further up.
  void Signal() const override;
  bool IsSet() const override;
  bool Wait(std::chrono::milliseconds timeout) const override;
  bool Wait() const override;
  /// Unsets this event only; children stay as they are.
  void Reset() const override;
  void AddOnSignalCallback(void* key, std::function<void()> callback) const override;
  void RemoveOnSignalCallback(void* key) const override;

  /// Takes a child, and signals it at once if this event is set. A child that is there already is a logic assertion.
  void Add(RefCntPtr<TCancelEvent> child) const;
  /// Lets a child go, in the state that it has. A child that is not there is a logic assertion.
  void Remove(RefCntPtr<TCancelEvent> child) const;

 protected:
  ~TCancelEvent() override;

 private:
  friend struct SynchronizeForTest;
  class Impl;

  std::unique_ptr<Impl> m_impl;
};

/// Waits until every position of `events` has been signalled: true, or false when the time has run out. Times are as
/// for IEvent::Wait. The events stay the caller's and must outlive the call; an event that stands twice counts twice.
/// True at once without events. A TAutoResetEvent counts only by a signal that arrives during the call: one that was
/// set before loses its signal and can no longer count.
QILSYS_API bool WaitForAll(const std::vector<IEvent*>& events, std::chrono::milliseconds timeout);
/// Waits until any position has been signalled; as WaitForAll otherwise. Without events it waits out its time.
QILSYS_API bool WaitForAny(const std::vector<IEvent*>& events, std::chrono::milliseconds timeout);
/// The same, and stores the position in `index`: of the last one to fire, if more than one did before the call ended.
/// Untouched if none did.
QILSYS_API bool WaitForAny(const std::vector<IEvent*>& events, std::chrono::milliseconds timeout, unsigned int& index);
