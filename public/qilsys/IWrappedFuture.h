/// A future whose type of result is hidden, for code that waits for and cancels futures of any type.
#pragma once

#include <chrono>
#include <memory>

#include "qilsys/Export.h"

namespace AsyncTask {

class SharedStateBase;

/// What every future can do, whatever its result. The library hands these on and calls none of the operations.
class QILSYS_API IWrappedFuture {
 public:
  IWrappedFuture() = default;
  IWrappedFuture(const IWrappedFuture&) = default;
  IWrappedFuture& operator=(const IWrappedFuture&) = default;

  /// Whether there is a state at all. All operations but this one and GetState are for futures that have one.
  virtual bool IsValid() const = 0;
  virtual bool IsReady() const = 0;
  virtual void Wait() const = 0;
  /// False when the time has run out.
  virtual bool WaitFor(std::chrono::milliseconds timeout) const = 0;
  /// Cancels the task, from any thread.
  virtual void Cancel() const = 0;
  virtual bool IsCancelled() const = 0;
  /// Rethrows the exception of a task that has ended with one; nothing where the future is not ready.
  virtual void CheckForException() const = 0;
  /// Null where there is none.
  virtual std::shared_ptr<SharedStateBase> GetState() const = 0;

  // Last, as the order of virtual operations is part of the interface.
  virtual ~IWrappedFuture();
};

}  // namespace AsyncTask
