/// The per-thread block and the tracking mode, as the allocation entry points see them.
#pragma once

#include <cstdint>

#include "qilsys/TMemory.h"

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

// Initial-exec: the block lies in the room that a thread is born with, so that reading it never allocates.
extern constinit thread_local ThreadBlock t_threadBlock [[gnu::tls_model("initial-exec")]];

}  // namespace AsyncTask

namespace quillon::memory {

/// Plain global by design: see SetMemoryTrackingMode.
extern MemoryTrackingMode g_trackingMode;

}  // namespace quillon::memory
