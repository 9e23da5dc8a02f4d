/// Three functions by which a host has a say in every task: in its exceptions, in how it is run, and in its state. None is
/// set at first. Setting one replaces the one before; an empty function clears it. No lock guards them: set them at
/// start-up, before work runs. The functions whose names begin with an underscore are for whoever runs tasks.
#pragma once

#include <exception>
#include <functional>
#include <memory>

#include "qilsys/Export.h"

namespace AsyncTask {

class SharedStateBase;

/// Asked each time that a future rethrows the exception of its task; what it returns is thrown.
QILSYS_API void SetExceptionHook(std::function<std::exception_ptr(std::exception_ptr)> hook);
/// What the hook makes of `exception`, or `exception` itself where there is none.
QILSYS_API std::exception_ptr _ApplyExceptionHook(std::exception_ptr exception);

/// Asked for each piece of work before it is handed to a thread; what it returns is run.
QILSYS_API void SetExecutionHook(std::function<std::function<void()>(std::function<void()>, bool)> hook);
/// What the hook makes of `work`, or `work` itself where there is none.
QILSYS_API std::function<void()> _ApplyExecutionHook(std::function<void()> work, bool flag);

/// Told of each state of a future that has been made.
QILSYS_API void SetOnSharedStateCreatedHook(std::function<void(std::weak_ptr<SharedStateBase>)> hook);
QILSYS_API void _ApplyOnSharedStateCreatedHook(std::weak_ptr<SharedStateBase> state);

}  // namespace AsyncTask
