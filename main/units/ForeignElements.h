/// UTF-16 text on its way out as the elements of the platform's other unit type.
#pragma once

#include "qilsys/TCodeUnit.h"

namespace qilsys::units {

/// Writes the elements of a UTF-16 text, lone surrogates as they are, and returns how many it has; those that
/// `capacity` leaves no room for are only counted. Writes no terminator.
int StoreElements(const TCodeUnit* units, int length, TForeignUnit* target, int capacity);

}  // namespace qilsys::units
