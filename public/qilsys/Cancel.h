/// The cancellation of the calling thread's task: one event a thread, which code deep in a chain of calls asks for without
/// being handed anything, and the scopes that put another in its place.
///
///     for (const Row& row : rows) {
///       AsyncTask::Cancel::ThrowIfCancelled();
///       Convert(row);
///     }
///
/// Nothing interrupts a thread: a task that never asks is never cancelled. Whoever wants it to end signals its event, or
/// one above it, from any thread. All operations here are for the thread's own event and take no lock.
#pragma once

#include "qilsys/Export.h"
#include "qilsys/ReferenceCount.h"
#include "qilsys/TEvent.h"

namespace AsyncTask {

struct QILSYS_API Cancel {
  class CancelEventSetter;
  class SuppressParentCancel;

  /// Gives the thread a new event; a logic assertion if it has one.
  static void Create();
  /// Gives the thread this event, of which it keeps a reference, or none. One event in place of another is a logic
  /// assertion, with the new one installed already: clear first, or use CancelEventSetter. A thread must have none when
  /// it ends, as nothing else drops the reference.
  static void Set(RefCntPtr<TCancelEvent> event);
  /// The thread's event, or null.
  static RefCntPtr<TCancelEvent> Get();
  /// The thread's event; without one a logic assertion, and the end of the process if its hook returns.
  static TCancelEvent& GetNonNull();
  /// Throws CancelException if the thread's event is set. Without an event this is no "no", but the logic assertion
  /// "Null pointer dereferenced".
  static void ThrowIfCancelled();
};

/// Puts an event in place of the thread's, and puts that one back in the end. Scopes nest strictly, on one thread. A copy
/// leaves the thread as it is until it ends, and then puts back the same event.
class QILSYS_API Cancel::CancelEventSetter {
 public:
  explicit CancelEventSetter(RefCntPtr<TCancelEvent> event);
  CancelEventSetter(const CancelEventSetter& other);
  CancelEventSetter& operator=(const CancelEventSetter& other);
  /// Raises nothing itself, but a scope derived from it can.
  virtual ~CancelEventSetter() noexcept(false);

 protected:
  /// The event that the thread had before.
  const RefCntPtr<TCancelEvent>& GetPrevious() const { return m_previous; }

 private:
  RefCntPtr<TCancelEvent> m_previous;
};

/// Keeps a cancellation of the enclosing task from the code inside: the thread has an event of the scope's own meanwhile.
/// When the scope ends, that one becomes a child of the enclosing event, for good: work that was started inside and goes
/// on is cancelled then, if the task around it is. For threads that have an event.
class QILSYS_API Cancel::SuppressParentCancel : public Cancel::CancelEventSetter {
 public:
  SuppressParentCancel();
  SuppressParentCancel(const SuppressParentCancel& other);
  SuppressParentCancel& operator=(const SuppressParentCancel& other);
  /// Where the thread had no event before, the logic assertion "Null pointer dereferenced".
  ~SuppressParentCancel() noexcept(false) override;

  /// Forgets a cancellation of the enclosing task that has arrived so far. Events beneath its own stay as they are.
  void ClearPendingCancel();
};

}  // namespace AsyncTask
