#include "string/StringGrowth.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "qilsys/TMemory.h"
#include "string/StringHeap.h"

namespace qilsys::string {

StringHeap g_stringHeap{&TRealloc, &TFree};

namespace {

constexpr std::uint32_t BlockHeaderUnits = sizeof(StringBlock) / sizeof(TCodeUnit);

void CopyUnits(TCodeUnit* target, const TCodeUnit* source, int n) { std::copy_n(source, n, target); }

}  // namespace

// ---- Capacity

int NextCapacity(const StringStorage& storage, int n, TStringOptions::GrowthMode mode) {
  const int current = storage.capacity();
  // Wraps at the highest int: the caller then meets a negative capacity and raises.
  const int fitted = static_cast<int>(static_cast<std::uint32_t>(n) + 1U);
  if (mode == TStringOptions::GrowExact) {
    return n < StringStorage::InlineCapacity ? StringStorage::InlineCapacity : fitted;
  }
  if (n < current) return current;
  if (mode == TStringOptions::GrowAtLeast) return fitted;
  return GeometricCapacity(n);
}

// The whole block, of six units of header and a terminator beside the text, takes a power of two or three quarters of
// one.
int GeometricCapacity(int n) {
  constexpr int Most = TStringCore::MaxStringCapacity;
  if (n < StringStorage::InlineCapacity) return StringStorage::InlineCapacity;
  if (n >= Most) throw TStringCore::CapacityException();
  const std::uint32_t wanted = static_cast<std::uint32_t>(n) + BlockHeaderUnits + 1U;
  std::uint32_t power = wanted;
  for (const int shift : {1, 2, 4, 8, 16}) power |= power >> shift;
  if (++power == 0) return Most;
  const std::uint32_t threeQuarters = (power >> 2) * 3;
  const std::uint32_t room = wanted < threeQuarters ? threeQuarters : power;
  if (room > static_cast<std::uint32_t>(Most)) return Most;
  return static_cast<int>(room - BlockHeaderUnits);
}

// ---- Blocks

StringBlock* AllocateBlock(int capacity, StringBlock* existing) {
  static_assert(sizeof(std::size_t) == 8, "the byte count below can't wrap");
  if (capacity < 0 || capacity > TStringCore::MaxStringCapacity) throw TStringCore::CapacityException();
  if (existing && existing->capacity == capacity) return existing;
  if (existing && existing->length >= capacity && capacity < 1) throw TStringCore::CapacityException();
  const std::size_t bytes = static_cast<std::size_t>(capacity) * sizeof(TCodeUnit) + sizeof(StringBlock);
  auto* block = static_cast<StringBlock*>(g_stringHeap.reallocate(existing, bytes));
  if (!block) throw TStringCore::OutOfMemoryException();
  block->capacity = capacity;
  if (!existing) {
    block->refCount = 1;
    block->length = 0;
    if (capacity > 0) block->units()[0] = 0;
  } else if (capacity <= block->length) {
    block->length = capacity - 1;
    block->units()[block->length] = 0;
  }
  return block;
}

void SetBlockLength(StringBlock* block, int n) {
  if (static_cast<std::uint32_t>(n) >= static_cast<std::uint32_t>(TStringCore::MaxStringCapacity)) {
    throw TStringCore::CapacityException();
  }
  block->length = n;
}

void FreeBlock(StringBlock* block) noexcept { g_stringHeap.release(block); }

// ---- The storage

void UnshareInto(StringStorage& storage, int capacity) {
  StringBlock* old = storage.blockPointer();
  StringBlock* block = AllocateBlock(capacity, nullptr);
  block->length = std::min(old->length, capacity - 1);
  CopyUnits(block->units(), old->units(), block->length);
  block->units()[block->length] = 0;
  if (old->release()) FreeBlock(old);
  storage.setBlockPointer(block);
}

void PromoteToBlock(StringStorage& storage, int capacity) {
  if (capacity < 0) {
    throw TStringCore::Exception(u"Allocation size less than zero; probable capacity overflow");
  }
  if (capacity <= StringStorage::InlineCapacity) return;
  StringBlock* block = AllocateBlock(capacity, nullptr);
  block->length = storage.length();
  CopyUnits(block->units(), storage.inlineUnits(), block->length + 1);
  storage.setBlockPointer(block);
}

void ReallocateBlock(StringStorage& storage, int capacity) {
  if (capacity < 0) {
    throw TStringCore::Exception(u"Allocation capacity is less than zero; probable capacity overflow.");
  }
  StringBlock* block = storage.blockPointer();
  if (capacity > StringStorage::InlineCapacity) {
    storage.setBlockPointer(AllocateBlock(capacity, block));
    return;
  }
  const int length = std::min<int>(block->length, StringStorage::MaxInlineLength);
  storage = StringStorage();
  CopyUnits(storage.inlineUnits(), block->units(), length);
  storage.setLengthOfZeroed(length);
  FreeBlock(block);
}

TCodeUnit* ResizeForWrite(StringStorage& storage, int n) {
  if (n < 0) throw TStringCore::CapacityException();
  if (storage.isInline()) {
    if (n <= StringStorage::MaxInlineLength) {
      storage.setInlineLength(n);
      return storage.inlineUnits();
    }
    PromoteToBlock(storage, NextCapacity(storage, n, TStringOptions::GrowGeometric));
  } else if (storage.capacity() <= n || storage.isShared()) {
    const int capacity = NextCapacity(storage, n, TStringOptions::GrowGeometric);
    if (storage.isShared()) {
      UnshareInto(storage, capacity);
    } else if (capacity > storage.capacity()) {
      ReallocateBlock(storage, capacity);
    }
  }
  StringBlock* block = storage.blockPointer();
  SetBlockLength(block, n);
  block->units()[n] = 0;
  return block->units();
}

void ReserveWithMode(StringStorage& storage, int n, TStringOptions::GrowthMode mode) {
  if (n < 0) throw TStringCore::Exception(u"Negative allocation size; probable overflow");
  const int wanted = NextCapacity(storage, n, mode);
  if (wanted == storage.capacity() && !storage.isShared()) return;
  if (storage.isInline()) {
    PromoteToBlock(storage, wanted);
  } else if (storage.isShared()) {
    UnshareInto(storage, wanted);
  } else {
    ReallocateBlock(storage, wanted);
  }
}

}  // namespace qilsys::string
