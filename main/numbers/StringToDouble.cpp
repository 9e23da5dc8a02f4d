// Not by `strtod`, whose forms for one locale some runtimes lack and others get wrong: they read the comma of the
// process's locale all the same, a "d" for an exponent, or no hexadecimal digits.
#include "numbers/StringToDouble.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>

namespace qilsys::numbers {
namespace {

bool IsSpace(char c) { return c == ' ' || ('\t' <= c && c <= '\r'); }

bool IsHexDigit(char c) { return ('0' <= c && c <= '9') || ('a' <= (c | 0x20) && (c | 0x20) <= 'f'); }

bool HasHexPrefix(const char* text) {
  if (text[0] != '0' || (text[1] | 0x20) != 'x') return false;
  return IsHexDigit(text[2]) || (text[2] == '.' && IsHexDigit(text[3]));
}

// How many digits the first one that counts stands left of the point; 0 and less where it stands to the right.
std::int64_t DigitsBeforePoint(std::string_view mantissa) {
  const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  const auto first = static_cast<std::int64_t>(std::min(mantissa.find_first_not_of("0."), mantissa.size()));
  return first < point ? point - first : point - first + 1;
}

// The number behind the letter, or one beyond all mantissas where it is as large.
std::int64_t ReadExponent(std::string_view digits) {
  constexpr std::int64_t Huge = std::numeric_limits<std::int64_t>::max() / 2;
  const bool negative = digits.starts_with('-');
  if (negative || digits.starts_with('+')) digits.remove_prefix(1);
  std::int64_t exponent = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
  if (read.ec == std::errc::result_out_of_range || exponent > Huge) exponent = Huge;
  return negative ? -exponent : exponent;
}

// Of a number that lies outside what a double holds.
bool IsLarge(std::string_view number, bool hex) {
  const std::size_t letter = std::min(number.find_first_of(hex ? "pP" : "eE"), number.size());
  const std::int64_t exponent = letter < number.size() ? ReadExponent(number.substr(letter + 1)) : 0;
  return DigitsBeforePoint(number.substr(0, letter)) * (hex ? 4 : 1) + exponent > 0;
}

// The value without its sign. `*end` is null where there is no number.
double ReadMagnitude(const char* first, bool hex, const char** end) {
  *end = nullptr;
  // A sign that stands here is the second one.
  if (*first == '-') return 0;
  double value = 0;
  const auto read = std::from_chars(first, first + std::strlen(first), value,
                                    hex ? std::chars_format::hex : std::chars_format::general);
  if (read.ec == std::errc::invalid_argument) return 0;
  *end = read.ptr;
  if (read.ec == std::errc::result_out_of_range)
    value = IsLarge({first, read.ptr}, hex) ? std::numeric_limits<double>::infinity() : 0;
  if (read.ec == std::errc::result_out_of_range || std::fpclassify(value) == FP_SUBNORMAL) errno = ERANGE;
  return value;
}

}  // namespace

double StringToDouble(const char* text, const char** end) {
  const char* at = text;
  while (IsSpace(*at)) ++at;
  const bool negative = *at == '-';
  if (negative || *at == '+') ++at;
  const bool hex = HasHexPrefix(at);
  const double magnitude = ReadMagnitude(hex ? at + 2 : at, hex, end);
  if (*end == nullptr) {
    *end = text;
    return 0;
  }
  return negative ? -magnitude : magnitude;
}

}  // namespace qilsys::numbers
