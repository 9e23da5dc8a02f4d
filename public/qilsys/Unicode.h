/// Whole buffers measured and converted among UTF-8, UTF-16 and UTF-32, and their line endings.
///
/// Lengths and capacities are counted in elements of the buffer that they belong to; a negative length raises. The
/// forms without a length take text that ends with NUL. Every function on units has a form for each TextUnit; where
/// the other form's elements are wider than 16 bits they hold code points.
///
/// Bad input is never a failure, it becomes U+FFFD. Failures are TStringCore::Exception: a null source, a negative
/// length, a target that is too small, and any status of ICU but success; so a target of ICU's that is filled to its
/// last element raises for the terminator that it lacks. UTF-8 of more than INT_MAX bytes, which no length here could
/// count, is TStringCore::CapacityException. No function has a state; all are safe from any thread.
#pragma once

#include <cstddef>
#include <string>

#include "qilsys/CodePoint.h"
#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"

class TStringCore;

namespace Unicode {

/// Length of the result in its elements, without a terminator.
QILSYS_API int MeasureUtf8ToUtf16(const char* source, int length);
QILSYS_API int MeasureUtf8ToUtf16(const char* source);
QILSYS_API int MeasureUtf8ToUtf32(const char* source, int length);
QILSYS_API int MeasureUtf8ToUtf32(const char* source);
QILSYS_API int MeasureUtf32ToUtf8(const char32_t* source, int length);
QILSYS_API int MeasureUtf32ToUtf8(const char32_t* source);
QILSYS_API int MeasureUtf32ToUtf16(const char32_t* source, int length);
QILSYS_API int MeasureUtf32ToUtf16(const char32_t* source);

/// Bytes that the text needs with every broken sequence replaced by EF BF BD. Never raises: 0 for null and for a
/// length below 1.
QILSYS_API int MeasureUtf8ToUtf8(const char* source, int length);
QILSYS_API int MeasureUtf8ToUtf8(const char* source);

/// Measured by ICU. A null source raises under the name of the conversion.
QILSYS_API int MeasureUtf16ToUtf8(const TCodeUnit* source, int length);
QILSYS_API int MeasureUtf16ToUtf8(const TCodeUnit* source);
template <qilsys::ForeignUnit U>
int MeasureUtf16ToUtf8(const U* source, int length);
template <qilsys::ForeignUnit U>
int MeasureUtf16ToUtf8(const U* source);
QILSYS_API int MeasureUtf16ToUtf32(const TCodeUnit* source, int length);
QILSYS_API int MeasureUtf16ToUtf32(const TCodeUnit* source);
template <qilsys::ForeignUnit U>
int MeasureUtf16ToUtf32(const U* source, int length);
template <qilsys::ForeignUnit U>
int MeasureUtf16ToUtf32(const U* source);

/// Converts as ICU does and returns the elements written, the terminator not counted. With a null target the result
/// is only measured: by MeasureUtf8ToUtf16 and MeasureUtf32ToUtf16 here, and by ICU where the source is UTF-16,
/// which raises for a result of 0 elements.
QILSYS_API int Utf8ToUtf16(const char* source, int length, TCodeUnit* target, int capacity);
QILSYS_API int Utf8ToUtf16(const char* source, TCodeUnit* target, int capacity);
template <qilsys::ForeignUnit U>
int Utf8ToUtf16(const char* source, int length, U* target, int capacity);
template <qilsys::ForeignUnit U>
int Utf8ToUtf16(const char* source, U* target, int capacity);
QILSYS_API int Utf32ToUtf16(const char32_t* source, int length, TCodeUnit* target, int capacity);
QILSYS_API int Utf32ToUtf16(const char32_t* source, TCodeUnit* target, int capacity);
template <qilsys::ForeignUnit U>
int Utf32ToUtf16(const char32_t* source, int length, U* target, int capacity);
template <qilsys::ForeignUnit U>
int Utf32ToUtf16(const char32_t* source, U* target, int capacity);
QILSYS_API int Utf16ToUtf8(const TCodeUnit* source, int length, char* target, int capacity);
QILSYS_API int Utf16ToUtf8(const TCodeUnit* source, char* target, int capacity);
template <qilsys::ForeignUnit U>
int Utf16ToUtf8(const U* source, int length, char* target, int capacity);
template <qilsys::ForeignUnit U>
int Utf16ToUtf8(const U* source, char* target, int capacity);
QILSYS_API int Utf16ToUtf32(const TCodeUnit* source, int length, char32_t* target, int capacity);
QILSYS_API int Utf16ToUtf32(const TCodeUnit* source, char32_t* target, int capacity);
template <qilsys::ForeignUnit U>
int Utf16ToUtf32(const U* source, int length, char32_t* target, int capacity);
template <qilsys::ForeignUnit U>
int Utf16ToUtf32(const U* source, char32_t* target, int capacity);

/// Converts like CodePoint::Utf8ToUtf32, with no upper limit on values; writes a NUL, for which one element of
/// `capacity` is kept. A sequence cut by the end of the source is U+FFFD. Returns the code points written.
QILSYS_API int Utf8ToUtf32(const char* source, int length, char32_t* target, int capacity);
QILSYS_API int Utf8ToUtf32(const char* source, char32_t* target, int capacity);

/// Converts surrogate values into three bytes each; writes a NUL, for which one byte of `capacity` is kept. Returns
/// the bytes written.
QILSYS_API int Utf32ToUtf8(const char32_t* source, int length, char* target, int capacity);
QILSYS_API int Utf32ToUtf8(const char32_t* source, char* target, int capacity);

/// Code points from index `start` up to `end`, or up to the NUL if `end` is negative; 0 for a zero `end` and for a
/// negative `start`.
QILSYS_API int LengthInCodePoints(const TCodeUnit* text, int start, int end);
template <qilsys::ForeignUnit U>
int LengthInCodePoints(const U* text, int start, int end);

/// Units that the next `codePoints` code points from index `start` take, at most up to `length`; a negative
/// `codePoints` means up to the NUL.
QILSYS_API int SubStringSizeInCodeUnits(const TCodeUnit* text, int length, int start, int codePoints);
template <qilsys::ForeignUnit U>
int SubStringSizeInCodeUnits(const U* text, int length, int start, int codePoints);

/// Copies whole code points while they and a NUL fit, with lone surrogates as U+FFFD, and returns the units written.
/// A negative `length` means up to the NUL. Null source, or target equal to source: 0. Null target: the length.
QILSYS_API int StringValidateCopy(const TCodeUnit* source, int length, TCodeUnit* target, int capacity);
template <qilsys::TextUnit S, qilsys::TextUnit T>
  requires(qilsys::ForeignUnit<S> || qilsys::ForeignUnit<T>)
int StringValidateCopy(const S* source, int length, T* target, int capacity);
template <qilsys::ForeignUnit T>
int StringValidateCopy(std::nullptr_t, int, T*, int) {
  return 0;
}
template <qilsys::ForeignUnit S>
int StringValidateCopy(const S* source, int length, std::nullptr_t, int capacity) {
  return StringValidateCopy(source, length, static_cast<S*>(nullptr), capacity);
}

/// Copies like StringValidateCopy and returns the units written, the NUL included; 0 for a null target, and if
/// `length` is not below `capacity`, where the target then holds an empty text.
QILSYS_API size_t toWCharArray(const TCodeUnit* source, size_t length, TCodeUnit* target, size_t capacity);
template <qilsys::TextUnit S, qilsys::TextUnit T>
  requires(qilsys::ForeignUnit<S> || qilsys::ForeignUnit<T>)
size_t toWCharArray(const S* source, size_t length, T* target, size_t capacity);
template <qilsys::ForeignUnit S>
size_t toWCharArray(const S*, size_t, std::nullptr_t, size_t) {
  return 0;
}

/// UTF-8. Empty for text that begins with a NUL, whatever its length; so are the next two.
QILSYS_API std::string toStdString(const TCodeUnit* text, size_t length);
template <qilsys::ForeignUnit U>
std::string toStdString(const U* text, size_t length);

/// The units unchanged.
QILSYS_API std::u16string toStdU16String(const TCodeUnit* text, size_t length);
template <qilsys::ForeignUnit U>
std::u16string toStdU16String(const U* text, size_t length);

/// The units unchanged, or code points where wchar_t holds these; a lone surrogate then stays an element.
QILSYS_API std::wstring toStdWString(const TCodeUnit* text, size_t length);
template <qilsys::ForeignUnit U>
std::wstring toStdWString(const U* text, size_t length);

/// Turns CR LF, runs of CR and most lone CR into LF, in place, writes a NUL behind and returns the new length. The
/// forms with a length stop there and need room for one element more; the others stop at the NUL.
QILSYS_API size_t normalizeLineEndings(char* text);
QILSYS_API size_t normalizeLineEndings(char* text, size_t length);
QILSYS_API size_t normalizeLineEndings(TCodeUnit* text);
QILSYS_API size_t normalizeLineEndings(TCodeUnit* text, size_t length);
template <qilsys::ForeignUnit U>
size_t normalizeLineEndings(U* text);
template <qilsys::ForeignUnit U>
size_t normalizeLineEndings(U* text, size_t length);

/// A copy with each line ending as CR LF.
QILSYS_API TStringCore unixToDos(const TCodeUnit* text, size_t length);
template <qilsys::ForeignUnit U>
TStringCore unixToDos(const U* text, size_t length);

}  // namespace Unicode
