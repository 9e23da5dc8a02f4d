/// Questions about one character, answered by ICU's properties, whatever the C locale.
///
/// The forms on a unit take a surrogate half as it is, so it has no letter properties; a wide character that needs
/// two units counts as U+FFFD. The forms that end in 32 take any code point. Safe from any thread; none raises.
#pragma once

#include "qilsys/CodePoint.h"
#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"
#include "qilsys/TForeignText.h"

namespace TCType {

namespace detail {

/// White space of ASCII: U+0020 and U+0009 to U+000D.
constexpr bool IsAsciiSpace(char32_t c) { return c == 0x20 || c - 0x9 <= 0xD - 0x9; }

}  // namespace detail

QILSYS_API TCodeUnit ToLower(TCodeUnit c);
QILSYS_API TCodeUnit ToUpper(TCodeUnit c);
QILSYS_API bool isAlpha(TCodeUnit c);
QILSYS_API bool isAlpha32(char32_t c);
/// Every decimal digit of Unicode, not only the ASCII ones.
QILSYS_API bool isDigit(TCodeUnit c);
QILSYS_API bool isDigit32(char32_t c);
QILSYS_API bool isAlnum(TCodeUnit c);
QILSYS_API bool isGraph(TCodeUnit c);
QILSYS_API bool isPrint(TCodeUnit c);
QILSYS_API bool isBlank(TCodeUnit c);
QILSYS_API bool isCntrl(TCodeUnit c);
QILSYS_API bool isLower(TCodeUnit c);
QILSYS_API bool isUpper(TCodeUnit c);
QILSYS_API bool isPunct(TCodeUnit c);
QILSYS_API bool isXDigit(TCodeUnit c);

/// The White_Space property.
QILSYS_API bool isSpace32(char32_t c);
inline bool isSpace(TCodeUnit c) { return c < 0x80 ? detail::IsAsciiSpace(c) : isSpace32(c); }
/// Of the code point at `p`, which is not null.
inline bool isSpace(const TCodeUnit* p) {
  return *p < 0x80 ? detail::IsAsciiSpace(*p) : isSpace32(CodePoint::GetCodePoint(p));
}

template <qilsys::ForeignUnit U>
U ToLower(U c) {
  return static_cast<U>(ToLower(qilsys::ForeignToUnit(c)));
}
template <qilsys::ForeignUnit U>
U ToUpper(U c) {
  return static_cast<U>(ToUpper(qilsys::ForeignToUnit(c)));
}
template <qilsys::ForeignUnit U>
bool isAlpha(U c) {
  return isAlpha(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isDigit(U c) {
  return isDigit(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isAlnum(U c) {
  return isAlnum(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isGraph(U c) {
  return isGraph(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isPrint(U c) {
  return isPrint(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isBlank(U c) {
  return isBlank(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isCntrl(U c) {
  return isCntrl(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isLower(U c) {
  return isLower(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isUpper(U c) {
  return isUpper(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isPunct(U c) {
  return isPunct(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isXDigit(U c) {
  return isXDigit(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isSpace(U c) {
  return isSpace(qilsys::ForeignToUnit(c));
}
template <qilsys::ForeignUnit U>
bool isSpace(const U* p) {
  return isSpace32(CodePoint::GetCodePoint(p));
}

}  // namespace TCType
