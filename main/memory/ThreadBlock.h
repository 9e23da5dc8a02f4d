/// The per-thread block and the tracking mode, as the allocation entry points see them.
#pragma once

#include <cstdint>

#include "qilsys/TMemory.h"

// The initial-exec model of thread-local storage: the variable lies in memory that a thread is started with. The general
// model would allocate when a thread first reads it, in the middle of an allocation.
#if defined(__GNUC__)
#define QILSYS_INITIAL_EXEC_TLS [[gnu::tls_model("initial-exec")]]
#else
#define QILSYS_INITIAL_EXEC_TLS
#endif

namespace AsyncTask {

/// Everything the library keeps for one thread. Zero-initialised, trivially destructible and reachable without
/// allocation, so the entry points may use it at any moment of a thread's life. What tasks will keep here comes behind
/// these two fields of the accounting.
struct ThreadBlock {
  /// The record of the innermost scope that counts; null at first.
  quillon::memory::ThreadMemoryCounters* memoryCounters;
  /// For the order of a thread's records (`orderingId`). The scopes that draw from it are not built yet.
  std::uint64_t orderingCounter;
};

extern constinit thread_local ThreadBlock t_threadBlock QILSYS_INITIAL_EXEC_TLS;

}  // namespace AsyncTask

namespace quillon::memory {

/// Plain by design, for the speed of every allocation: a host sets the mode at start-up, before it starts threads.
extern MemoryTrackingMode g_trackingMode;

}  // namespace quillon::memory
