/// Runs one test through both unit types of text.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "qilsys/CodePoint.h"
#include "support/Literals.h"
#include "support/RowName.h"

namespace qilsys::test {

/// The text with one element for each unit, so that a surrogate pair stays two elements in either form.
template <TextUnit U>
std::basic_string<U> As(std::u16string_view units) {
  return std::basic_string<U>(units.begin(), units.end());
}

/// True where an element of the foreign form is a whole code point, false where it is a unit.
inline constexpr bool ForeignHoldsCodePoints = sizeof(TForeignUnit) > sizeof(TCodeUnit);

/// One text in foreign elements: the one of these two spellings that they hold.
inline std::basic_string<TForeignUnit> Foreign(std::u32string_view codePoints, std::u16string_view units) {
  if (!ForeignHoldsCodePoints) return As<TForeignUnit>(units);
  std::basic_string<TForeignUnit> elements;
  for (const char32_t codePoint : codePoints) elements += static_cast<TForeignUnit>(codePoint);
  return elements;
}

/// Calls `f` with a value of each unit type; its failures name the type.
template <class F>
void ForEachUnitType(F f) {
  {
    SCOPED_TRACE("the form on TCodeUnit");
    f(TCodeUnit{});
  }
  {
    SCOPED_TRACE("the form on TForeignUnit");
    f(TForeignUnit{});
  }
}

}  // namespace qilsys::test
