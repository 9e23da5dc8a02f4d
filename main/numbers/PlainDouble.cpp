#include "numbers/PlainDouble.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>

#include "numbers/IntegerText.h"

namespace qilsys::numbers {
namespace {

// So many digits behind the point fit an integer, with those that stand in front of the first significant one.
constexpr int MostDigits = 15;

// A number in binary fixed point, exactly: whole + fraction / 2^shift. Its digits behind the point come out one by one
// as the overflow of ten times the fraction, and what is left of the fraction tells how to round.
struct FixedPoint {
  std::uint64_t whole;
  std::uint64_t fraction;
  int shift;

  unsigned NextDigit();
  bool RoundsUp(std::uint64_t last) const;
};

unsigned FixedPoint::NextDigit() {
  fraction *= 10;
  const auto digit = static_cast<unsigned>(fraction >> shift);
  fraction &= (std::uint64_t{1} << shift) - 1;
  return digit;
}

// To the nearest, and from the middle to an even last digit.
bool FixedPoint::RoundsUp(std::uint64_t last) const {
  const std::uint64_t half = std::uint64_t{1} << (shift - 1);
  return fraction > half || (fraction == half && last % 2 != 0);
}

// Nothing where a bit stands below 2^-60, as ten times the fraction must fit 64 bits, or all stand above the point.
std::optional<FixedPoint> Split(double magnitude) {
  constexpr int MantissaBits = 52;
  if (magnitude == 0) return FixedPoint{0, 0, 1};
  const auto bits = std::bit_cast<std::uint64_t>(magnitude);
  const int shift = 1023 + MantissaBits - static_cast<int>(bits >> MantissaBits);
  if (shift < 1 || shift > 60) return std::nullopt;
  const std::uint64_t hidden = std::uint64_t{1} << MantissaBits;
  const std::uint64_t mantissa = (bits & (hidden - 1)) | hidden;
  return FixedPoint{mantissa >> shift, mantissa & ((std::uint64_t{1} << shift) - 1), shift};
}

// A decimal number: `behind` is the integer that its `places` digits behind the point form.
struct Decimal {
  std::uint64_t whole;
  std::uint64_t behind = 0;
  int places = 0;
};

void Round(Decimal& decimal, const FixedPoint& rest) {
  if (!rest.RoundsUp(decimal.places > 0 ? decimal.behind : decimal.whole)) return;
  if (++decimal.behind < PowersOfTen[static_cast<unsigned>(decimal.places)]) return;
  decimal.behind = 0;
  ++decimal.whole;
}

Decimal WithPlaces(FixedPoint number, int places) {
  Decimal decimal{number.whole};
  for (; decimal.places < places; ++decimal.places) decimal.behind = decimal.behind * 10 + number.NextDigit();
  Round(decimal, number);
  return decimal;
}

void DropZeros(Decimal& decimal) {
  if (decimal.behind == 0) decimal.places = 0;
  for (; decimal.places > 0 && decimal.behind % 10 == 0; --decimal.places) decimal.behind /= 10;
}

// Nothing where the number needs an exponent, or might.
std::optional<Decimal> WithSignificantDigits(FixedPoint number, int digits) {
  Decimal decimal{number.whole};
  if (number.whole == 0 && number.fraction == 0) return decimal;
  int significant = number.whole == 0 ? 0 : DecimalLength(number.whole);
  if (significant > digits) return std::nullopt;
  for (; significant < digits; ++decimal.places) {
    decimal.behind = decimal.behind * 10 + number.NextDigit();
    if (decimal.behind != 0 || significant > 0) ++significant;
  }
  Round(decimal, number);
  if (DecimalLength(decimal.whole) > digits) return std::nullopt;
  DropZeros(decimal);
  return decimal;
}

void Write(DoubleText& text, const Decimal& decimal) {
  const int wholeLength = DecimalLength(decimal.whole);
  text.length += wholeLength;
  WriteDecimalBefore(text.characters + text.length, decimal.whole);
  if (decimal.places == 0) return;
  text.Append('.');
  char* const first = text.characters + text.length;
  text.length += decimal.places;
  char* digits = WriteDecimalBefore(text.characters + text.length, decimal.behind);
  while (digits != first) *--digits = '0';
}

}  // namespace

bool PrintPlainDouble(double value, char format, int precision, DoubleText& text) {
  const bool general = format == 'g' || format == 'G';
  if (precision > MostDigits || (!general && format != 'f' && format != 'F')) return false;
  const std::optional<FixedPoint> number = Split(std::abs(value));
  if (!number) return false;
  const std::optional<Decimal> decimal =
      general ? WithSignificantDigits(*number, precision == 0 ? 1 : precision) : WithPlaces(*number, precision);
  if (!decimal) return false;
  if (std::signbit(value)) text.Append('-');
  Write(text, *decimal);
  return true;
}

}  // namespace qilsys::numbers
