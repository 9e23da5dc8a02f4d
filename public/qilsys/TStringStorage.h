/// How a string holds its text: inside itself, or in a counted block that copies share.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qilsys/TCodeUnit.h"
#include "qilsys/ThreadSanitizer.h"

namespace qilsys {

/// One allocation of TRealloc: this header, and `capacity` units directly behind it.
struct StringBlock {
  std::int32_t refCount;  // Strings that point here. Written only by atomic operations of full ordering.
  std::int32_t capacity;  // Units there is room for, the terminator's slot included.
  std::int32_t length;

  TCodeUnit* units() noexcept { return reinterpret_cast<TCodeUnit*>(this + 1); }
  const TCodeUnit* units() const noexcept { return reinterpret_cast<const TCodeUnit*>(this + 1); }

  /// Acquire, so that a writer that finds itself alone has seen the end of every other string's reads.
  int references() const noexcept {
    const int count = std::atomic_ref(const_cast<std::int32_t&>(refCount)).load(std::memory_order_acquire);
    if (count == 1) base::AnnounceAcquire(this);
    return count;
  }
  void retain() noexcept { std::atomic_ref<std::int32_t>(refCount).fetch_add(1); }
  /// True for the last holder, which needs no atomic step: nobody is left who could copy the block meanwhile.
  bool release() noexcept {
    if (references() == 1) return true;
    base::AnnounceRelease(this);
    if (std::atomic_ref<std::int32_t>(refCount).fetch_sub(1) != 1) return false;
    base::AnnounceAcquire(this);
    return true;
  }
};

static_assert(sizeof(StringBlock) == 12 && offsetof(StringBlock, refCount) == 0 &&
              offsetof(StringBlock, capacity) == 4 && offsetof(StringBlock, length) == 8);

/// Sixteen words, copied as a whole; all of them have a value at any time. It holds a block, but counting the holders
/// is the string's part.
class StringStorage {
 public:
  static constexpr int InlineCapacity = 15;
  static constexpr int MaxInlineLength = 14;

  bool isInline() const noexcept { return m_words.storageState >= 0; }
  int length() const noexcept { return isInline() ? m_words.storageState : blockPointer()->length; }
  int capacity() const noexcept { return isInline() ? InlineCapacity : blockPointer()->capacity; }
  bool isShared() const noexcept { return !isInline() && blockPointer()->references() > 1; }
  const TCodeUnit* units() const noexcept {
    return isInline() ? m_words.inlineUnits : static_cast<const StringBlock*>(blockPointer())->units();
  }
  TCodeUnit* units() noexcept { return isInline() ? m_words.inlineUnits : blockPointer()->units(); }

  /// Only while in a block.
  StringBlock* blockPointer() const noexcept {
    StringBlock* block;
    std::memcpy(&block, m_words.inlineUnits, sizeof block);
    return block;
  }
  void setBlockPointer(StringBlock* block) noexcept {
    std::memcpy(m_words.inlineUnits, &block, sizeof block);
    m_words.storageState = -1;
  }

  /// Only while inline.
  TCodeUnit* inlineUnits() noexcept { return m_words.inlineUnits; }
  /// Ends the text that stands in the inline units behind `n` of them, at most MaxInlineLength.
  void setInlineLength(int n) noexcept {
    m_words.inlineUnits[n] = 0;
    setLengthOfZeroed(n);
  }
  /// The same while the units from `n` on are still zero.
  void setLengthOfZeroed(int n) noexcept { m_words.storageState = static_cast<std::int16_t>(n); }
  /// Takes over `length` units, at most MaxInlineLength, where so many can be read: a copy of fixed size costs less than
  /// one by length, and what stands behind the terminator never shows.
  void assignInlineFrom(const TCodeUnit* units, int length) noexcept {
    std::memcpy(m_words.inlineUnits, units, MaxInlineLength * sizeof(TCodeUnit));
    setInlineLength(length);
  }

 private:
  /// The pointer to the block overlays the start of `inlineUnits`.
  struct Words {
    alignas(void*) TCodeUnit inlineUnits[InlineCapacity];
    std::int16_t storageState;  // 0 to 14: inline, and this is the length. Negative: in a block.
  };

  static_assert(sizeof(Words) == 32 && offsetof(Words, inlineUnits) == 0 && offsetof(Words, storageState) == 30);

  Words m_words{};
};

}  // namespace qilsys
