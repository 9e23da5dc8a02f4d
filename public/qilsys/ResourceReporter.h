/// A hook by which a host publishes figures of its own whenever the resource monitor writes its.
#pragma once

#include "qilsys/Export.h"

/// Base of the objects that the monitor calls beside its periodic log lines and its lines of an excess.
///
/// An object is registered from its default constructor to its destructor, and is called in order of registration. All
/// operations may be called from any thread; they wait while the reporters are being called.
class QILSYS_API ResourceReporter {
 public:
  /// Registers the object. Until the derived constructor has ended, the monitor must not be reporting.
  ResourceReporter();

  /// Makes an object that is not registered; destroying it is the logic assertion below.
  ResourceReporter(const ResourceReporter& other);

  /// Does nothing.
  ResourceReporter& operator=(const ResourceReporter& other);

  /// Takes the object out. One that is not registered raises a logic assertion, so this destructor can throw.
  virtual ~ResourceReporter() noexcept(false);

  /// Publishes whatever the derived class has to publish. `seconds` is the time between two periodic log lines. Runs on
  /// the monitor's worker thread; may create and destroy reporters, but destroying one shifts the order of this walk.
  virtual void Report(unsigned int seconds) = 0;
};
