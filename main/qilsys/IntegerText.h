/// Digits of unsigned 64-bit numbers, written straight into 16-bit units.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

#include "qilsys/TCodeUnit.h"

namespace qilsys::integertext {

/// Digits of the largest 64-bit number in base 2, the longest of all.
inline constexpr int MaxDigits = 64;

inline constexpr std::array<std::uint64_t, 20> s_powersOfTen = [] {
  std::array<std::uint64_t, 20> powers{};
  std::uint64_t power = 1;
  for (std::uint64_t& each : powers) {
    each = power;
    power *= 10;
  }
  return powers;
}();

/// "00" to "99", so that a division yields two digits.
inline constexpr std::array<TCodeUnit, 200> s_digitPairs = [] {
  std::array<TCodeUnit, 200> pairs{};
  for (unsigned i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<TCodeUnit>(u'0' + i / 10);
    pairs[2 * i + 1] = static_cast<TCodeUnit>(u'0' + i % 10);
  }
  return pairs;
}();

/// Number of decimal digits of `value`, 1 for zero.
inline int DecimalLength(std::uint64_t value) {
  const std::uint64_t positive = value | 1;
  // 1233 / 4096 is log10(2), close enough for 64 bits to be one short at most, which the table mends.
  const int guess = static_cast<int>(std::bit_width(positive)) * 1233 >> 12;
  return guess + (positive >= s_powersOfTen[static_cast<unsigned>(guess)] ? 1 : 0);
}

/// Writes the decimal digits of `value` so that they end before `end`; returns where they begin.
inline TCodeUnit* WriteDecimalBefore(TCodeUnit* end, std::uint64_t value) {
  while (value >= 100) {
    const auto pair = static_cast<unsigned>(value % 100) * 2;
    value /= 100;
    *--end = s_digitPairs[pair + 1];
    *--end = s_digitPairs[pair];
  }
  if (value >= 10) {
    *--end = s_digitPairs[static_cast<unsigned>(value) * 2 + 1];
    *--end = s_digitPairs[static_cast<unsigned>(value) * 2];
    return end;
  }
  *--end = static_cast<TCodeUnit>(u'0' + value);
  return end;
}

/// The same in a base of 2 to 36 with lower-case letters, or in base 64 with the digits of the base-64 alphabet, most
/// significant first. Any other base is undefined.
TCodeUnit* WriteDigitsBefore(TCodeUnit* end, std::uint64_t value, int base);

}  // namespace qilsys::integertext
