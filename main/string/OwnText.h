/// Arguments that point into the text they go to.
#pragma once

#include <functional>

#include "qilsys/TStringCore.h"

namespace qilsys::string {

/// Whether `p` is an address of this string's text, the terminator included.
inline bool InSelf(const TStringCore& text, const TCodeUnit* p) noexcept {
  const std::less_equal<const TCodeUnit*> notAbove;
  return notAbove(text.cbegin(), p) && notAbove(p, text.cend());
}

}  // namespace qilsys::string
