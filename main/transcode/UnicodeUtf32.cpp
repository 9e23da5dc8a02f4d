// The two conversions that ICU has no part in. They keep what ICU rejects: surrogate values, overlong forms and, from
// UTF-8, values above 0x10FFFF.

#include "qilsys/Unicode.h"

#include <cstdint>

#include "transcode/UnicodeFailure.h"
#include "units/TextLength.h"
#include "units/Utf.h"

namespace Unicode {

namespace {

using namespace qilsys::transcode;
namespace units = qilsys::units;

/// Reads a sequence and returns the bytes consumed, all that `left` counts where the sequence is cut by the end.
int ReadSequence(const char* source, int left, char32_t& value) {
  const auto lead = static_cast<unsigned char>(*source);
  const int continuation = CodePoint::CountUtf8CodeUnits(lead) - 1;
  value = CodePoint::ReplacementCharacter;
  if (continuation < 0) return 1;
  if (continuation >= left) return left;
  char32_t decoded = continuation == 0 ? lead : lead & (0x3Fu >> continuation);
  for (int i = 1; i <= continuation; ++i) {
    if (CodePoint::IsFirstUtf8CodeUnit(source[i])) return i;
    decoded = decoded << 6 | (static_cast<unsigned char>(source[i]) & 0x3F);
  }
  value = decoded;
  return continuation + 1;
}

}  // namespace

int Utf32ToUtf8(const char32_t* source, int length, char* target, int capacity) {
  RequireText(source, length, "Unicode::Utf32ToUtf8");
  if (!target) return MeasureUtf32ToUtf8(source, length);
  const std::int64_t limit = std::int64_t{capacity} - 1;
  char* end = target;
  int consumed = 0;
  for (; consumed < length; ++consumed) {
    const char32_t value = source[consumed] < 0x110000 ? source[consumed] : CodePoint::ReplacementCharacter;
    if (end - target + units::Utf8Length(value) > limit) break;
    end = units::WriteUtf8(value, end);
  }
  if (consumed < length) ThrowTargetTooSmall(capacity, "Unicode::Utf32ToUtf8");
  if (capacity > 0) *end = 0;
  return static_cast<int>(end - target);
}

int Utf8ToUtf32(const char* source, int length, char32_t* target, int capacity) {
  RequireText(source, length, "Unicode::Utf8ToUtf32");
  if (!target) return MeasureUtf8ToUtf32(source, length);
  const std::int64_t limit = std::int64_t{capacity} - 1;
  int written = 0;
  int consumed = 0;
  while (consumed < length && written < limit) {
    consumed += ReadSequence(source + consumed, length - consumed, target[written++]);
  }
  if (consumed < length) ThrowSourceLeft("Unicode::Utf8ToUtf32");
  if (capacity > 0) target[written] = 0;
  return written;
}

int Utf32ToUtf8(const char32_t* source, char* target, int capacity) {
  return Utf32ToUtf8(source, units::TerminatedLength(source), target, capacity);
}
int Utf8ToUtf32(const char* source, char32_t* target, int capacity) {
  return Utf8ToUtf32(source, units::TerminatedLength(source), target, capacity);
}

}  // namespace Unicode
