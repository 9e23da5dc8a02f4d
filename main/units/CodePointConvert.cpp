// The converters of one code point.

#include "qilsys/CodePoint.h"

#include <cstdint>

#include "units/Utf.h"

namespace CodePoint {

namespace {

using namespace qilsys::units;

/// True if `extra` elements after the one at `position` fit; in 64 bits, so that no sum wraps.
bool HasRoomBehind(int position, int extra, int capacity) { return std::int64_t{position} + extra < capacity; }

/// Elements of T that a code point takes.
template <qilsys::TextUnit T>
constexpr int ElementsOf(char32_t codePoint) {
  return sizeof(T) == 2 ? CountCodeUnits(codePoint) : 1;
}

template <qilsys::TextUnit T>
bool WriteUnits(char32_t codePoint, T* target, int& position, int capacity) {
  if (ElementsOf<T>(codePoint) == 1) {
    target[position++] = static_cast<T>(codePoint);
    return true;
  }
  if (!HasRoomBehind(position, 1, capacity)) return false;
  position = static_cast<int>(WriteUtf16(codePoint, target + position) - target);
  return true;
}

bool WriteBytes(char32_t codePoint, char* target, int& position, int capacity) {
  const int bytes = Utf8Length(codePoint);
  if (bytes > 1 && !HasRoomBehind(position, bytes - 1, capacity)) return false;
  WriteUtf8(codePoint, target + position);
  position += bytes;
  return true;
}

/// One byte more than the substitute needs must be free.
bool WriteSubstitute(char* target, int& position, int capacity) {
  if (position < 0 || !HasRoomBehind(position, 3, capacity)) return false;
  return WriteBytes(ReplacementCharacter, target, position, capacity);
}

struct Sequence {
  char32_t codePoint;
  int bytes;
  bool complete;
};

Sequence DecodeUtf8(const char* source) {
  const auto lead = static_cast<unsigned char>(*source);
  if (lead < 0x80) return {lead, 1, true};
  const int continuation = CountUtf8CodeUnits(lead) - 1;
  if (continuation < 1) return {ReplacementCharacter, 1, false};
  char32_t value = lead & (0x3Fu >> continuation);
  for (int i = 1; i <= continuation; ++i) {
    if (IsFirstUtf8CodeUnit(source[i])) return {ReplacementCharacter, i, false};
    value = value << 6 | (static_cast<unsigned char>(source[i]) & 0x3F);
  }
  return {value < 0x110000 ? value : ReplacementCharacter, continuation + 1, true};
}

}  // namespace

template <qilsys::TextUnit S, qilsys::TextUnit T>
int Utf16ToUtf16(const S* source, T* target, int& position, int capacity) {
  int units = 0;
  const char32_t codePoint = GetCodePoint(source, &units);
  return WriteUnits(codePoint, target, position, capacity) ? units : 0;
}

template <qilsys::TextUnit S>
int Utf16ToUtf32(const S* source, char32_t* target, int& position, int) {
  int units = 0;
  target[position++] = GetCodePoint(source, &units);
  return units;
}

template <qilsys::TextUnit T>
int Utf32ToUtf16(const char32_t* source, T* target, int& position, int capacity) {
  const char32_t codePoint = *source > 0x10FFFF ? ReplacementCharacter : *source;
  return WriteUnits(codePoint, target, position, capacity) ? 1 : 0;
}

template <qilsys::TextUnit S>
int Utf16ToUtf8(const S* source, char* target, int& position, int capacity) {
  int units = 0;
  const char32_t codePoint = GetCodePoint(source, &units);
  const bool substituted = codePoint == ReplacementCharacter && static_cast<char32_t>(*source) != codePoint;
  const bool written =
      substituted ? WriteSubstitute(target, position, capacity) : WriteBytes(codePoint, target, position, capacity);
  return written ? units : 0;
}

int Utf32ToUtf8(const char32_t* source, char* target, int& position, int capacity) {
  const bool written = *source > 0x10FFFF ? WriteSubstitute(target, position, capacity)
                                          : WriteBytes(*source, target, position, capacity);
  return written ? 1 : 0;
}

template <qilsys::TextUnit T>
int Utf8ToUtf16(const char* source, T* target, int& position, int capacity) {
  const Sequence sequence = DecodeUtf8(source);
  return WriteUnits(sequence.codePoint, target, position, capacity) ? sequence.bytes : 0;
}

int Utf8ToUtf32(const char* source, char32_t* target, int& position, int) {
  const Sequence sequence = DecodeUtf8(source);
  target[position++] = sequence.codePoint;
  return sequence.bytes;
}

int Utf8ToUtf8(const char* source, char* target, int& position, int capacity) {
  const Sequence sequence = DecodeUtf8(source);
  if (!sequence.complete) return WriteSubstitute(target, position, capacity) ? sequence.bytes : 0;
  if (sequence.bytes > 1 && !HasRoomBehind(position, sequence.bytes - 1, capacity)) return 0;
  for (int i = 0; i < sequence.bytes; ++i) target[position++] = source[i];
  return sequence.bytes;
}

template QILSYS_API int Utf16ToUtf16(const TCodeUnit*, TCodeUnit*, int&, int);
template QILSYS_API int Utf16ToUtf16(const TCodeUnit*, TForeignUnit*, int&, int);
template QILSYS_API int Utf16ToUtf16(const TForeignUnit*, TCodeUnit*, int&, int);
template QILSYS_API int Utf16ToUtf16(const TForeignUnit*, TForeignUnit*, int&, int);
template QILSYS_API int Utf16ToUtf32(const TCodeUnit*, char32_t*, int&, int);
template QILSYS_API int Utf16ToUtf32(const TForeignUnit*, char32_t*, int&, int);
template QILSYS_API int Utf32ToUtf16(const char32_t*, TCodeUnit*, int&, int);
template QILSYS_API int Utf32ToUtf16(const char32_t*, TForeignUnit*, int&, int);
template QILSYS_API int Utf16ToUtf8(const TCodeUnit*, char*, int&, int);
template QILSYS_API int Utf16ToUtf8(const TForeignUnit*, char*, int&, int);
template QILSYS_API int Utf8ToUtf16(const char*, TCodeUnit*, int&, int);
template QILSYS_API int Utf8ToUtf16(const char*, TForeignUnit*, int&, int);

}  // namespace CodePoint
