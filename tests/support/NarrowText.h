/// Texts as the standard's own strings, unit by unit, so that failures print them and no conversion takes part.
#pragma once

#include <string>

#include "qilsys/TStringCore.h"

namespace qilsys::test {

/// Units below 0x80 as characters, any other unit as "?".
inline std::string Narrow(const TStringCore& text) {
  std::string narrow;
  for (int i = 0; i < text.length(); ++i) {
    const auto unit = static_cast<unsigned>(text.constData()[i]);
    narrow.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
  }
  return narrow;
}

/// All units as they are.
inline std::u16string Units(const TStringCore& text) {
  return std::u16string(text.constData(), text.constData() + text.length());
}

}  // namespace qilsys::test
