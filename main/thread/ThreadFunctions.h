/// What TThreadPool::Configure says about all threads that the library makes for tasks.
#pragma once

#include <functional>

namespace qilsys::thread {

struct ThreadFunctions {
  std::function<void()> onStart;
  std::function<void()> onEnd;
};

/// Written at start-up, without a lock. Never destroyed.
ThreadFunctions& ConfiguredFunctions();

/// Calls a function, unless it is empty.
inline void CallIfAny(const std::function<void()>& function) {
  if (function) function();
}

}  // namespace qilsys::thread
