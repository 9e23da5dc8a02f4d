/// Numeric helpers with exact rules for rounding and for not-a-number.
#pragma once

#include <vector>

#include "qilsys/Export.h"

namespace TMath {

QILSYS_API double DegreesToRadians(double degrees);
QILSYS_API double RadiansToDegrees(double radians);

/// a times b, plus half of c, divided by c, all truncating and in 64 bits, clamped to an int; -1 if c is 0.
QILSYS_API int MulDiv(int a, int b, int c);

/// Rounds to this many decimal digits, halves away from zero; negative digits round before the point. Never gives
/// negative zero.
QILSYS_API double round2(double value, short digits);

/// Equal, or both not-a-number.
QILSYS_API bool identical(double a, double b);
/// Equal sizes, and identical pair by pair.
QILSYS_API bool identical(const std::vector<double>& a, const std::vector<double>& b);
QILSYS_API bool identical(const std::vector<std::vector<double>>& a, const std::vector<std::vector<double>>& b);

}  // namespace TMath
