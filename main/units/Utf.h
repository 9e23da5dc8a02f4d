/// The arithmetic of UTF-8 and UTF-16, in one place. What to do with surrogates, with values above 0x10FFFF and where
/// there is no room is for those who call it to say.
#pragma once

#include <cstddef>

#include "qilsys/TCodeUnit.h"

namespace qilsys::units {

/// True for a value of either half of a pair.
constexpr bool IsSurrogate(char32_t value) { return (value & 0xFFFFF800) == 0xD800; }

/// The halves of a code point above 0xFFFF.
constexpr char32_t HighSurrogateOf(char32_t codePoint) { return 0xD7C0 + (codePoint >> 10); }
constexpr char32_t LowSurrogateOf(char32_t codePoint) { return 0xDC00 + (codePoint & 0x3FF); }

/// Writes a code point in one or two elements and returns what follows them.
template <class Unit>
constexpr Unit* WriteUtf16(char32_t codePoint, Unit* target) {
  if (codePoint < 0x10000) {
    *target++ = static_cast<Unit>(codePoint);
  } else {
    *target++ = static_cast<Unit>(HighSurrogateOf(codePoint));
    *target++ = static_cast<Unit>(LowSurrogateOf(codePoint));
  }
  return target;
}

/// Bytes of a code point.
constexpr int Utf8Length(char32_t codePoint) {
  if (codePoint < 0x80) return 1;
  if (codePoint < 0x800) return 2;
  return codePoint < 0x10000 ? 3 : 4;
}

/// Writes a code point of `Bytes` bytes and returns what follows them.
template <int Bytes>
constexpr char* WriteUtf8(char32_t codePoint, char* target) {
  if constexpr (Bytes == 1) {
    *target++ = static_cast<char>(codePoint);
  } else {
    constexpr char32_t LeadMark = 0xF00 >> Bytes & 0xFF;
    *target++ = static_cast<char>(LeadMark | codePoint >> 6 * (Bytes - 1));
    for (int left = Bytes - 2; left >= 0; --left) *target++ = static_cast<char>(0x80 | (codePoint >> 6 * left & 0x3F));
  }
  return target;
}

/// The same for any code point.
constexpr char* WriteUtf8(char32_t codePoint, char* target) {
  if (codePoint < 0x80) return WriteUtf8<1>(codePoint, target);
  if (codePoint < 0x800) return WriteUtf8<2>(codePoint, target);
  return codePoint < 0x10000 ? WriteUtf8<3>(codePoint, target) : WriteUtf8<4>(codePoint, target);
}

/// Bytes of the units from index `from` up to `length`, 3 for each lone surrogate. A pair that `from` cuts has been
/// counted as 3 by its first half and gets 1 more here.
inline long long CountUtf8(const TCodeUnit* units, std::size_t from, std::size_t length) {
  long long bytes = 0;
  for (std::size_t i = from; i < length; ++i) {
    bytes += 1 + (units[i] >= 0x80) + (units[i] >= 0x800);
    const bool endsPair = i > 0 && (units[i] & 0xFC00) == 0xDC00 && (units[i - 1] & 0xFC00) == 0xD800;
    if (endsPair) bytes -= 2;
  }
  return bytes;
}

}  // namespace qilsys::units
