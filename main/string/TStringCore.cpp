#include "qilsys/TStringCore.h"

#include <algorithm>
#include <cstddef>
#include <functional>

#include "search/Search.h"
#include "string/StringHeap.h"
#include "units/TextLength.h"

namespace qilsys::string {

StringHeap g_stringHeap{&TRealloc, &TFree};

}  // namespace qilsys::string

using qilsys::string::g_stringHeap;

namespace {

void CopyUnits(TCodeUnit* target, const TCodeUnit* source, int n) { std::copy_n(source, n, target); }

}  // namespace

// ---- Growth

int TStringCore::nextCapacity(int n, GrowthMode mode) const {
  const int current = capacity();
  // Wraps at the highest int: the caller then meets a negative capacity and raises.
  const int fitted = static_cast<int>(static_cast<std::uint32_t>(n) + 1U);
  if (mode == GrowExact) return n < InlineCapacity ? InlineCapacity : fitted;
  if (n < current) return current;
  if (mode == GrowAtLeast) return fitted;
  return geometricCapacity(n);
}

// The whole block, of six units of header and a terminator beside the text, takes a power of two or three quarters of
// one.
int TStringCore::geometricCapacity(int n) {
  if (n < InlineCapacity) return InlineCapacity;
  if (n >= MaxStringCapacity) throw CapacityException();
  const std::uint32_t wanted = static_cast<std::uint32_t>(n) + BlockHeaderUnits + 1U;
  std::uint32_t power = wanted;
  for (const int shift : {1, 2, 4, 8, 16}) power |= power >> shift;
  if (++power == 0) return MaxStringCapacity;
  const std::uint32_t threeQuarters = (power >> 2) * 3;
  const std::uint32_t room = wanted < threeQuarters ? threeQuarters : power;
  if (room > static_cast<std::uint32_t>(MaxStringCapacity)) return MaxStringCapacity;
  return static_cast<int>(room - BlockHeaderUnits);
}

// ---- Blocks

