#include "numbers/IntegerText.h"

#include <type_traits>

namespace qilsys::numbers {
namespace {

constexpr char DigitsTo36[] = "0123456789abcdefghijklmnopqrstuvwxyz";
constexpr char DigitsOfBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr int NoShift = 0;

// The bits of a digit where the base is a power of two. Known to the compiler at each place, they cost no division.
template <class Action>
auto ByBits(int base, Action action) {
  using std::integral_constant;
  switch (base) {
    case 2:
      return action(integral_constant<int, 1>());
    case 4:
      return action(integral_constant<int, 2>());
    case 8:
      return action(integral_constant<int, 3>());
    case 16:
      return action(integral_constant<int, 4>());
    case 32:
      return action(integral_constant<int, 5>());
    case 64:
      return action(integral_constant<int, 6>());
    default:
      return action(integral_constant<int, NoShift>());
  }
}

template <int Bits>
TCodeUnit* WriteByShift(TCodeUnit* end, std::uint64_t value) {
  constexpr const char* Digits = Bits == 6 ? DigitsOfBase64 : DigitsTo36;
  constexpr std::uint64_t Mask = (std::uint64_t{1} << Bits) - 1;
  do {
    *--end = static_cast<TCodeUnit>(Digits[value & Mask]);
    value >>= Bits;
  } while (value != 0);
  return end;
}

TCodeUnit* WriteByDivision(TCodeUnit* end, std::uint64_t value, unsigned base) {
  // One wide division yields two digits; they come apart in 32 bits, which is several times cheaper.
  const unsigned square = base * base;
  while (value >= square) {
    const auto pair = static_cast<unsigned>(value % square);
    value /= square;
    *--end = static_cast<TCodeUnit>(DigitsTo36[pair % base]);
    *--end = static_cast<TCodeUnit>(DigitsTo36[pair / base]);
  }
  auto rest = static_cast<unsigned>(value);
  do {
    *--end = static_cast<TCodeUnit>(DigitsTo36[rest % base]);
    rest /= base;
  } while (rest != 0);
  return end;
}

int LengthByDivision(std::uint64_t value, unsigned base) {
  int length = 1;
  const std::uint64_t square = std::uint64_t{base} * base;
  for (; value >= square; value /= square) length += 2;
  return value >= base ? length + 1 : length;
}

}  // namespace

int DigitsLength(std::uint64_t value, int base) {
  if (base == 10) return DecimalLength(value);
  return ByBits(base, [=](auto bits) {
    if constexpr (bits() == NoShift) {
      return LengthByDivision(value, static_cast<unsigned>(base));
    } else {
      return (static_cast<int>(std::bit_width(value | 1)) + bits() - 1) / bits();
    }
  });
}

TCodeUnit* WriteDigitsBefore(TCodeUnit* end, std::uint64_t value, int base) {
  if (base == 10) return WriteDecimalBefore(end, value);
  return ByBits(base, [=](auto bits) {
    if constexpr (bits() == NoShift) {
      return WriteByDivision(end, value, static_cast<unsigned>(base));
    } else {
      return WriteByShift<bits()>(end, value);
    }
  });
}

}  // namespace qilsys::numbers
