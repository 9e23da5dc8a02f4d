/// Digits of unsigned 64-bit numbers, written straight into the text that they are for.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "qilsys/TCodeUnit.h"

namespace qilsys::numbers {

inline constexpr std::array<std::uint64_t, 20> PowersOfTen = [] {
  std::array<std::uint64_t, 20> powers{};
  std::uint64_t power = 1;
  for (std::uint64_t& each : powers) {
    each = power;
    power *= 10;
  }
  return powers;
}();

/// "00" to "99" in units of the target, so that a division yields two digits and one store writes them.
template <class Unit>
inline constexpr std::array<Unit, 200> DigitPairs = [] {
  std::array<Unit, 200> pairs{};
  for (unsigned i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<Unit>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<Unit>('0' + i % 10);
  }
  return pairs;
}();

template <class Unit>
void WriteDigitPair(Unit* to, unsigned pair) {
  std::memcpy(to, &DigitPairs<Unit>[pair * 2], 2 * sizeof(Unit));
}

/// Number of decimal digits of `value`, 1 for zero.
inline int DecimalLength(std::uint64_t value) {
  const std::uint64_t positive = value | 1;
  // 1233 / 4096 is log10(2), close enough for 64 bits to be one short at most, which the table mends.
  const int guess = static_cast<int>(std::bit_width(positive)) * 1233 >> 12;
  return guess + (positive >= PowersOfTen[static_cast<unsigned>(guess)] ? 1 : 0);
}

/// Writes the decimal digits of `value` so that they end before `end`; returns where they begin. `Unit` is TCodeUnit,
/// or `char` for text that is still narrow.
template <class Unit>
Unit* WriteDecimalBefore(Unit* end, std::uint64_t value) {
  // Four digits a round: their two pairs come apart independently of the next round's division.
  while (value >= 10000) {
    const auto four = static_cast<unsigned>(value % 10000);
    value /= 10000;
    end -= 4;
    WriteDigitPair(end, four / 100);
    WriteDigitPair(end + 2, four % 100);
  }
  auto rest = static_cast<unsigned>(value);
  if (rest >= 100) {
    end -= 2;
    WriteDigitPair(end, rest % 100);
    rest /= 100;
  }
  if (rest >= 10) {
    end -= 2;
    WriteDigitPair(end, rest);
  } else {
    *--end = static_cast<Unit>('0' + rest);
  }
  return end;
}

/// Number of digits of `value`, and the digits themselves, in a base of 2 to 36 with lower-case letters or in base 64
/// with the digits of the base-64 alphabet. Any other base is undefined.
int DigitsLength(std::uint64_t value, int base);
TCodeUnit* WriteDigitsBefore(TCodeUnit* end, std::uint64_t value, int base);

}  // namespace qilsys::numbers
