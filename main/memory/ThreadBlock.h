/// The per-thread block and the tracking mode, as the allocation entry points see them.
#pragma once

#include <cstdint>

#include "qilsys/TMemory.h"

// Initial-exec: the variable lies in the room that a thread is born with, so that reading it never allocates.
#if defined(__GNUC__)
#define QILSYS_BORN_WITH_THREAD [[gnu::tls_model("initial-exec")]]
#else
#define QILSYS_BORN_WITH_THREAD
#endif

class TCancelEvent;

namespace AsyncTask {

class IWaitHandler;

/// Everything the library keeps for one thread. Zero-initialised, trivially destructible and reachable without
/// allocation, so the entry points may use it at any moment of a thread's life. The two accounting fields stay in
/// front.
struct ThreadBlock {
  quillon::memory::ThreadMemoryCounters* memoryCounters;
  std::uint64_t orderingCounter;
  std::uint64_t depth;
  void (*threadCleanupFunc)();
  TCancelEvent* cancelEvent;
  IWaitHandler* waitHandler;
};

extern constinit thread_local ThreadBlock t_threadBlock QILSYS_BORN_WITH_THREAD;

}  // namespace AsyncTask

namespace quillon::memory {

/// Plain global by design: see SetMemoryTrackingMode.
extern MemoryTrackingMode g_trackingMode;

}  // namespace quillon::memory
