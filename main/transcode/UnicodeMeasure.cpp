// Whole buffers measured. All sums are made in 64 bits.
#include "qilsys/Unicode.h"

#include <climits>
#include <cstdint>

#include "qilsys/TForeignText.h"
#include "transcode/UnicodeFailure.h"
#include "transcode/UnicodeWide.h"
#include "units/TextLength.h"
#include "units/Utf.h"

namespace Unicode {

namespace {

using namespace qilsys::transcode;
namespace units = qilsys::units;

/// A length that no buffer of `int` elements could have shows as the greatest.
int Clip(std::int64_t length) { return length < INT_MAX ? static_cast<int>(length) : INT_MAX; }

/// Bytes at `source` that continue its lead byte, at most as many as this promises and as `left` behind it.
int CountContinuation(const char* source, int left) {
  const int promised = CodePoint::CountUtf8CodeUnits(static_cast<unsigned char>(*source)) - 1;
  int found = 0;
  while (found < promised && found < left && !CodePoint::IsFirstUtf8CodeUnit(source[found + 1])) ++found;
  return found;
}

int PromisedContinuation(char lead) {
  const int units = CodePoint::CountUtf8CodeUnits(static_cast<unsigned char>(lead));
  return units > 1 ? units - 1 : 0;
}

/// Sums what `count` gives for the continuation bytes of each sequence. A lead byte that promises more than there is
/// ends the walk and counts 1.
template <class Count>
int WalkSequences(const char* source, int length, Count count) {
  std::int64_t total = 0;
  for (int i = 0; i < length;) {
    if (PromisedContinuation(source[i]) >= length - i) return Clip(total + 1);
    const int continuation = CountContinuation(source + i, length - i - 1);
    total += count(continuation);
    i += 1 + continuation;
  }
  return Clip(total);
}

/// As U+FFFD where the value is too large.
int BytesOf(char32_t value) { return value > 0x10FFFF ? 3 : units::Utf8Length(value); }

template <class Count>
int SumOver(const char32_t* source, int length, Count count) {
  std::int64_t total = 0;
  for (int i = 0; i < length; ++i) total += count(source[i]);
  return Clip(total);
}

}  // namespace

int MeasureUtf8ToUtf8(const char* source, int length) {
  if (!source) return 0;
  std::int64_t total = 0;
  for (int i = 0; i < length;) {
    const int continuation = CountContinuation(source + i, length - i - 1);
    const bool complete = CodePoint::CountUtf8CodeUnits(static_cast<unsigned char>(source[i])) == continuation + 1;
    total += complete ? continuation + 1 : 3;
    i += 1 + continuation;
  }
  return Clip(total);
}

int MeasureUtf8ToUtf16(const char* source, int length) {
  RequireText(source, length, "Unicode::MeasureUtf8ToUtf16");
  return WalkSequences(source, length, [](int continuation) { return continuation == 3 ? 2 : 1; });
}

int MeasureUtf8ToUtf32(const char* source, int length) {
  RequireText(source, length, "Unicode::MeasureUtf8ToUtf32");
  return WalkSequences(source, length, [](int) { return 1; });
}

int MeasureUtf32ToUtf8(const char32_t* source, int length) {
  RequireText(source, length, "Unicode::MeasureUtf32ToUtf8");
  return SumOver(source, length, BytesOf);
}

int MeasureUtf32ToUtf16(const char32_t* source, int length) {
  RequireText(source, length, "Unicode::MeasureUtf32ToUtf16");
  return SumOver(source, length, [](char32_t value) { return value >= 0x10000 && value <= 0x10FFFF ? 2 : 1; });
}

int MeasureUtf16ToUtf8(const TCodeUnit* source, int length) {
  if (length == 0) return 0;
  if (source) RequireLength(length, "Unicode::MeasureUtf16ToUtf8");
  return Utf16ToUtf8(source, length, nullptr, 0);
}

int MeasureUtf16ToUtf32(const TCodeUnit* source, int length) {
  if (length == 0) return 0;
  if (source) RequireLength(length, "Unicode::MeasureUtf16ToUtf32");
  return Utf16ToUtf32(source, length, nullptr, 0);
}

int MeasureUtf8ToUtf8(const char* source) { return MeasureUtf8ToUtf8(source, units::TerminatedLength(source)); }
int MeasureUtf8ToUtf16(const char* source) { return MeasureUtf8ToUtf16(source, units::TerminatedLength(source)); }
int MeasureUtf8ToUtf32(const char* source) { return MeasureUtf8ToUtf32(source, units::TerminatedLength(source)); }
int MeasureUtf32ToUtf8(const char32_t* source) { return MeasureUtf32ToUtf8(source, units::TerminatedLength(source)); }
int MeasureUtf32ToUtf16(const char32_t* source) { return MeasureUtf32ToUtf16(source, units::TerminatedLength(source)); }
int MeasureUtf16ToUtf8(const TCodeUnit* source) { return MeasureUtf16ToUtf8(source, units::TerminatedLength(source)); }
int MeasureUtf16ToUtf32(const TCodeUnit* source) {
  return MeasureUtf16ToUtf32(source, units::TerminatedLength(source));
}

template <qilsys::ForeignUnit U>
int MeasureUtf16ToUtf8(const U* source, int length) {
  return WithUnits(source, length, [](const TCodeUnit* units, int n) { return MeasureUtf16ToUtf8(units, n); });
}
template <qilsys::ForeignUnit U>
int MeasureUtf16ToUtf8(const U* source) {
  return MeasureUtf16ToUtf8(source, units::TerminatedLength(source));
}
template <qilsys::ForeignUnit U>
int MeasureUtf16ToUtf32(const U* source, int length) {
  return WithUnits(source, length, [](const TCodeUnit* units, int n) { return MeasureUtf16ToUtf32(units, n); });
}
template <qilsys::ForeignUnit U>
int MeasureUtf16ToUtf32(const U* source) {
  return MeasureUtf16ToUtf32(source, units::TerminatedLength(source));
}

template QILSYS_API int MeasureUtf16ToUtf8(const TForeignUnit*, int);
template QILSYS_API int MeasureUtf16ToUtf8(const TForeignUnit*);
template QILSYS_API int MeasureUtf16ToUtf32(const TForeignUnit*, int);
template QILSYS_API int MeasureUtf16ToUtf32(const TForeignUnit*);

}  // namespace Unicode