TStringCore::StringBlock* TStringCore::allocateBlock(int capacity, StringBlock* existing) {
  static_assert(sizeof(std::size_t) == 8, "the byte count below can't wrap");
  if (capacity < 0 || capacity > MaxStringCapacity) throw CapacityException();
  if (existing && existing->capacity == capacity) return existing;
  if (existing && existing->length >= capacity && capacity < 1) throw CapacityException();
  const std::size_t bytes = static_cast<std::size_t>(capacity) * sizeof(TCodeUnit) + sizeof(StringBlock);
  auto* block = static_cast<StringBlock*>(g_stringHeap.reallocate(existing, bytes));
  if (!block) throw OutOfMemoryException();
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

void TStringCore::setBlockLength(StringBlock* block, int n) {
  if (static_cast<std::uint32_t>(n) >= static_cast<std::uint32_t>(MaxStringCapacity)) throw CapacityException();
  block->length = n;
}

void TStringCore::freeBlock(StringBlock* block) noexcept { g_stringHeap.release(block); }

void TStringCore::unshareInto(int capacity) {
  StringBlock* old = blockPointer();
  StringBlock* block = allocateBlock(capacity, nullptr);
  block->length = std::min(old->length, capacity - 1);
  CopyUnits(block->units(), old->units(), block->length);
  block->units()[block->length] = 0;
  releaseBlock(old);
  setBlockPointer(block);
}

void TStringCore::detachSlow() { unshareInto(blockPointer()->capacity); }

void TStringCore::promoteToBlock(int capacity) {
  if (capacity < 0) throw Exception(u"Allocation size less than zero; probable capacity overflow");
  if (capacity <= InlineCapacity) return;
  StringBlock* block = allocateBlock(capacity, nullptr);
  block->length = m_words.storageState;
  CopyUnits(block->units(), m_words.inlineUnits, block->length + 1);
  setBlockPointer(block);
}

void TStringCore::reallocateBlock(int capacity) {
  if (capacity < 0) throw Exception(u"Allocation capacity is less than zero; probable capacity overflow.");
  StringBlock* block = blockPointer();
  if (capacity > InlineCapacity) {
    setBlockPointer(allocateBlock(capacity, block));
    return;
  }
  setInline(block->units(), std::min<int>(block->length, MaxInlineLength));
  releaseBlock(block);
}

void TStringCore::setInline(const TCodeUnit* s, int n) noexcept {
  Words words{};
  CopyUnits(words.inlineUnits, s, n);
  words.storageState = static_cast<std::int16_t>(n);
  m_words = words;
}

// ---- Length and capacity

TCodeUnit* TStringCore::resizeForWrite(int n) {
  if (n < 0) throw CapacityException();
  if (isInline()) {
    if (n <= MaxInlineLength) {
      setInlineLength(n);
      return m_words.inlineUnits;
    }
    promoteToBlock(nextCapacity(n, GrowGeometric));
  } else if (blockPointer()->capacity <= n || isShared()) {
    const int capacity = nextCapacity(n, GrowGeometric);
    if (isShared()) {
      unshareInto(capacity);
    } else if (capacity > blockPointer()->capacity) {
      reallocateBlock(capacity);
    }
  }
  StringBlock* block = blockPointer();
  setBlockLength(block, n);
  block->units()[n] = 0;
  return block->units();
}

void TStringCore::reserveWithMode(int n, GrowthMode mode) {
  if (n < 0) throw Exception(u"Negative allocation size; probable overflow");
  const int wanted = nextCapacity(n, mode);
  if (wanted == capacity() && !isShared()) return;
  if (isInline()) {
    promoteToBlock(wanted);
  } else if (isShared()) {
    unshareInto(wanted);
  } else {
    reallocateBlock(wanted);
  }
}

void TStringCore::squeeze() {
  if (isInline()) return;
  const int wanted = length() < InlineCapacity ? InlineCapacity : length() + 1;
  if (isShared()) {
    unshareInto(wanted);
  } else if (wanted != capacity()) {
    reallocateBlock(wanted);
  }
}

int TStringCore::length(const TCodeUnit* s) { return qilsys::units::TerminatedLength(s); }

int TStringCore::lengthInBytes(const TCodeUnit* s) {
  return static_cast<int>(static_cast<std::uint32_t>(length(s)) * sizeof(TCodeUnit));
}

// ---- Construction and assignment

// Only for text that does not fit inline, into an object that holds no block yet.
void TStringCore::constructSlow(const TCodeUnit* s, int len) {
  if (len < 0) len = length(s);
  StringBlock* block = allocateBlock(geometricCapacity(len), nullptr);
  CopyUnits(block->units(), s, len);
  block->units()[len] = 0;
  block->length = len;
  setBlockPointer(block);
}

void TStringCore::assignSlow(const TStringCore& other) {
  if (this == &other) return;
  if (!other.isInline()) {
    StringBlock* block = other.blockPointer();
    retainBlock(block);
    if (!isInline()) releaseBlock(blockPointer());
    setBlockPointer(block);
  } else if (isShared()) {
    releaseBlock(blockPointer());
    m_words = other.m_words;
  } else {
    StringBlock* block = blockPointer();
    block->length = other.m_words.storageState;
    CopyUnits(block->units(), other.m_words.inlineUnits, block->length + 1);
  }
}

void TStringCore::assign(TCodeUnit c, int n) {
  if (n >= 0) std::fill_n(resizeForWrite(n), n, c);
}

bool TStringCore::inSelf(const TCodeUnit* p) const noexcept {
  const std::less_equal<const TCodeUnit*> notAbove;
  return notAbove(begin(), p) && notAbove(p, end());
}

void TStringCore::_assignHandleSelf(const TCodeUnit* s, int len) {
  if (s == constData()) {
    if (len >= 0 && len < length()) resizeForWrite(len);
    return;
  }
  if (inSelf(s)) {
    const int offset = static_cast<int>(s - constData());
    const int rest = length() - offset;
    const int count = len < 0 ? length(s) : std::min(len, rest);
    TCodeUnit* units = data();
    std::copy_n(units + offset, count, units);
    resizeForWrite(count);
    return;
  }
  // The length is set once and not by way of 0, so that a failure leaves the text.
  if (!s) len = 0;
  if (len < 0) len = length(s);
  CopyUnits(resizeForWrite(len), s, len);
}

void TStringCore::swap(TStringCore& other) {
  if (this == &other) return;
  TStringCore kept;
  kept = *this;
  *this = other;
  other = kept;
}

// ---- Element access

namespace {

[[noreturn]] void ThrowOutOfRange(const char* access) {
  throw TStringCore::Exception(TStringCore(access) + u" argument out of range.");
}

}  // namespace

TCodeUnit TStringCore::at(int i) const {
  if (i < 0 || i > length()) ThrowOutOfRange("TStringCore::at(int):");
  return data()[i];
}

TCodeUnit TStringCore::operator[](int i) const {
  if (i < 0 || i > length()) ThrowOutOfRange("TStringCore::operator[int] const");
  return data()[i];
}

TCodeUnit TStringCore::operator[](size_type i) const {
  if (i > size()) ThrowOutOfRange("TStringCore::operator[size_type] const");
  return data()[i];
}

TCodeUnit& TStringCore::operator[](int i) {
  if (i < 0 || i > length()) ThrowOutOfRange("TStringCore::operator[int]");
  return data()[i];
}

TCodeUnit& TStringCore::operator[](size_type i) {
  if (i > size()) ThrowOutOfRange("TStringCore::operator[size_type]");
  return data()[i];
}
