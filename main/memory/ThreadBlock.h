/// The per-thread block and the tracking mode, as the allocation entry points see them.
#pragma once

#include <cstdint>

#include "qilsys/TMemory.h"

class TCancelEvent;

namespace AsyncTask {

class IWaitHandler;

/// Everything the library keeps for one thread. Zero-initialised, trivially destructible and reachable without
/// allocation, so the entry points may use it at any moment of a thread's life.
struct ThreadBlock {
  /// The record of the innermost scope that counts; null at first.
  quillon::memory::ThreadMemoryCounters* memoryCounters;
  /// For the order of a thread's records (`orderingId`). The scopes that draw from it are not built yet.
  std::uint64_t orderingCounter;

  // What follows is for tasks, which reach it by AsyncTask::TLS.

  /// How deep tasks are nested.
  std::uint64_t depth;
  void (*threadCleanupFunction)();
  /// The block owns one reference, which `Cancel::Set` takes and gives back.
  TCancelEvent* cancelEvent;
  /// Not owned.
  IWaitHandler* waitHandler;
};

/// The calling thread's. It lies in memory that the system gives a thread to start with: what is made when a thread first
/// asks for it would be made in the middle of an allocation.
ThreadBlock& CurrentThreadBlock() noexcept;

}  // namespace AsyncTask

namespace quillon::memory {

/// Plain by design, for the speed of every allocation: a host sets the mode at start-up, before it starts threads.
extern MemoryTrackingMode g_trackingMode;

}  // namespace quillon::memory
