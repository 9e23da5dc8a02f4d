// Whole buffers converted: by the kernel as far as it goes, and by ICU, whose statuses become exceptions.
#include "qilsys/Unicode.h"

#include <unicode/ustring.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <utility>

#include "transcode/UnicodeBulk.h"
#include "transcode/UnicodeFailure.h"
#include "transcode/UnicodeWide.h"
#include "units/ForeignElements.h"
#include "units/TextLength.h"
#include "units/TextLimits.h"
#include "units/UnitBuffer.h"

namespace Unicode {

namespace {

using namespace qilsys::transcode;
namespace units = qilsys::units;

constexpr UChar32 Substitute = CodePoint::ReplacementCharacter;

struct Outcome {
  int32_t length = 0;
  int32_t substitutions = 0;
  UErrorCode status = U_ZERO_ERROR;
};

const UChar* ToIcu(const TCodeUnit* units) { return reinterpret_cast<const UChar*>(units); }
UChar* ToIcu(TCodeUnit* units) { return reinterpret_cast<UChar*>(units); }
const UChar32* ToIcu(const char32_t* codePoints) { return reinterpret_cast<const UChar32*>(codePoints); }
UChar32* ToIcu(char32_t* codePoints) { return reinterpret_cast<UChar32*>(codePoints); }

/// The whole result if the fast way came to the end and there is room for the terminator.
template <class T>
bool IsDone(Progress done, int length, T* target, int capacity, Outcome& outcome) {
  if (done.consumed != static_cast<size_t>(length) || std::cmp_greater_equal(done.written, capacity)) return false;
  target[done.written] = 0;
  outcome.length = static_cast<int32_t>(done.written);
  return true;
}

Outcome RunUtf8ToUtf16(const char* source, int length, TCodeUnit* target, int capacity) {
  const Progress done = ConvertUtf8(source, length, target, capacity);
  Outcome outcome;
  if (IsDone(done, length, target, capacity, outcome)) return outcome;
  const int written = static_cast<int>(done.written);
  u_strFromUTF8WithSub(ToIcu(target + written), capacity - written, &outcome.length, source + done.consumed,
                       length - static_cast<int>(done.consumed), Substitute, &outcome.substitutions, &outcome.status);
  outcome.length += written;
  return outcome;
}

Outcome RunUtf16ToUtf8(const TCodeUnit* source, int length, char* target, int capacity) {
  const Progress done = ConvertUtf16(source, length, target, capacity);
  Outcome outcome;
  if (IsDone(done, length, target, capacity, outcome)) return outcome;
  const int written = static_cast<int>(done.written);
  u_strToUTF8WithSub(target + written, capacity - written, &outcome.length, ToIcu(source + done.consumed),
                     length - static_cast<int>(done.consumed), Substitute, &outcome.substitutions, &outcome.status);
  outcome.length += written;
  return outcome;
}

/// Raises where the result has more elements than an `int` counts; ICU would give a length that has wrapped. Texts that
/// are too short for that are not counted.
void RequireCountable(const TCodeUnit* source, int length) {
  if (length > INT_MAX / 3 && BestKernel().countUtf8(source, static_cast<size_t>(length)) > INT_MAX) {
    units::ThrowCapacity();
  }
}
void RequireCountable(const char32_t* source, int length) {
  // The measure is clipped; a target for exactly so many could not be terminated.
  if (length > INT_MAX / 2 && MeasureUtf32ToUtf16(source, length) == INT_MAX) units::ThrowCapacity();
}

/// ICU's answer to a null target.
Outcome PreflightUtf16ToUtf8(const TCodeUnit* source, int length) {
  Outcome outcome;
  if (length == 0) {
    u_strToUTF8WithSub(nullptr, 0, &outcome.length, ToIcu(source), 0, Substitute, &outcome.substitutions,
                       &outcome.status);
    return outcome;
  }
  const std::int64_t bytes = BestKernel().countUtf8(source, static_cast<size_t>(length));
  if (bytes > INT_MAX) units::ThrowCapacity();
  outcome.length = static_cast<int32_t>(bytes);
  outcome.status = U_BUFFER_OVERFLOW_ERROR;
  return outcome;
}

Outcome RunUtf16ToUtf32(const TCodeUnit* source, int length, char32_t* target, int capacity) {
  Outcome outcome;
  u_strToUTF32WithSub(ToIcu(target), capacity, &outcome.length, ToIcu(source), length, Substitute,
                      &outcome.substitutions, &outcome.status);
  return outcome;
}

/// The length of a run without a target, which by its nature ends in an overflow.
int Preflighted(Outcome outcome, const char* function, const char* interface) {
  if (outcome.status != U_BUFFER_OVERFLOW_ERROR) RequireSuccess(outcome.status, function, interface);
  return outcome.length;
}

/// What ICU's status would be for `length` elements in a target of `capacity`.
UErrorCode TargetStatus(int length, int capacity) {
  if (capacity < 0) return U_ILLEGAL_ARGUMENT_ERROR;
  if (length > capacity) return U_BUFFER_OVERFLOW_ERROR;
  return length == capacity ? U_STRING_NOT_TERMINATED_WARNING : U_ZERO_ERROR;
}

int StoreTerminated(const TCodeUnit* text, int textLength, TForeignUnit* target, int capacity, const char* function,
                    const char* interface) {
  const int length = units::StoreElements(text, textLength, target, capacity);
  RequireSuccess(TargetStatus(length, capacity), function, interface);
  target[length] = 0;
  return length;
}

}  // namespace

int Utf8ToUtf16(const char* source, int length, TCodeUnit* target, int capacity) {
  RequireText(source, length, "Unicode::Utf8ToUtf16");
  if (!target) return MeasureUtf8ToUtf16(source, length);
  const Outcome outcome = RunUtf8ToUtf16(source, length, target, capacity);
  RequireSuccess(outcome.status, "Unicode::Utf8ToUtf16", "t_u_strFromUTF8WithSub");
  return outcome.length;
}

int Utf32ToUtf16(const char32_t* source, int length, TCodeUnit* target, int capacity) {
  RequireText(source, length, "Unicode::Utf32ToUtf16");
  if (!target) return MeasureUtf32ToUtf16(source, length);
  RequireCountable(source, length);
  Outcome outcome;
  u_strFromUTF32WithSub(ToIcu(target), capacity, &outcome.length, ToIcu(source), length, Substitute,
                        &outcome.substitutions, &outcome.status);
  RequireSuccess(outcome.status, "Unicode::Utf32ToUtf16", "u_strFromUTF32WithSub");
  return outcome.length;
}

int Utf16ToUtf8(const TCodeUnit* source, int length, char* target, int capacity) {
  RequireText(source, length, "Unicode::Utf16ToUtf8");
  if (!target) return Preflighted(PreflightUtf16ToUtf8(source, length), "Unicode::Utf16ToUtf8", "t_u_strToUTF8WithSub");
  RequireCountable(source, length);
  const Outcome outcome = RunUtf16ToUtf8(source, length, target, capacity);
  RequireSuccess(outcome.status, "Unicode::Utf16ToUtf8", "t_u_strToUTF8WithSub");
  return outcome.length;
}

int Utf16ToUtf32(const TCodeUnit* source, int length, char32_t* target, int capacity) {
  RequireText(source, length, "Unicode::Utf16ToUtf32");
  if (!target) {
    return Preflighted(RunUtf16ToUtf32(source, length, nullptr, 0), "Unicode::Utf16ToUtf32", "t_u_strToUTF32WithSub");
  }
  const Outcome outcome = RunUtf16ToUtf32(source, length, target, capacity);
  RequireSuccess(outcome.status, "Unicode::Utf16ToUtf32", "t_u_strToUTF32WithSub");
  return outcome.length;
}

int Utf8ToUtf16(const char* source, TCodeUnit* target, int capacity) {
  return Utf8ToUtf16(source, units::TerminatedLength(source), target, capacity);
}
int Utf32ToUtf16(const char32_t* source, TCodeUnit* target, int capacity) {
  return Utf32ToUtf16(source, units::TerminatedLength(source), target, capacity);
}
int Utf16ToUtf8(const TCodeUnit* source, char* target, int capacity) {
  return Utf16ToUtf8(source, units::TerminatedLength(source), target, capacity);
}
int Utf16ToUtf32(const TCodeUnit* source, char32_t* target, int capacity) {
  return Utf16ToUtf32(source, units::TerminatedLength(source), target, capacity);
}

template <qilsys::ForeignUnit U>
int Utf8ToUtf16(const char* source, int length, U* target, int capacity) {
  RequireText(source, length, "Unicode::Utf8ToUtf16");
  if (!target) return sizeof(U) == 2 ? MeasureUtf8ToUtf16(source, length) : MeasureUtf8ToUtf32(source, length);
  const size_t room = static_cast<size_t>(length) + 1;  // no byte becomes more than one unit
  const units::UnitBuffer units(room);
  const Outcome outcome =
      RunUtf8ToUtf16(source, length, units.data(), static_cast<int>(std::min<size_t>(room, INT_MAX)));
  RequireSuccess(outcome.status, "Unicode::Utf8ToUtf16", "t_u_strFromUTF8WithSub");
  return StoreTerminated(units.data(), outcome.length, target, capacity, "Unicode::Utf8ToUtf16",
                         "t_u_strFromUTF8WithSub");
}
template <qilsys::ForeignUnit U>
int Utf8ToUtf16(const char* source, U* target, int capacity) {
  return Utf8ToUtf16(source, units::TerminatedLength(source), target, capacity);
}
template <qilsys::ForeignUnit U>
int Utf32ToUtf16(const char32_t* source, int length, U* target, int capacity) {
  RequireText(source, length, "Unicode::Utf32ToUtf16");
  if (!target) return sizeof(U) == 2 ? MeasureUtf32ToUtf16(source, length) : length;
  const int room = MeasureUtf32ToUtf16(source, length);
  if (room >= units::LengthLimit) units::ThrowCapacity();
  const units::UnitBuffer units(static_cast<size_t>(room) + 1);
  const int written = Utf32ToUtf16(source, length, units.data(), room + 1);
  return StoreTerminated(units.data(), written, target, capacity, "Unicode::Utf32ToUtf16", "u_strFromUTF32WithSub");
}
template <qilsys::ForeignUnit U>
int Utf32ToUtf16(const char32_t* source, U* target, int capacity) {
  return Utf32ToUtf16(source, units::TerminatedLength(source), target, capacity);
}
template <qilsys::ForeignUnit U>
int Utf16ToUtf8(const U* source, int length, char* target, int capacity) {
  return WithUnits(source, length,
                   [=](const TCodeUnit* units, int n) { return Utf16ToUtf8(units, n, target, capacity); });
}
template <qilsys::ForeignUnit U>
int Utf16ToUtf8(const U* source, char* target, int capacity) {
  return Utf16ToUtf8(source, units::TerminatedLength(source), target, capacity);
}
template <qilsys::ForeignUnit U>
int Utf16ToUtf32(const U* source, int length, char32_t* target, int capacity) {
  return WithUnits(source, length,
                   [=](const TCodeUnit* units, int n) { return Utf16ToUtf32(units, n, target, capacity); });
}
template <qilsys::ForeignUnit U>
int Utf16ToUtf32(const U* source, char32_t* target, int capacity) {
  return Utf16ToUtf32(source, units::TerminatedLength(source), target, capacity);
}

template QILSYS_API int Utf8ToUtf16(const char*, int, TForeignUnit*, int);
template QILSYS_API int Utf8ToUtf16(const char*, TForeignUnit*, int);
template QILSYS_API int Utf32ToUtf16(const char32_t*, int, TForeignUnit*, int);
template QILSYS_API int Utf32ToUtf16(const char32_t*, TForeignUnit*, int);
template QILSYS_API int Utf16ToUtf8(const TForeignUnit*, int, char*, int);
template QILSYS_API int Utf16ToUtf8(const TForeignUnit*, char*, int);
template QILSYS_API int Utf16ToUtf32(const TForeignUnit*, int, char32_t*, int);
template QILSYS_API int Utf16ToUtf32(const TForeignUnit*, char32_t*, int);

}  // namespace Unicode

namespace qilsys::transcode {

void WriteMeasuredUtf8(const TCodeUnit* source, int length, char* target, int bytes) {
  const Unicode::Outcome outcome = Unicode::RunUtf16ToUtf8(source, length, target, bytes);
  if (outcome.status != U_STRING_NOT_TERMINATED_WARNING) {
    RequireSuccess(outcome.status, "Unicode::Utf16ToUtf8", "t_u_strToUTF8WithSub");
  }
}

}  // namespace qilsys::transcode
