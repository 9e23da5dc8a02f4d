// Reads floating-point numbers by the C++ library's own reader, and sees to what that does otherwise than `strtod`.
//
// Not by `strtod` itself, whose forms for one locale some runtimes lack and others get wrong: they read the comma of the
// process's locale all the same, a "d" for an exponent, or no hexadecimal digits.
#include "numbers/StringToDouble.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
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

// A number as it is written: digits, among them a point, and the power of ten, or of two, that they are to be taken by.
struct Written {
  std::string_view mantissa;
  std::int64_t exponent;
};

Written Take(std::string_view number, bool hex) {
  const std::size_t letter = std::min(number.find_first_of(hex ? "pP" : "eE"), number.size());
  return {number.substr(0, letter), letter < number.size() ? ReadExponent(number.substr(letter + 1)) : 0};
}

// Of a number that lies outside what a double holds.
bool IsLarge(const Written& number, bool hex) {
  return DigitsBeforePoint(number.mantissa) * (hex ? 4 : 1) + number.exponent > 0;
}

// The digits from the first to the last that is not 0.
std::string_view SignificantDigits(std::string_view mantissa) {
  mantissa.remove_prefix(std::min(mantissa.find_first_not_of("0."), mantissa.size()));
  return mantissa.substr(0, mantissa.find_last_not_of("0.") + 1);
}

bool SameDigits(std::string_view a, std::string_view b) {
  std::size_t at = 0;
  for (const char digit : a) {
    if (digit == '.') continue;
    while (at < b.size() && b[at] == '.') ++at;
    if (at == b.size() || b[at++] != digit) return false;
  }
  return at == b.size();
}

// Whether a decimal number is `value` itself and not only near it: both have the same digits, written out to the last.
bool IsExactDecimal(const Written& number, double value) {
  constexpr int MostDigits = 767;
  char room[MostDigits + 16];
  const auto printed = std::to_chars(room, std::end(room), value, std::chars_format::scientific, MostDigits - 1);
  const Written exact = Take({room, printed.ptr}, false);
  return DigitsBeforePoint(number.mantissa) + number.exponent == DigitsBeforePoint(exact.mantissa) + exact.exponent &&
         SameDigits(SignificantDigits(number.mantissa), SignificantDigits(exact.mantissa));
}

unsigned HexDigitValue(char c) { return c <= '9' ? unsigned(c - '0') : unsigned((c | 0x20) - 'a' + 10); }

// Whether the lowest bit of a hexadecimal number is one that a subnormal double has.
bool IsExactHexadecimal(const Written& number) {
  constexpr std::int64_t LowestBit = -1074;
  const std::string_view digits = SignificantDigits(number.mantissa);
  const std::int64_t point = std::ranges::count(digits, '.');
  const std::int64_t below = static_cast<std::int64_t>(digits.size()) - point - DigitsBeforePoint(number.mantissa);
  return number.exponent - 4 * below + std::countr_zero(HexDigitValue(digits.back())) >= LowestBit;
}

bool IsExact(std::string_view text, bool hex, double value) {
  const Written number = Take(text, hex);
  return hex ? IsExactHexadecimal(number) : IsExactDecimal(number, value);
}

// Where the text of a number ends at the latest. Some runtimes step over the first of two signs in a hexadecimal
// exponent.
const char* LatestEnd(const char* first, bool hex) {
  const char* const letter = first + std::strcspn(first, hex ? "pP" : "");
  return *letter != '\0' && letter[1] == '+' && letter[2] == '-' ? letter : first + std::strlen(first);
}

// The value without its sign. `*end` is null where there is no number.
double ReadMagnitude(const char* first, bool hex, const char** end) {
  *end = nullptr;
  // A sign that stands here is the second one.
  if (*first == '-') return 0;
  double value = 0;
  const auto read =
      std::from_chars(first, LatestEnd(first, hex), value, hex ? std::chars_format::hex : std::chars_format::general);
  if (read.ec == std::errc::invalid_argument) return 0;
  *end = read.ptr;
  const std::string_view text(first, read.ptr);
  if (read.ec == std::errc::result_out_of_range) {
    errno = ERANGE;
    return IsLarge(Take(text, hex), hex) ? std::numeric_limits<double>::infinity() : 0;
  }
  if (std::fpclassify(value) == FP_SUBNORMAL && !IsExact(text, hex, value)) errno = ERANGE;
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
