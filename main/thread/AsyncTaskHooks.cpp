#include "qilsys/AsyncTaskHooks.h"

#include <utility>

namespace AsyncTask {
namespace {

struct Hooks {
  std::function<std::exception_ptr(std::exception_ptr)> exception;
  std::function<std::function<void()>(std::function<void()>, bool)> execution;
  std::function<void(std::weak_ptr<SharedStateBase>)> sharedStateCreated;
};

// Never destroyed, since threads may work on while the process's own statics are.
Hooks& AllHooks() {
  static Hooks& s_hooks = *new Hooks;
  return s_hooks;
}

}  // namespace

void SetExceptionHook(std::function<std::exception_ptr(std::exception_ptr)> hook) {
  AllHooks().exception = std::move(hook);
}

std::exception_ptr _ApplyExceptionHook(std::exception_ptr exception) {
  const auto& hook = AllHooks().exception;
  return hook ? hook(std::move(exception)) : exception;
}

void SetExecutionHook(std::function<std::function<void()>(std::function<void()>, bool)> hook) {
  AllHooks().execution = std::move(hook);
}

std::function<void()> _ApplyExecutionHook(std::function<void()> work, bool flag) {
  const auto& hook = AllHooks().execution;
  return hook ? hook(std::move(work), flag) : work;
}

void SetOnSharedStateCreatedHook(std::function<void(std::weak_ptr<SharedStateBase>)> hook) {
  AllHooks().sharedStateCreated = std::move(hook);
}

void _ApplyOnSharedStateCreatedHook(std::weak_ptr<SharedStateBase> state) {
  const auto& hook = AllHooks().sharedStateCreated;
  if (hook) hook(std::move(state));
}

}  // namespace AsyncTask
