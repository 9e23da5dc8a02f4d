/// Text seen one code point at a time, on raw buffers.
///
/// Every function on units has a form for each TextUnit. Where the other form's elements are wider than 16 bits, an
/// element holds a code point: counts, positions and capacities then mean elements of that buffer, an element above
/// 0x10FFFF reads as U+FFFD, and two surrogate elements in a row still make one code point.
///
/// No function here has a state; all are safe from any thread and none raises.
#pragma once

#include <type_traits>

#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"

namespace qilsys {

/// True for the unit types of text, the platform's own and the other one.
template <class T>
concept TextUnit = std::same_as<T, TCodeUnit> || ForeignUnit<T>;

}  // namespace qilsys

namespace CodePoint {

/// Stands for whatever can't be decoded; EF BF BD in UTF-8.
inline constexpr char32_t ReplacementCharacter = 0xFFFD;

/// Length of the UTF-8 sequence that a lead byte begins, by the byte shifted right by 3; 0 where none begins.
inline constexpr int _utf8CodeUnits[32] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                           0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 2, 2, 3, 3, 4, 0};

constexpr bool IsHighSurrogate(char32_t value) { return (value & 0xFFFFFC00) == 0xD800; }
constexpr bool IsLowSurrogate(char32_t value) { return (value & 0xFFFFFC00) == 0xDC00; }

