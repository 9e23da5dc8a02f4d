/// Literals, written without a prefix, in the unit types that the platform decides.
#pragma once

#include <cwchar>

/// QILSYS_UNITS("abc") and QILSYS_UNITS('a') are TCodeUnit, QILSYS_FOREIGN is TForeignUnit. Needed only where a function
/// has one form, or where two arguments of one type meet.
#if WCHAR_MAX > 0xFFFF
#define QILSYS_UNITS(literal) u##literal
#define QILSYS_FOREIGN(literal) L##literal
#else
#define QILSYS_UNITS(literal) L##literal
#define QILSYS_FOREIGN(literal) u##literal
#endif
