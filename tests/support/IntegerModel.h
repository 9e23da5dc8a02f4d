/// A second reading of integers from text, for tests that compare.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

#include "qilsys/TCType.h"

namespace qilsys::test {

/// What all reads of an integer share, before the type that is read looks at its range.
struct ReadInteger {
  std::uint64_t pattern = 0;  ///< Of 64 bits; where it overflowed, all ones, or 0 in a negative number.
  bool negative = false;
  bool ok = false;
  int error = 0;  ///< As in `errno`: EINVAL without a digit, ERANGE after an overflow.
};

/// The documented steps, one after the other, for text of ASCII. `base` is 0 or from 2 to 36.
inline ReadInteger ReadIntegerByTheSteps(const std::string& text, int base) {
  ReadInteger read;
  std::size_t at = 0;
  const auto unit = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  const auto isSpace = [&](std::size_t i) { return TCType::isSpace(static_cast<TCodeUnit>(unit(i))); };
  while (isSpace(at)) ++at;
  read.negative = unit(at) == '-';
  if (unit(at) == '+' || unit(at) == '-') ++at;
  const bool prefix = unit(at) == '0' && (unit(at + 1) == 'x' || unit(at + 1) == 'X');
  if (base == 0) base = prefix ? 16 : unit(at) == '0' ? 8 : 10;
  if (base == 16 && prefix) at += 2;
  const std::size_t first = at;
  for (;; ++at) {
    const unsigned c = unit(at) | 0x20U;
    unsigned digit = 0;
    if (c >= '0' && c <= '9') {
      digit = c - '0';
    } else if (base > 10 && c >= 'a' && c < 'a' + static_cast<unsigned>(base) - 10) {
      digit = c - 'a' + 10;
    } else {
      break;
    }
    const std::uint64_t old = read.pattern;
    read.pattern =
        old * static_cast<unsigned>(base) + (read.negative ? 0 - std::uint64_t{digit} : std::uint64_t{digit});
    const bool over =
        read.negative ? static_cast<std::int64_t>(read.pattern) > static_cast<std::int64_t>(old) : read.pattern < old;
    if (over) return {read.negative ? 0 : ~std::uint64_t{0}, read.negative, false, ERANGE};
  }
  if (at == first) return {0, read.negative, false, EINVAL};
  read.ok = true;
  for (; at < text.size(); ++at) read.ok = read.ok && isSpace(at);
  return read;
}

/// What a type makes of it.
template <class T>
struct IntegerOf {
  T value;
  bool ok;
  int error;
  bool operator==(const IntegerOf&) const = default;
};

/// By the limits of a type: signed ones know below from above, unsigned ones take a "-" for a pattern of 64 bits.
template <class T>
IntegerOf<T> InType(const ReadInteger& read) {
  constexpr T Low = std::numeric_limits<T>::min();
  constexpr T High = std::numeric_limits<T>::max();
  const auto value = static_cast<std::int64_t>(read.pattern);
  if constexpr (std::is_signed_v<T>) {
    const bool above = !read.negative && read.pattern > static_cast<std::uint64_t>(High);
    if (above || (!read.negative && read.error == ERANGE) || value > High) return {High, false, ERANGE};
    if ((read.negative && read.error == ERANGE) || value < Low) return {Low, false, ERANGE};
  } else if (read.error == ERANGE || read.pattern > High) {
    return {High, false, ERANGE};
  }
  return {static_cast<T>(read.pattern), read.ok, read.error};
}

}  // namespace qilsys::test
