/// What carries the functions of namespace Unicode between TCodeUnit and TForeignUnit.
#pragma once

#include "qilsys/TForeignText.h"

namespace Unicode {

/// Calls `f` with the units of `source` and their number. A negative length is no text to convert, but still has to
/// reach the test that raises for it.
template <class F>
auto WithUnits(const TForeignUnit* source, int length, F f) {
  static constexpr TCodeUnit Empty[1] = {};
  if (length < 0) return f(source ? Empty : nullptr, length);
  const TForeignText text(source, length);
  return f(text.data(), text.length());
}

/// Writes the elements of a UTF-16 text, lone surrogates as they are, and returns how many it has; those that
/// `capacity` leaves no room for are only counted. Writes no terminator.
int StoreElements(const TCodeUnit* units, int length, TForeignUnit* target, int capacity);

}  // namespace Unicode
