/// How a thread waits for futures: by blocking, unless whoever runs the thread has given it something better to do.
#pragma once

#include <chrono>
#include <memory>

#include "qilsys/Export.h"

namespace AsyncTask {

class SharedStateBase;

/// Waits in the place of a thread, which keeps a pointer to one. The library stores these and calls none of the
/// operations.
class QILSYS_API IWaitHandler {
 public:
  IWaitHandler() = default;
  IWaitHandler(const IWaitHandler&) = default;
  IWaitHandler& operator=(const IWaitHandler&) = default;

  /// Returns when `state` is ready.
  virtual void Wait(SharedStateBase& state) = 0;
  /// The same, or false when the time has run out.
  virtual bool WaitFor(SharedStateBase& state, std::chrono::milliseconds timeout) = 0;

  // Last, as the order of virtual operations is part of the interface.
  virtual ~IWaitHandler();
};

/// Gives the thread a wait handler, or none, while it lives; then puts back the one from before. On one thread.
class QILSYS_API WaitHandlerScopeGuard {
 public:
  explicit WaitHandlerScopeGuard(IWaitHandler* handler);
  WaitHandlerScopeGuard(const WaitHandlerScopeGuard&) = delete;
  WaitHandlerScopeGuard& operator=(const WaitHandlerScopeGuard&) = delete;
  ~WaitHandlerScopeGuard();

 private:
  IWaitHandler* const m_previous;
};

/// The same with a handler that it owns, which goes once the one from before is back.
class QILSYS_API OwningWaitHandlerScopeGuard {
 public:
  explicit OwningWaitHandlerScopeGuard(std::unique_ptr<IWaitHandler> handler);
  OwningWaitHandlerScopeGuard(const OwningWaitHandlerScopeGuard&) = delete;
  OwningWaitHandlerScopeGuard& operator=(const OwningWaitHandlerScopeGuard&) = delete;
  ~OwningWaitHandlerScopeGuard();

 private:
  const std::unique_ptr<IWaitHandler> m_handler;
  IWaitHandler* const m_previous;
};

}  // namespace AsyncTask
