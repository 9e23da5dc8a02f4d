/// How tests look at a string: its units, and how a failure prints them.
#pragma once

#include <iomanip>
#include <ostream>
#include <string>

#include "qilsys/TStringCore.h"

namespace qilsys::test {

/// All units, embedded NULs included; to compare with a literal that ends in `s`.
inline std::u16string UnitsOf(const TStringCore& text) {
  return std::u16string(text.constData(), text.constData() + text.length());
}

/// Units below 0x80 as characters, any other unit as "?", so that failures print them and no conversion takes part.
inline std::string Narrow(const TStringCore& text) {
  std::string narrow;
  for (const TCodeUnit unit : text) narrow.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
  return narrow;
}

}  // namespace qilsys::test

/// Found by GoogleTest. Units that are not printable ASCII show as \uXXXX.
inline void PrintTo(const TStringCore& text, std::ostream* out) {
  *out << '"';
  for (const TCodeUnit unit : text) {
    if (unit >= 0x20 && unit < 0x7F) {
      *out << static_cast<char>(unit);
    } else {
      *out << "\\u" << std::hex << std::setw(4) << std::setfill('0') << static_cast<unsigned>(unit) << std::dec;
    }
  }
  *out << '"';
}
