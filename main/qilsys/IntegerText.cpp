#include "qilsys/IntegerText.h"

namespace qilsys::integertext {
namespace {

constexpr char s_digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
constexpr char s_digitsOfBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

TCodeUnit* WriteByShift(TCodeUnit* end, std::uint64_t value, int bits, const char* digits) {
  const std::uint64_t mask = (std::uint64_t{1} << bits) - 1;
  do {
    *--end = static_cast<TCodeUnit>(digits[value & mask]);
    value >>= bits;
  } while (value != 0);
  return end;
}

TCodeUnit* WriteByDivision(TCodeUnit* end, std::uint64_t value, unsigned base) {
  // One wide division yields two digits; they come apart in 32 bits, which is several times cheaper.
  const unsigned square = base * base;
  while (value >= square) {
    const auto pair = static_cast<unsigned>(value % square);
    value /= square;
    *--end = static_cast<TCodeUnit>(s_digits[pair % base]);
    *--end = static_cast<TCodeUnit>(s_digits[pair / base]);
  }
  auto rest = static_cast<unsigned>(value);
  do {
    *--end = static_cast<TCodeUnit>(s_digits[rest % base]);
    rest /= base;
  } while (rest != 0);
  return end;
}

}  // namespace

TCodeUnit* WriteDigitsBefore(TCodeUnit* end, std::uint64_t value, int base) {
  if (base == 10) return WriteDecimalBefore(end, value);
  if (base == 64) return WriteByShift(end, value, 6, s_digitsOfBase64);
  const auto width = static_cast<unsigned>(base);
  if (std::has_single_bit(width)) return WriteByShift(end, value, std::countr_zero(width), s_digits);
  return WriteByDivision(end, value, width);
}

}  // namespace qilsys::integertext
