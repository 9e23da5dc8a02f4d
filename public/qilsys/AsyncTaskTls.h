/// What the library keeps for each thread on behalf of tasks.
#pragma once

#include "qilsys/Export.h"

class TCancelEvent;

namespace AsyncTask {

class IWaitHandler;
struct ThreadBlock;

/// The calling thread's state, of the size of a pointer. Good on the thread that got it only, for as long as it runs. A new
/// thread has depth 0 and none of the rest.
class QILSYS_API TLS {
 public:
  /// Never allocates.
  static TLS Get() noexcept;

  /// How deep tasks are nested on this thread. Kept for whoever runs tasks; the library looks at it nowhere.
  unsigned long long GetDepth() const noexcept;
  void SetDepth(unsigned long long depth) noexcept;
  void IncrementDepth() noexcept;
  /// At depth 0 a logic assertion.
  void DecrementDepth();

  /// The raw pointer: no reference is added or dropped. `Cancel` does that, and is what code should use.
  TCancelEvent* GetCancelEvent() const noexcept;
  void SetCancelEvent(const TCancelEvent* event) noexcept;

  /// Not owned. WaitHandlerScopeGuard sets it for a scope.
  IWaitHandler* GetWaitHandler() const noexcept;
  void SetWaitHandler(const IWaitHandler* handler) noexcept;

  /// Kept for whoever runs tasks; the library never calls it.
  void (*GetThreadCleanupFunc() const noexcept)();
  void SetThreadCleanupFunc(void (*cleanup)()) noexcept;

 private:
  TLS() noexcept;

  ThreadBlock* m_block;
};

}  // namespace AsyncTask
