/// The C-level entry points of the heap. They add one thing to `malloc` and its kind: accounting into the counters of
/// the calling thread. The blocks are plain heap blocks, so `free` takes them too.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qilsys/Export.h"

namespace quillon::memory {

/// What is accounted for. One mode for the process, NoTracking at first. The counters by scope, with which a host will
/// set it and read the figures, are not built yet.
enum class MemoryTrackingMode : std::int32_t {
  NoTracking = 0,
  AllocationsOnly = 1,  ///< Frees are not tracked.
  Full = 2,
};

/// The allocation figures of one scope, owned by that scope and touched by its thread alone.
struct ThreadMemoryCounters {
  ThreadMemoryCounters* next;      ///< The record that was installed before this one.
  void* reserved;                  ///< Neither read nor written here.
  std::uint64_t allocated;         ///< Bytes.
  std::uint64_t deallocated;       ///< Bytes; a reallocation lowers `allocated` instead.
  std::int64_t inUse;              ///< Bytes, never below 0.
  std::uint64_t peakUsed;          ///< The highest `inUse`, in bytes.
  std::uint32_t allocatedCount;    ///< Calls.
  std::uint32_t deallocatedCount;  ///< Calls.
  std::uint64_t orderingId;        ///< Where this record stands in the order of its thread's records.
};

}  // namespace quillon::memory

extern "C" {

/// `malloc`, counted. Null where the heap gives null.
QILSYS_API void* TMalloc(std::size_t size);
/// `malloc(count * size)`, counted. The memory is NOT zeroed and the product is not checked for overflow.
QILSYS_API void* TCalloc(std::size_t count, std::size_t size);
/// `realloc`, counted as a deallocation of the old block, if any, and an allocation of the new one.
QILSYS_API void* TRealloc(void* block, std::size_t size);
/// `free`, counted in MemoryTrackingMode::Full. Null is allowed.
QILSYS_API void TFree(void* block);

/// The accounting steps alone, for a redirected heap that drives them itself. They never allocate.
QILSYS_API void TTrackMalloc(void* block);
QILSYS_API void TTrackPostRealloc(void* block);
QILSYS_API void TTrackPreRealloc(void* block);
QILSYS_API void TTrackFree(void* block);

}  // extern "C"

/// True once a redirected heap calls the TTrack functions itself: the entry points above then count nothing.
QILSYS_API extern bool g_redirected;
