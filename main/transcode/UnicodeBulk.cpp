#include "transcode/UnicodeBulk.h"

#include <cstddef>
#include <type_traits>

#include "qilsys/CodePoint.h"
#include "units/Utf.h"

namespace qilsys::transcode {

namespace {

/// How far one code point at a time goes before the kernel is tried again: what stopped it lies within its block.
constexpr ptrdiff_t Stride = 64;
/// Where less is left, no kernel gets far.
constexpr ptrdiff_t ShortRest = 128;

struct Utf8Cursor {
  const unsigned char* next;
  const unsigned char* end;

  /// Takes a byte if it lies in the range; what does not continue a sequence begins the next one.
  bool Take(unsigned char first, unsigned char last, char32_t& value) {
    if (next == end || *next < first || *next > last) return false;
    value = value << 6 | (*next++ & 0x3F);
    return true;
  }
  bool TakeContinuation(char32_t& value) { return Take(0x80, 0xBF, value); }
};

/// Where the second byte of a sequence may lie: shorter forms, surrogates and values above 0x10FFFF are shut out by it.
bool TakeSecond(Utf8Cursor& cursor, unsigned char lead, char32_t& value) {
  switch (lead) {
    case 0xE0:
      return cursor.Take(0xA0, 0xBF, value);
    case 0xED:
      return cursor.Take(0x80, 0x9F, value);
    case 0xF0:
      return cursor.Take(0x90, 0xBF, value);
    case 0xF4:
      return cursor.Take(0x80, 0x8F, value);
    default:
      return cursor.TakeContinuation(value);
  }
}

/// The next code point; U+FFFD for the longest part of a sequence that could have become a valid one.
char32_t Decode(Utf8Cursor& cursor) {
  const unsigned char lead = *cursor.next++;
  if (lead < 0x80) return lead;
  bool good = false;
  char32_t value = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    value = lead & 0x1F;
    good = cursor.TakeContinuation(value);
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    value = lead & 0x0F;
    good = TakeSecond(cursor, lead, value) && cursor.TakeContinuation(value);
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    value = lead & 0x07;
    good = TakeSecond(cursor, lead, value) && cursor.TakeContinuation(value) && cursor.TakeContinuation(value);
  }
  return good ? value : CodePoint::ReplacementCharacter;
}

/// False where the units do not fit.
bool Write(char32_t codePoint, TCodeUnit*& target, const TCodeUnit* end) {
  if (end - target < CodePoint::CountCodeUnits(codePoint)) return false;
  target = units::WriteUtf16(codePoint, target);
  return true;
}

/// False where the bytes do not fit.
bool Write(char32_t codePoint, char*& target, const char* end) {
  if (end - target < units::Utf8Length(codePoint)) return false;
  target = units::WriteUtf8(codePoint, target);
  return true;
}

/// The code point at `source`, U+FFFD for a lone surrogate; nothing at `end` or behind is read.
char32_t Read(const TCodeUnit*& source, const TCodeUnit* end) {
  const TCodeUnit unit = *source++;
  if (!units::IsSurrogate(unit)) return unit;
  if (!CodePoint::IsHighSurrogate(unit) || source == end || !CodePoint::IsLowSurrogate(*source)) {
    return CodePoint::ReplacementCharacter;
  }
  return CodePoint::JoinSurrogates(unit, *source++);
}

/// Steps over a stride; false where the target is full.
bool StepUtf8(const char*& source, const char* end, TCodeUnit*& target, const TCodeUnit* targetEnd) {
  Utf8Cursor cursor{reinterpret_cast<const unsigned char*>(source), reinterpret_cast<const unsigned char*>(end)};
  const unsigned char* const stop = cursor.end - cursor.next > Stride ? cursor.next + Stride : cursor.end;
  while (cursor.next < stop) {
    const char32_t codePoint = Decode(cursor);
    if (!Write(codePoint, target, targetEnd)) return false;
    source = reinterpret_cast<const char*>(cursor.next);
  }
  return true;
}

bool StepUtf16(const TCodeUnit*& source, const TCodeUnit* end, char*& target, const char* targetEnd) {
  const TCodeUnit* const stop = end - source > Stride ? source + Stride : end;
  while (source < stop) {
    const TCodeUnit* next = source;
    if (!Write(Read(next, end), target, targetEnd)) return false;
    source = next;
  }
  return true;
}

template <class S, class T>
void CopyAscii(const S*& source, const S* end, T*& target, const T* targetEnd) {
  while (source < end && target < targetEnd && static_cast<std::make_unsigned_t<S>>(*source) < 0x80) {
    *target++ = static_cast<T>(*source++);
  }
}

template <class S, class T, class Bulk, class Step>
Progress Convert(const S* source, int length, T* target, int capacity, bool takesAll, Bulk bulk, Step step) {
  const S* next = source;
  const S* const end = source + length;
  T* write = target;
  T* const targetEnd = target + (capacity < 0 ? 0 : capacity);
  while (next < end) {
    const Progress done = bulk(next, static_cast<size_t>(end - next), write, static_cast<size_t>(targetEnd - write));
    next += done.consumed;
    write += done.written;
    if (takesAll && end - next >= ShortRest) {
      if (!step(next, end, write, targetEnd)) break;
      continue;
    }
    CopyAscii(next, end, write, targetEnd);
    break;
  }
  return {static_cast<size_t>(next - source), static_cast<size_t>(write - target)};
}

}  // namespace

Progress ConvertUtf8(const char* source, int length, TCodeUnit* target, int capacity, const Kernel& kernel) {
  return Convert(source, length, target, capacity, kernel.takesAll, kernel.fromUtf8, StepUtf8);
}

Progress ConvertUtf16(const TCodeUnit* source, int length, char* target, int capacity, const Kernel& kernel) {
  return Convert(source, length, target, capacity, kernel.takesAll, kernel.fromUtf16, StepUtf16);
}

}  // namespace qilsys::transcode
