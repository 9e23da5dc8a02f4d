/// The fast paths of TStringCore: what inline text and a shared block cost is in view here, everything else is a call.
#pragma once

#include "qilsys/TStringCore.h"

static_assert(sizeof(TStringCore) == 32);

// ---- The block

inline TStringCore::StringBlock* TStringCore::blockPointer() const noexcept {
  StringBlock* block;
  std::memcpy(&block, m_words.inlineUnits, sizeof block);
  return block;
}

inline void TStringCore::setBlockPointer(StringBlock* block) noexcept {
  std::memcpy(m_words.inlineUnits, &block, sizeof block);
  m_words.storageState = -1;
}

// Acquire, so that a writer that finds itself alone has seen the end of every other string's reads.
inline int TStringCore::references(const StringBlock* block) noexcept {
  return std::atomic_ref<std::int32_t>(const_cast<std::int32_t&>(block->refCount)).load(std::memory_order_acquire);
}

inline void TStringCore::retainBlock(StringBlock* block) noexcept {
  std::atomic_ref<std::int32_t>(block->refCount).fetch_add(1);
}

// The last holder needs no atomic step: nobody is left who could copy the block meanwhile.
inline void TStringCore::releaseBlock(StringBlock* block) noexcept {
  if (references(block) == 1 || std::atomic_ref<std::int32_t>(block->refCount).fetch_sub(1) == 1) freeBlock(block);
}

// ---- Construction, assignment, end

inline void TStringCore::setInlineLength(int n) noexcept {
  m_words.inlineUnits[n] = 0;
  m_words.storageState = static_cast<std::int16_t>(n);
}

// All sixteen words get a value, so that an inline string can be copied as a whole.
inline TStringCore::TStringCore() noexcept : m_words{} {}

inline TStringCore::TStringCore(const TCodeUnit* s, int len) : m_words{} {
  if (!s) return;
  int n = 0;
  if (len < 0) {
    for (; n < MaxInlineLength && s[n] != 0; ++n) m_words.inlineUnits[n] = s[n];
    if (s[n] == 0) [[likely]] {
      setInlineLength(n);
      return;
    }
  } else if (len <= MaxInlineLength) [[likely]] {
    for (; n < len; ++n) m_words.inlineUnits[n] = s[n];
    setInlineLength(n);
    return;
  }
  constructSlow(s, len);
}

inline TStringCore::TStringCore(const TStringCore& other) noexcept : m_words(other.m_words) {
  if (!isInline()) retainBlock(blockPointer());
}

inline TStringCore::TStringCore(TStringCore&& other) noexcept : m_words(other.m_words) {
  if (!isInline()) other.m_words = Words{};
}

inline TStringCore::~TStringCore() {
  if (!isInline()) releaseBlock(blockPointer());
}

inline TStringCore& TStringCore::operator=(const TStringCore& other) {
  if (isInline() && other.isInline()) {
    m_words = other.m_words;
  } else {
    assignSlow(other);
  }
  return *this;
}

inline TStringCore& TStringCore::operator=(TStringCore&& other) {
  if (other.isInline() || this == &other) return *this = static_cast<const TStringCore&>(other);
  const Words taken = std::exchange(other.m_words, Words{});
  clear();
  m_words = taken;
  return *this;
}

template <std::same_as<TCodeUnit> U>
TStringCore& TStringCore::operator=(U c) {
  assign(c, 1);
  return *this;
}

inline TStringCore& TStringCore::set(const TCodeUnit* s, int len) {
  _assignHandleSelf(s, len);
  return *this;
}

inline void TStringCore::clear() noexcept {
  if (!isInline()) releaseBlock(blockPointer());
  m_words = Words{};
}

// ---- Size and access

inline int TStringCore::length() const noexcept { return isInline() ? m_words.storageState : blockPointer()->length; }

inline int TStringCore::lengthInBytes() const noexcept {
  // A text of 0x40000000 units and more has no byte count in an int; it wraps as the multiplication does.
  return static_cast<int>(static_cast<unsigned>(length()) * 2U);
}

inline int TStringCore::capacity() const noexcept { return isInline() ? InlineCapacity : blockPointer()->capacity; }

inline bool TStringCore::isShared() const noexcept { return !isInline() && references(blockPointer()) > 1; }

inline const TCodeUnit* TStringCore::data() const noexcept {
  return isInline() ? m_words.inlineUnits : static_cast<const StringBlock*>(blockPointer())->units();
}

inline void TStringCore::detach() {
  if (isShared()) detachSlow();
}

inline TCodeUnit* TStringCore::data() {
  detach();
  return isInline() ? m_words.inlineUnits : blockPointer()->units();
}

template <std::integral I>
TCodeUnit TStringCore::operator[](I i) const {
  using Index = std::conditional_t<sizeof(I) < sizeof(int), int, size_type>;
  return (*this)[static_cast<Index>(i)];
}

template <std::integral I>
TCodeUnit& TStringCore::operator[](I i) {
  using Index = std::conditional_t<sizeof(I) < sizeof(int), int, size_type>;
  return (*this)[static_cast<Index>(i)];
}

// ---- Append

inline TStringCore& TStringCore::append(TCodeUnit c) {
  if (isInline()) {
    const int n = m_words.storageState;
    if (n < MaxInlineLength) [[likely]] {
      m_words.inlineUnits[n] = c;
      setInlineLength(n + 1);
      return *this;
    }
  } else {
    StringBlock* block = blockPointer();
    const int n = block->length;
    if (n + 1 < block->capacity && references(block) == 1) [[likely]] {
      block->units()[n] = c;
      block->units()[n + 1] = 0;
      block->length = n + 1;
      return *this;
    }
  }
  return appendUnitSlow(c);
}

// ---- Search

template <std::same_as<wchar_t> W>
bool TStringCore::contains(const W* needle, CaseSensitivity cs) const {
  if constexpr (qilsys::ForeignUnit<W>) {
    return containsInTerminated(qilsys::TForeignText(needle).data(), cs);
  } else {
    return containsInTerminated(needle, cs);
  }
}

template <std::same_as<char16_t> W>
bool TStringCore::contains(const W* needle, CaseSensitivity) const {
  if constexpr (qilsys::ForeignUnit<W>) {
    return containsExactly(qilsys::TForeignText(needle).data());
  } else {
    return containsExactly(needle);
  }
}

inline bool TStringCore::contains(std::nullptr_t, CaseSensitivity cs) const {
  return containsInTerminated(nullptr, cs);
}
