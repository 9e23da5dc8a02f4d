/// Taking the units and code points of a set out of a text, or putting a unit in their place, where the text stands.
///
/// Text and set may overlap and may be null; a set is `setLen` units, NULs included. The text is terminated at
/// `length`.
#pragma once

#include "qilsys/TCodeUnit.h"

namespace qilsys::search {

/// The first index at or after `start` that removeSet would take out, or -1.
int findRemovable(const TCodeUnit* text, int length, const TCodeUnit* set, int setLen, int start);

/// Takes every match at or after `start` out and gives the new length; a negative `start` finds nothing.
///
/// A set with a surrogate is taken by code point and the text then ends at its first NUL; any other set by unit. A
/// shortened text ends with NUL, but with the digit zero where the set has several units, one at least not ASCII and
/// none a surrogate.
int removeSet(TCodeUnit* text, int length, const TCodeUnit* set, int setLen, int start);

/// Puts one unit `c` in place of every match at or after `start` and gives the new length, shorter where a match had
/// two units. Lone surrogates outside the set stay as they are. The text ends at its first NUL, unless set and `c` are
/// both ASCII.
int replaceSet(TCodeUnit* text, int length, const TCodeUnit* set, int setLen, TCodeUnit c, int start);

}  // namespace qilsys::search