/// The supplementary code point of a valid pair; the halves are not tested.
constexpr char32_t JoinSurrogates(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

constexpr bool IsASCII(TCodeUnit unit) { return unit < 0x80; }
template <qilsys::ForeignUnit U>
constexpr bool IsASCII(U unit) {
  return static_cast<char32_t>(unit) < 0x80;
}

/// True unless the unit is a low surrogate.
constexpr bool IsFirstUtf16CodeUnit(TCodeUnit unit) { return !IsLowSurrogate(unit); }
template <qilsys::ForeignUnit U>
constexpr bool IsFirstUtf16CodeUnit(U unit) {
  return !IsLowSurrogate(static_cast<char32_t>(unit));
}

/// The same as IsFirstUtf16CodeUnit.
constexpr bool IsFirstCodeUnit(TCodeUnit unit) { return IsFirstUtf16CodeUnit(unit); }
template <qilsys::ForeignUnit U>
constexpr bool IsFirstCodeUnit(U unit) {
  return IsFirstUtf16CodeUnit(unit);
}

/// True for an ASCII byte or a lead byte, false for a continuation byte.
constexpr bool IsFirstUtf8CodeUnit(char byte) { return static_cast<signed char>(byte) > -65; }

/// Always true: every UTF-32 element begins a code point.
constexpr bool IsFirstUtf32CodeUnit(char32_t) { return true; }

/// Always true, whatever the unit; surrogates too.
constexpr bool IsSingleCodeUnit(TCodeUnit) { return true; }
template <qilsys::ForeignUnit U>
constexpr bool IsSingleCodeUnit(U) {
  return true;
}

/// Units of the code point that begins at `p`, by the first unit alone: 1, 2 for a high surrogate, 0 for a low one
/// and for null.
constexpr int CountCodeUnits(const TCodeUnit* p) {
  if (!p || IsLowSurrogate(*p)) return 0;
  return IsHighSurrogate(*p) ? 2 : 1;
}
template <qilsys::ForeignUnit U>
constexpr int CountCodeUnits(const U* p) {
  if (!p || IsLowSurrogate(static_cast<char32_t>(*p))) return 0;
  return IsHighSurrogate(static_cast<char32_t>(*p)) ? 2 : 1;
}

/// UTF-16 units that a code point needs: 1 below 0x10000, else 2.
constexpr int CountCodeUnits(char32_t codePoint) { return codePoint < 0x10000 ? 1 : 2; }

/// Length of the UTF-8 sequence that `lead` begins, 0 for a byte that begins none.
constexpr int CountUtf8CodeUnits(unsigned char lead) { return _utf8CodeUnits[lead >> 3]; }

namespace detail {

constexpr char32_t Store(int* units, int count, char32_t codePoint) {
  if (units) *units = count;
  return codePoint;
}

template <qilsys::TextUnit U>
constexpr char32_t GetCodePoint(const U* p, int* units) {
  if (!p) return Store(units, 0, 0);
  const auto first = static_cast<char32_t>(*p);
  if ((first & 0xFFFFF800) != 0xD800) return Store(units, 1, first > 0x10FFFF ? ReplacementCharacter : first);
  if (!IsHighSurrogate(first) || !IsLowSurrogate(static_cast<char32_t>(p[1]))) {
    return Store(units, 1, ReplacementCharacter);
  }
  return Store(units, 2, JoinSurrogates(first, static_cast<char32_t>(p[1])));
}

}  // namespace detail

/// The code point at `p`, and in `units`, which may be null, how many units it takes. A lone surrogate is U+FFFD
/// and 1 unit; null `p` gives 0 and 0 units. Behind a high surrogate one more unit is read.
constexpr char32_t GetCodePoint(const TCodeUnit* p, int* units = nullptr) { return detail::GetCodePoint(p, units); }
template <qilsys::ForeignUnit U>
constexpr char32_t GetCodePoint(const U* p, int* units = nullptr) {
  return detail::GetCodePoint(p, units);
}

/// The unit after the code point at `current`, or null at the text's end, outside the text and on a low surrogate.
/// A high surrogate counts as 2 units without a look at what follows. `nextUnits`, which may be null, receives
/// CountCodeUnits of the unit reached, 0 with a null result.
QILSYS_API const TCodeUnit* GetNextCodePointPointer(const TCodeUnit* begin, const TCodeUnit* current, int length,
                                                    int* nextUnits = nullptr);
template <qilsys::ForeignUnit U>
const U* GetNextCodePointPointer(const U* begin, std::type_identity_t<const U*> current, int length,
                                 int* nextUnits = nullptr);

// A template, so that a literal nullptr picks the const form above.
template <qilsys::TextUnit U>
U* GetNextCodePointPointer(U* begin, std::type_identity_t<U*> current, int length, int* nextUnits = nullptr) {
  return const_cast<U*>(
      GetNextCodePointPointer(static_cast<const U*>(begin), static_cast<const U*>(current), length, nextUnits));
}

/// The first unit of the code point before `current`: back by one unit, then over the whole run of low surrogates.
/// Null if `current` is null or not above `begin`, and if that run reaches `begin`. `units`, which may be null,
/// receives the units stepped, 0 with a null result.
QILSYS_API const TCodeUnit* GetPreviousCodePointPointer(const TCodeUnit* begin, const TCodeUnit* current,
                                                        int* units = nullptr);
template <qilsys::ForeignUnit U>
const U* GetPreviousCodePointPointer(const U* begin, std::type_identity_t<const U*> current, int* units = nullptr);

/// The first unit of the text's last code point, found like GetPreviousCodePointPointer from its end; null for null
/// `text` and for `length` below 1.
QILSYS_API const TCodeUnit* GetLastCodePointPointer(const TCodeUnit* text, int length, int* units = nullptr);
template <qilsys::ForeignUnit U>
const U* GetLastCodePointPointer(const U* text, int length, int* units = nullptr);

// Converters of one code point. Each writes at target[position], moves `position`, and returns the source elements
// consumed; where the target has no room it returns 0 and leaves `position` alone. A single element is written
// without a look at `capacity`: callers leave room for one.

/// Copies a code point; a lone surrogate becomes U+FFFD.
template <qilsys::TextUnit S, qilsys::TextUnit T>
int Utf16ToUtf16(const S* source, T* target, int& position, int capacity);

/// The same as Utf16ToUtf16, as are the next two.
template <qilsys::TextUnit S, qilsys::TextUnit T>
int CopyCodePoint(const S* source, T* target, int& position, int capacity) {
  return Utf16ToUtf16(source, target, position, capacity);
}
template <qilsys::TextUnit S, qilsys::TextUnit T>
int TCodeUnitToUtf16(const S* source, T* target, int& position, int capacity) {
  return Utf16ToUtf16(source, target, position, capacity);
}
template <qilsys::TextUnit S, qilsys::TextUnit T>
int Utf16ToTCodeUnit(const S* source, T* target, int& position, int capacity) {
  return Utf16ToUtf16(source, target, position, capacity);
}

/// A lone surrogate becomes U+FFFD. `capacity` is not looked at.
template <qilsys::TextUnit S>
int Utf16ToUtf32(const S* source, char32_t* target, int& position, int capacity);

/// The same as Utf16ToUtf32.
template <qilsys::TextUnit S>
int TCodeUnitToUtf32(const S* source, char32_t* target, int& position, int capacity) {
  return Utf16ToUtf32(source, target, position, capacity);
}

/// Surrogate values are written as they stand; a value above 0x10FFFF becomes U+FFFD.
template <qilsys::TextUnit T>
int Utf32ToUtf16(const char32_t* source, T* target, int& position, int capacity);

/// The same as Utf32ToUtf16.
template <qilsys::TextUnit T>
int Utf32ToTCodeUnit(const char32_t* source, T* target, int& position, int capacity) {
  return Utf32ToUtf16(source, target, position, capacity);
}

/// A lone surrogate becomes EF BF BD, for which 4 bytes must be free.
template <qilsys::TextUnit S>
int Utf16ToUtf8(const S* source, char* target, int& position, int capacity);

/// A surrogate value is written as three bytes; a value above 0x10FFFF becomes EF BF BD, for which 4 bytes must be
/// free.
QILSYS_API int Utf32ToUtf8(const char32_t* source, char* target, int& position, int capacity);

/// Decodes without rejecting overlong forms and encoded surrogates: a surrogate is written as one unit. A sequence
/// that breaks off becomes U+FFFD, and the byte that broke it is not consumed.
template <qilsys::TextUnit T>
int Utf8ToUtf16(const char* source, T* target, int& position, int capacity);

/// Decodes like Utf8ToUtf16. `capacity` is not looked at.
QILSYS_API int Utf8ToUtf32(const char* source, char32_t* target, int& position, int capacity);

/// Copies a complete sequence unchanged, also one above 0x10FFFF; any other becomes EF BF BD, for which 4 bytes must
/// be free.
QILSYS_API int Utf8ToUtf8(const char* source, char* target, int& position, int capacity);

}  // namespace CodePoint
