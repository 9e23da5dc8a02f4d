/// Narrow text to a floating-point number, the same on every system.
#pragma once

namespace qilsys::numbers {

/// What C's `strtod` gives in the "C" locale, whatever locale the host or the thread is in: decimal and hexadecimal
/// numbers, infinity and not-a-number. `errno` becomes ERANGE where the number is too large for a double, which gives
/// an infinity, and where the result is below the smallest normal double and not the number itself, but the nearest
/// there is; else it is left alone. Without a number `*end` is `text`.
double StringToDouble(const char* text, const char** end);

}  // namespace qilsys::numbers
