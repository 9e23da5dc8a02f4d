#include "qilsys/TMemory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <thread>

#include "memory/TMemory_platform.h"
#include "memory/ThreadBlock.h"

using quillon::memory::g_trackingMode;
using quillon::memory::MemoryTrackingMode;
using quillon::memory::ThreadMemoryCounters;
using quillon::memory::UsableSize;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool UnderSanitizer = true;
#else
constexpr bool UnderSanitizer = false;
#endif

namespace {

/// Installs counters on this thread, and the mode, while it lives.
class Counted {
 public:
  explicit Counted(MemoryTrackingMode mode)
      : m_mode(g_trackingMode), m_outer(AsyncTask::CurrentThreadBlock().memoryCounters) {
    AsyncTask::CurrentThreadBlock().memoryCounters = &counters;
    g_trackingMode = mode;
  }
  ~Counted() {
    g_trackingMode = m_mode;
    AsyncTask::CurrentThreadBlock().memoryCounters = m_outer;
  }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  ThreadMemoryCounters counters{};

 private:
  MemoryTrackingMode m_mode;
  ThreadMemoryCounters* m_outer;
};

struct Figures {
  std::uint64_t allocated;
  std::uint64_t deallocated;
  std::int64_t inUse;
  std::uint64_t peakUsed;
  std::uint32_t allocatedCount;
  std::uint32_t deallocatedCount;
  bool operator==(const Figures&) const = default;
};

void PrintTo(const Figures& f, std::ostream* out) {
  *out << f.allocated << ' ' << f.deallocated << ' ' << f.inUse << ' ' << f.peakUsed << ' ' << f.allocatedCount << ' '
       << f.deallocatedCount;
}

Figures FiguresOf(const ThreadMemoryCounters& c) {
  return {c.allocated, c.deallocated, c.inUse, c.peakUsed, c.allocatedCount, c.deallocatedCount};
}

TEST(TMemory, CountsAllocations) {
  for (const auto mode : {MemoryTrackingMode::AllocationsOnly, MemoryTrackingMode::Full}) {
    Figures seen{};
    void* block = nullptr;
    {
      const Counted counted(mode);
      block = TMalloc(100);
      seen = FiguresOf(counted.counters);
    }
    const auto size = UsableSize(block);
    EXPECT_GE(size, 100U);
    EXPECT_EQ(seen, (Figures{size, 0, static_cast<std::int64_t>(size), size, 1, 0}));
    TFree(block);
  }
}

TEST(TMemory, CountsFreesInFullModeOnly) {
  void* block = TMalloc(100);
  const auto size = UsableSize(block);
  Figures allocationsOnly{};
  {
    const Counted counted(MemoryTrackingMode::AllocationsOnly);
    TTrackMalloc(block);
    TFree(block);
    allocationsOnly = FiguresOf(counted.counters);
  }
  EXPECT_EQ(allocationsOnly, (Figures{size, 0, static_cast<std::int64_t>(size), size, 1, 0}));
  block = TMalloc(100);
  Figures full{};
  {
    const Counted counted(MemoryTrackingMode::Full);
    TTrackMalloc(block);
    TFree(block);
    full = FiguresOf(counted.counters);
  }
  EXPECT_EQ(full, (Figures{size, size, 0, size, 1, 1}));
}

TEST(TMemory, AReallocationLowersTheAllocatedBytes) {
  void* block = TMalloc(100);
  const auto before = UsableSize(block);
  Figures seen{};
  {
    const Counted counted(MemoryTrackingMode::AllocationsOnly);
    TTrackMalloc(block);
    block = TRealloc(block, 10000);
    seen = FiguresOf(counted.counters);
  }
  const auto after = UsableSize(block);
  EXPECT_GT(after, before);
  EXPECT_EQ(seen, (Figures{after, 0, static_cast<std::int64_t>(after), after, 2, 1}));
  TFree(block);
}

TEST(TMemory, ReallocOfNullCountsOneAllocation) {
  Figures seen{};
  void* block = nullptr;
  {
    const Counted counted(MemoryTrackingMode::Full);
    block = TRealloc(nullptr, 50);
    seen = FiguresOf(counted.counters);
  }
  EXPECT_EQ(seen.allocatedCount, 1U);
  EXPECT_EQ(seen.deallocatedCount, 0U);
  TFree(block);
}

TEST(TMemory, FreeOfNullCountsNothing) {
  Figures seen{};
  {
    const Counted counted(MemoryTrackingMode::Full);
    TFree(nullptr);
    TTrackFree(nullptr);
    TTrackPreRealloc(nullptr);
    seen = FiguresOf(counted.counters);
  }
  EXPECT_EQ(seen, Figures{});
}

TEST(TMemory, BytesInUseNeverFallBelowZero) {
  void* block = TMalloc(100);
  const auto size = UsableSize(block);
  Figures seen{};
  {
    const Counted counted(MemoryTrackingMode::Full);
    TFree(block);
    seen = FiguresOf(counted.counters);
  }
  EXPECT_EQ(seen, (Figures{0, size, 0, 0, 0, 1}));
}

TEST(TMemory, ThePeakStays) {
  void* first = TMalloc(1000);
  void* second = TMalloc(1000);
  const auto size = UsableSize(first);
  Figures seen{};
  {
    const Counted counted(MemoryTrackingMode::Full);
    TTrackMalloc(first);
    TTrackFree(first);
    TTrackPostRealloc(second);
    seen = FiguresOf(counted.counters);
  }
  EXPECT_EQ(seen, (Figures{2 * size, size, static_cast<std::int64_t>(size), size, 2, 1}));
  TFree(first);
  TFree(second);
}

TEST(TMemory, ANullResultIsCountedAsNoBytes) {
  Figures seen{};
  {
    const Counted counted(MemoryTrackingMode::Full);
    TTrackMalloc(nullptr);
    seen = FiguresOf(counted.counters);
  }
  EXPECT_EQ(seen, (Figures{0, 0, 0, 0, 1, 0}));
}

TEST(TMemory, CountsNothingOnceRedirected) {
  Figures seen{};
  Figures tracked{};
  {
    const Counted counted(MemoryTrackingMode::Full);
    g_redirected = true;
    TFree(TRealloc(TMalloc(10), 1000));
    seen = FiguresOf(counted.counters);
    void* block = TMalloc(10);
    TTrackMalloc(block);
    tracked = FiguresOf(counted.counters);
    TFree(block);
    g_redirected = false;
  }
  EXPECT_EQ(seen, Figures{});
  EXPECT_EQ(tracked.allocatedCount, 1U) << "the redirected heap drives the steps itself";
}

TEST(TMemory, CountsNothingWithoutModeOrCounters) {
  Figures seen{};
  {
    const Counted counted(MemoryTrackingMode::NoTracking);
    TFree(TRealloc(TMalloc(10), 1000));
    seen = FiguresOf(counted.counters);
    g_trackingMode = MemoryTrackingMode::Full;
    std::thread([] { TFree(TRealloc(TMalloc(10), 1000)); }).join();
    seen.deallocatedCount += counted.counters.deallocatedCount > 1 ? 1 : 0;
  }
  EXPECT_EQ(seen, Figures{});
}

TEST(TMemory, CallocDoesNotClear) {
  if (UnderSanitizer) GTEST_SKIP() << "the sanitizer fills fresh memory";
  // Freed and asked for again, the block comes back as it was left.
  constexpr std::size_t Size = 200;
  bool dirty = false;
  for (int i = 0; i < 10 && !dirty; ++i) {
    void* block = TMalloc(Size);
    std::memset(block, 0x5A, Size);
    TFree(block);
    auto* again = static_cast<unsigned char*>(TCalloc(20, 10));
    for (std::size_t k = 32; k < Size; ++k) dirty = dirty || again[k] != 0;
    TFree(again);
  }
  EXPECT_TRUE(dirty);
}

TEST(TMemory, CallocMultipliesWithoutACheck) {
  const std::size_t half = std::size_t{1} << 63;
  void* block = TCalloc(half, 2);
  EXPECT_NE(block, nullptr) << "the product wraps to 0 bytes";
  TFree(block);
}

TEST(TMemory, NullWhereTheHeapGivesNone) {
  if (UnderSanitizer) GTEST_SKIP() << "the sanitizer ends the process";
  volatile std::size_t huge = ~std::size_t{0} / 2;
  EXPECT_EQ(TMalloc(huge), nullptr);
  EXPECT_EQ(TCalloc(huge, 1), nullptr);
  EXPECT_EQ(TRealloc(nullptr, huge), nullptr);
  EXPECT_THROW(static_cast<void>(::operator new(huge)), std::bad_alloc);
  EXPECT_EQ(::operator new(huge, std::nothrow), nullptr);
}

// ---- The operators

template <class Make, class Destroy>
void ExpectOnePair(Make make, Destroy destroy) {
  Figures seen{};
  {
    const Counted counted(MemoryTrackingMode::Full);
    destroy(make());
    seen = FiguresOf(counted.counters);
  }
  EXPECT_EQ(seen.allocatedCount, 1U);
  EXPECT_EQ(seen.deallocatedCount, 1U);
  EXPECT_GT(seen.allocated, 0U);
  EXPECT_EQ(seen.deallocated, seen.allocated);
}

TEST(OperatorNew, IsCountedInAllItsForms) {
  if (UnderSanitizer) GTEST_SKIP() << "the sanitizer's operators may win";
  constexpr auto Aligned = std::align_val_t{64};
  ExpectOnePair([] { return ::operator new(10); }, [](void* p) { ::operator delete(p); });
  ExpectOnePair([] { return ::operator new(10); }, [](void* p) { ::operator delete (p, std::size_t{10}); });
  ExpectOnePair([] { return ::operator new[](10); }, [](void* p) { ::operator delete[](p); });
  ExpectOnePair([] { return ::operator new[](10); }, [](void* p) { ::operator delete[](p, std::size_t{10}); });
  ExpectOnePair([] { return ::operator new(10, std::nothrow); }, [](void* p) { ::operator delete(p, std::nothrow); });
  ExpectOnePair([] { return ::operator new[](10, std::nothrow); },
                [](void* p) { ::operator delete[](p, std::nothrow); });
  ExpectOnePair([] { return ::operator new(10, Aligned); }, [](void* p) { ::operator delete(p, Aligned); });
  ExpectOnePair([] { return ::operator new[](10, Aligned); },
                [](void* p) { ::operator delete[](p, std::size_t{10}, Aligned); });
  ExpectOnePair([] { return ::operator new(10, Aligned, std::nothrow); },
                [](void* p) { ::operator delete(p, Aligned, std::nothrow); });
}

TEST(OperatorNew, AlignsAndGivesRoomForNothing) {
  for (std::size_t alignment = 8; alignment <= 4096; alignment *= 2) {
    void* block = ::operator new (10, std::align_val_t{alignment});
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignment, 0U);
    ::operator delete (block, std::align_val_t{alignment});
  }
  void* nothing = ::operator new(0);
  EXPECT_NE(nothing, nullptr);
  ::operator delete(nothing);
}

