/// The quick way to print the floating-point numbers that messages are made of.
#pragma once

#include "numbers/DoubleText.h"

namespace qilsys::numbers {

/// Prints `value`, which is finite, into the empty `text` as "f" or "g" would, where it is of common size and asked for
/// with few digits; returns false, and leaves `text` alone, in any other case. The digits are exact, as those of the
/// general print are.
bool PrintPlainDouble(double value, char format, int precision, DoubleText& text);

}  // namespace qilsys::numbers
