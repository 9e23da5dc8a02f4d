/// Foreign text on its way into the functions of namespace Unicode.
#pragma once

#include "qilsys/TForeignText.h"

namespace qilsys::transcode {

/// Calls `f` with the units of `source` and their number. A negative length is no text to convert, but still has to
/// reach the test that raises for it.
template <class F>
auto WithUnits(const TForeignUnit* source, int length, F f) {
  static constexpr TCodeUnit Empty[1] = {};
  if (length < 0) return f(source ? Empty : nullptr, length);
  const qilsys::TForeignText text(source, length);
  return f(text.data(), text.length());
}

}  // namespace qilsys::transcode
