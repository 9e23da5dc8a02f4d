/// The fields of a text between separators: walked once, whatever is made of them.
#pragma once

#include "search/Search.h"
#include "units/UnitScan.h"

namespace qilsys::search {

/// Calls `field(offset, length)` for each field, the empty ones too. There is one more than there are separators.
template <class Field>
void eachField(const TCodeUnit* text, int len, TCodeUnit sep, Field field) {
  int offset = 0;
  units::scanEach(len, units::IsUnit<units::UnitLanes>(text, sep), [&](int at) {
    field(offset, at - offset);
    offset = at + 1;
  });
  field(offset, len - offset);
}

/// As above, for a separator of `sepLen` units, at least one.
template <class Field>
void eachField(const TCodeUnit* text, int len, const TCodeUnit* sep, int sepLen, CaseSensitivity cs, Field field) {
  if (sepLen == 1 && cs == TStringOptions::CaseSensitive) return eachField(text, len, sep[0], field);
  int offset = 0;
  for (int at; (at = findStrCore(text, len, sep, sepLen, offset, cs)) >= 0; offset = at + sepLen) {
    field(offset, at - offset);
  }
  field(offset, len - offset);
}

/// As above, without the empty fields where `dropEmpty` says so.
template <class Field>
void eachField(const TCodeUnit* text, int len, const TCodeUnit* sep, int sepLen, bool dropEmpty, CaseSensitivity cs,
               Field field) {
  eachField(text, len, sep, sepLen, cs, [&](int offset, int length) {
    if (length != 0 || !dropEmpty) field(offset, length);
  });
}

}  // namespace qilsys::search
