#include "qilsys/TCType.h"

#include <unicode/uchar.h>

namespace TCType {

namespace {

constexpr UChar32 ToIcu(char32_t c) { return static_cast<UChar32>(c); }

}  // namespace

TCodeUnit ToLower(TCodeUnit c) { return static_cast<TCodeUnit>(u_tolower(c)); }
TCodeUnit ToUpper(TCodeUnit c) { return static_cast<TCodeUnit>(u_toupper(c)); }
bool isAlpha(TCodeUnit c) { return u_isUAlphabetic(c); }
bool isAlpha32(char32_t c) { return u_isUAlphabetic(ToIcu(c)); }
bool isDigit(TCodeUnit c) { return u_isdigit(c); }
bool isDigit32(char32_t c) { return u_isdigit(ToIcu(c)); }
bool isAlnum(TCodeUnit c) { return u_hasBinaryProperty(c, UCHAR_POSIX_ALNUM); }
bool isGraph(TCodeUnit c) { return u_hasBinaryProperty(c, UCHAR_POSIX_GRAPH); }
bool isPrint(TCodeUnit c) { return u_hasBinaryProperty(c, UCHAR_POSIX_PRINT); }
bool isBlank(TCodeUnit c) { return u_isblank(c); }
bool isCntrl(TCodeUnit c) { return u_charType(c) == U_CONTROL_CHAR; }
bool isLower(TCodeUnit c) { return u_isULowercase(c); }
bool isUpper(TCodeUnit c) { return u_isUUppercase(c); }
bool isPunct(TCodeUnit c) { return u_ispunct(c); }
bool isXDigit(TCodeUnit c) { return u_isxdigit(c); }
bool isSpace32(char32_t c) { return c < 0x80 ? detail::IsAsciiSpace(c) : u_isUWhiteSpace(ToIcu(c)) != 0; }

}  // namespace TCType
