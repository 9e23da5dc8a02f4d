/// The 16-bit unit of all text, and the bridge by which the other unit type of a platform reaches it.
///
/// | platform        | `TCodeUnit` | `TForeignUnit`                                     |
/// |-----------------|-------------|----------------------------------------------------|
/// | 16-bit wchar_t  | `wchar_t`   | `char16_t`, the same units under another name      |
/// | wider wchar_t   | `char16_t`  | `wchar_t`, one code point an element               |
///
/// Every operation on `const TCodeUnit*` has a second form on `const TForeignUnit*`. The second form turns its
/// argument into a TForeignText and calls the first, so each operation has one body.
#pragma once

#include <concepts>
#include <cwchar>

#include "qilsys/Export.h"

#if WCHAR_MAX > 0xFFFF
using TCodeUnit = char16_t;
using TForeignUnit = wchar_t;
#else
using TCodeUnit = wchar_t;
using TForeignUnit = char16_t;
#endif

static_assert(sizeof(TCodeUnit) == 2);

namespace qilsys {

/// True for the unit type that is not the platform's own. Constraining a template on it, rather than overloading,
/// keeps a literal `nullptr` unambiguous: it can only mean the TCodeUnit form.
template <class T>
concept ForeignUnit = std::same_as<T, TForeignUnit>;

}  // namespace qilsys
