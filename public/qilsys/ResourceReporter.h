/// A hook by which a host publishes figures of its own whenever the resource monitor writes its.
#pragma once

#include <functional>
#include <memory>

#include "qilsys/Export.h"

/// Base of the objects that the monitor calls beside its periodic log lines and its lines of an excess, in order of
/// their registration.
///
/// An object is registered from its default constructor to its destructor, which are those of this base: the monitor can
/// call it before the derived constructor has begun and after the derived destructor has ended, and such a call ends the
/// process. So make and destroy one while the monitor is not started, or from inside a report; `qilsys::FunctionReporter`
/// below comes and goes at any time.
class QILSYS_API ResourceReporter {
 public:
  /// Registers the object; waits while the reporters are being called.
  ResourceReporter();

  /// Makes an object that is not registered; destroying it is the logic assertion below.
  ResourceReporter(const ResourceReporter& other);

  /// Does nothing.
  ResourceReporter& operator=(const ResourceReporter& other);

  /// Takes the object out; waits while the reporters are being called. One that is not registered raises a logic
  /// assertion, so this destructor can throw.
  virtual ~ResourceReporter() noexcept(false);

  /// Publishes whatever the derived class has to publish. `seconds` is the time between two periodic log lines. Runs on
  /// the monitor's worker thread; may create and destroy reporters, but destroying one shifts the order of this walk.
  virtual void Report(unsigned int seconds) = 0;
};

namespace qilsys {

/// A reporter over a function, made and destroyed on any thread at any time, from inside its own function too.
///
///     const qilsys::FunctionReporter reporter([&](unsigned int seconds) { ... });
///
/// Making and destroying one wait while the reporters are being called, so neither may be done with a lock held that a
/// reporter takes. The function is called as `ResourceReporter::Report` is, and not after the destructor has returned;
/// an empty one is never called.
class QILSYS_API FunctionReporter final {
 public:
  explicit FunctionReporter(std::function<void(unsigned int)> report);
  FunctionReporter(const FunctionReporter&) = delete;
  FunctionReporter& operator=(const FunctionReporter&) = delete;
  ~FunctionReporter();

 private:
  std::unique_ptr<ResourceReporter> m_reporter;
};

}  // namespace qilsys
