#include "qilsys/TMemory.h"

#include <algorithm>
#include <cstdlib>

#include "memory/Accounting.h"
#include "memory/TMemory_platform.h"
#include "memory/ThreadBlock.h"

bool g_redirected = false;

namespace quillon::memory {

MemoryTrackingMode g_trackingMode = MemoryTrackingMode::NoTracking;

namespace {

bool Tracks() { return g_trackingMode != MemoryTrackingMode::NoTracking; }
bool TracksFrees() { return g_trackingMode == MemoryTrackingMode::Full; }

// Never below 0: a free can be seen without its allocation when the mode was changed in between.
void LowerInUse(ThreadMemoryCounters& counters, std::size_t size) {
  counters.inUse = std::max<std::int64_t>(counters.inUse - static_cast<std::int64_t>(size), 0);
}

// Null is counted too, as a block of no bytes.
void CountAllocation(void* block, SizeOfBlock sizeOf = UsableSize) {
  ThreadMemoryCounters* counters = AsyncTask::CurrentThreadBlock().memoryCounters;
  if (!counters) return;
  const std::size_t size = sizeOf(block);
  ++counters->allocatedCount;
  counters->inUse += static_cast<std::int64_t>(size);
  counters->allocated += size;
  counters->peakUsed = std::max(counters->peakUsed, static_cast<std::uint64_t>(counters->inUse));
}

void CountReallocation(void* old) {
  ThreadMemoryCounters* counters = AsyncTask::CurrentThreadBlock().memoryCounters;
  if (!old || !counters) return;
  const std::size_t size = UsableSize(old);
  counters->allocated -= size;
  LowerInUse(*counters, size);
  ++counters->deallocatedCount;
}

void CountFree(void* block, SizeOfBlock sizeOf = UsableSize) {
  ThreadMemoryCounters* counters = AsyncTask::CurrentThreadBlock().memoryCounters;
  if (!block || !counters) return;
  const std::size_t size = sizeOf(block);
  counters->deallocated += size;
  LowerInUse(*counters, size);
  ++counters->deallocatedCount;
}

}  // namespace

void TrackMalloc(void* block, SizeOfBlock sizeOf) {
  if (Tracks()) CountAllocation(block, sizeOf);
}

void TrackFree(void* block, SizeOfBlock sizeOf) {
  if (TracksFrees()) CountFree(block, sizeOf);
}

}  // namespace quillon::memory

using namespace quillon::memory;

void* TMalloc(std::size_t size) {
  void* block = std::malloc(size);
  if (Tracks() && !g_redirected) [[unlikely]] {
    CountAllocation(block);
  }
  return block;
}

void* TCalloc(std::size_t count, std::size_t size) { return TMalloc(count * size); }

void* TRealloc(void* block, std::size_t size) {
  if (!Tracks() || g_redirected) [[likely]] {
    return std::realloc(block, size);
  }
  CountReallocation(block);
  void* moved = std::realloc(block, size);
  CountAllocation(moved);
  return moved;
}

void TFree(void* block) {
  if (TracksFrees() && !g_redirected) [[unlikely]] {
    CountFree(block);
  }
  std::free(block);
}

void TTrackMalloc(void* block) { TrackMalloc(block, UsableSize); }

void TTrackPostRealloc(void* block) { TTrackMalloc(block); }

void TTrackPreRealloc(void* block) {
  if (Tracks()) CountReallocation(block);
}

void TTrackFree(void* block) { TrackFree(block, UsableSize); }
