/// Where and when a task runs.
#pragma once

#include <cstdint>

namespace AsyncTask {

/// The values are part of the interface.
enum class Launch : std::uint32_t {
  /// On the pool if a thread there can be expected to be free, else at once on the thread that starts it.
  PoolOrCaller = 0,
  /// At once, on the thread that starts it.
  Caller = 1,
  /// On a thread of its own, for work that blocks for long.
  DedicatedThread = 2,
  /// On the thread that first waits for it, if any does.
  Deferred = 3,
  /// On the pool, behind all that waits there.
  Pool = 4,
  /// On the pool, or on a thread that waits for it before a thread of the pool has come to it.
  PoolOrWaiter = 5,
};

}  // namespace AsyncTask