// ---- Aligned blocks

TEST(AlignedBlocks, TellTheirSizeAndKeepIt) {
  using namespace quillon::memory;
  for (std::size_t alignment = 1; alignment <= 65536; alignment *= 2) {
    for (const std::size_t size : {0U, 1U, 100U, 5000U}) {
      void* block = AllocateAligned(size, alignment);
      ASSERT_NE(block, nullptr);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignment, 0U);
      ASSERT_GE(UsableSizeAligned(block), size);
      // A sanitizer counts a byte for a block of none, and then minds that it is written.
      if (size != 0) std::memset(block, 0x5A, UsableSizeAligned(block));
      FreeAligned(block);
    }
  }
  FreeAligned(nullptr);
  EXPECT_EQ(UsableSizeAligned(nullptr), 0U);
}

TEST(AlignedBlocks, NullWhereTheHeapGivesNone) {
  if (UnderSanitizer) GTEST_SKIP() << "the sanitizer ends the process";
  for (const std::size_t size : {~std::size_t{0}, ~std::size_t{0} - 64, ~std::size_t{0} / 2}) {
    EXPECT_EQ(quillon::memory::AllocateAligned(size, 64), nullptr) << size;
  }
}

// ---- The thread's block

TEST(ThreadBlock, StartsZeroedOnEachThread) {
  AsyncTask::CurrentThreadBlock().orderingCounter += 1;
  bool zeroed = false;
  std::thread([&zeroed] {
    const AsyncTask::ThreadBlock& block = AsyncTask::CurrentThreadBlock();
    zeroed = !block.memoryCounters && block.orderingCounter == 0;
  }).join();
  EXPECT_TRUE(zeroed);
  AsyncTask::CurrentThreadBlock().orderingCounter -= 1;
}

}  // namespace
