// Counting and copying by code point, and the ways into the texts of the standard library.
#include "qilsys/Unicode.h"

#include <climits>
#include <type_traits>

#include "transcode/UnicodeBulk.h"
#include "transcode/UnicodeWide.h"
#include "units/ForeignElements.h"
#include "units/TextLength.h"
#include "units/TextLimits.h"

namespace Unicode {

namespace {

using namespace qilsys::transcode;
namespace units = qilsys::units;

/// The code point at `p` with `left` units of text from there: a high surrogate that ends the text is alone, and what
/// lies behind the text is not read.
template <qilsys::TextUnit U>
char32_t CodePointWithin(const U* p, int left, int* units) {
  if (left > 1 || !CodePoint::IsHighSurrogate(static_cast<char32_t>(*p))) return CodePoint::GetCodePoint(p, units);
  *units = 1;
  return CodePoint::ReplacementCharacter;
}

template <qilsys::TextUnit U>
int CountTerminated(const U* text) {
  int count = 0;
  for (; text && *text != 0; ++count) {
    const bool pair = CodePoint::IsHighSurrogate(static_cast<char32_t>(text[0])) &&
                      CodePoint::IsLowSurrogate(static_cast<char32_t>(text[1]));
    text += pair ? 2 : 1;
  }
  return count;
}

template <qilsys::TextUnit U>
int CountCodePoints(const U* text, int start, int end) {
  if (end == 0 || start < 0) return 0;
  if (end < 0) return CountTerminated(text ? text + start : text);
  return start < end ? MeasureUtf16ToUtf32(text ? text + start : text, end - start) : 0;
}

template <qilsys::TextUnit U>
int SizeInUnits(const U* text, int length, int start, int codePoints) {
  if (codePoints == 0 || start < 0 || !text) return 0;
  if (codePoints < 0) return units::TerminatedLength(text + start);
  int index = start;
  for (int left = codePoints; left > 0 && index < length; --left) {
    int units = 0;
    CodePointWithin(text + index, length - index, &units);
    index += units;
  }
  return index - start;
}

template <qilsys::TextUnit S, qilsys::TextUnit T>
int ValidateCopy(const S* source, int length, T* target, int capacity) {
  if (!source) return 0;
  if (length < 0) length = units::TerminatedLength(source);
  if (!target) return length;
  if (static_cast<const void*>(source) == static_cast<const void*>(target) || capacity < 1) return 0;
  int written = 0;
  for (int index = 0; index < length && written < capacity - 1;) {
    int units = 0;
    const char32_t codePoint = CodePointWithin(source + index, length - index, &units);
    if (CodePoint::Utf32ToUtf16(&codePoint, target, written, capacity - 1) == 0) break;
    index += units;
  }
  target[written] = 0;
  return written;
}

template <qilsys::TextUnit S, qilsys::TextUnit T>
size_t CopyArray(const S* source, size_t length, T* target, size_t capacity) {
  if (!target) return 0;
  if (length < capacity && length <= INT_MAX) {
    const int room = capacity < INT_MAX ? static_cast<int>(capacity) : INT_MAX;
    return static_cast<size_t>(ValidateCopy(source, static_cast<int>(length), target, room)) + 1;
  }
  if (capacity > 0) target[0] = 0;
  return 0;
}

bool ShowsNothing(const TCodeUnit* text, size_t length) { return length == 0 || !text || *text == 0; }

int ToLength(size_t length) {
  if (length >= static_cast<size_t>(units::LengthLimit)) units::ThrowCapacity();
  return static_cast<int>(length);
}

/// A template, so that only the branch of this platform has to make sense.
template <class W>
std::basic_string<W> WideText(const TCodeUnit* text, size_t length) {
  if constexpr (qilsys::ForeignUnit<W>) {
    const int units = ToLength(length);
    std::basic_string<W> result(length, W{});
    result.resize(static_cast<size_t>(units::StoreElements(text, units, result.data(), units)));
    return result;
  } else {
    return {text, length};
  }
}

}  // namespace

int LengthInCodePoints(const TCodeUnit* text, int start, int end) { return CountCodePoints(text, start, end); }
template <qilsys::ForeignUnit U>
int LengthInCodePoints(const U* text, int start, int end) {
  return CountCodePoints(text, start, end);
}

int SubStringSizeInCodeUnits(const TCodeUnit* text, int length, int start, int codePoints) {
  return SizeInUnits(text, length, start, codePoints);
}
template <qilsys::ForeignUnit U>
int SubStringSizeInCodeUnits(const U* text, int length, int start, int codePoints) {
  return SizeInUnits(text, length, start, codePoints);
}

int StringValidateCopy(const TCodeUnit* source, int length, TCodeUnit* target, int capacity) {
  return ValidateCopy(source, length, target, capacity);
}
template <qilsys::TextUnit S, qilsys::TextUnit T>
  requires(qilsys::ForeignUnit<S> || qilsys::ForeignUnit<T>)
int StringValidateCopy(const S* source, int length, T* target, int capacity) {
  return ValidateCopy(source, length, target, capacity);
}

size_t toWCharArray(const TCodeUnit* source, size_t length, TCodeUnit* target, size_t capacity) {
  return CopyArray(source, length, target, capacity);
}
template <qilsys::TextUnit S, qilsys::TextUnit T>
  requires(qilsys::ForeignUnit<S> || qilsys::ForeignUnit<T>)
size_t toWCharArray(const S* source, size_t length, T* target, size_t capacity) {
  return CopyArray(source, length, target, capacity);
}

std::string toStdString(const TCodeUnit* text, size_t length) {
  std::string result;
  if (ShowsNothing(text, length)) return result;
  const int units = ToLength(length);
  const int size = MeasureUtf16ToUtf8(text, units);
  result.resize(static_cast<size_t>(size));
  WriteMeasuredUtf8(text, units, result.data(), size);
  return result;
}

std::u16string toStdU16String(const TCodeUnit* text, size_t length) {
  if (ShowsNothing(text, length)) return {};
  return std::u16string(text, text + length);
}

std::wstring toStdWString(const TCodeUnit* text, size_t length) {
  return ShowsNothing(text, length) ? std::wstring() : WideText<wchar_t>(text, length);
}

template <qilsys::ForeignUnit U>
std::string toStdString(const U* text, size_t length) {
  return WithUnits(text, ToLength(length),
                   [](const TCodeUnit* units, int n) { return toStdString(units, static_cast<size_t>(n)); });
}
template <qilsys::ForeignUnit U>
std::u16string toStdU16String(const U* text, size_t length) {
  return WithUnits(text, ToLength(length),
                   [](const TCodeUnit* units, int n) { return toStdU16String(units, static_cast<size_t>(n)); });
}
template <qilsys::ForeignUnit U>
std::wstring toStdWString(const U* text, size_t length) {
  return WithUnits(text, ToLength(length),
                   [](const TCodeUnit* units, int n) { return toStdWString(units, static_cast<size_t>(n)); });
}

template QILSYS_API int LengthInCodePoints(const TForeignUnit*, int, int);
template QILSYS_API int SubStringSizeInCodeUnits(const TForeignUnit*, int, int, int);
template QILSYS_API int StringValidateCopy(const TCodeUnit*, int, TForeignUnit*, int);
template QILSYS_API int StringValidateCopy(const TForeignUnit*, int, TCodeUnit*, int);
template QILSYS_API int StringValidateCopy(const TForeignUnit*, int, TForeignUnit*, int);
template QILSYS_API size_t toWCharArray(const TCodeUnit*, size_t, TForeignUnit*, size_t);
template QILSYS_API size_t toWCharArray(const TForeignUnit*, size_t, TCodeUnit*, size_t);
template QILSYS_API size_t toWCharArray(const TForeignUnit*, size_t, TForeignUnit*, size_t);
template QILSYS_API std::string toStdString(const TForeignUnit*, size_t);
template QILSYS_API std::u16string toStdU16String(const TForeignUnit*, size_t);
template QILSYS_API std::wstring toStdWString(const TForeignUnit*, size_t);

}  // namespace Unicode
