// Integers to text.
#include <algorithm>
#include <cstdint>
#include <utility>

#include "qilsys/IntegerText.h"
#include "qilsys/TStringCore.h"

namespace {

using namespace qilsys::integertext;

bool IsBase(int base) { return (base >= 2 && base <= 36) || base == 64; }

// Writes what stands before the digits: fill blanks go before the sign and fill zeros after it.
void WriteSignAndFill(TCodeUnit* first, TCodeUnit* digits, bool negative, TCodeUnit fill) {
  if (!negative) {
    std::fill(first, digits, fill);
  } else if (fill == u'0') {
    *first = u'-';
    std::fill(first + 1, digits, fill);
  } else {
    std::fill(first, digits - 1, fill);
    *(digits - 1) = u'-';
  }
}

TStringCore Decimal(std::uint64_t magnitude, bool negative, int width, TCodeUnit fill) {
  const int length = DecimalLength(magnitude) + (negative ? 1 : 0);
  TStringCore text;
  text.resize(std::max(length, width));
  TCodeUnit* const first = text.data();
  TCodeUnit* const digits = WriteDecimalBefore(first + text.length(), magnitude);
  if (digits != first) WriteSignAndFill(first, digits, negative, fill);
  return text;
}

TStringCore UnsignedNumber(unsigned long long value, int base, int width, TCodeUnit fill) {
  if (base == 10) return Decimal(value, false, width, fill);
  if (!IsBase(base)) throw TStringCore::Exception(u"TStringCore::number: base out of range.");
  TCodeUnit room[MaxDigits];
  TCodeUnit* const end = room + MaxDigits;
  const TCodeUnit* const digits = WriteDigitsBefore(end, value, base);
  const int length = static_cast<int>(end - digits);
  if (width <= length) return TStringCore(digits, length);
  TStringCore text(fill, width);
  std::copy(digits, static_cast<const TCodeUnit*>(end), text.end() - length);
  return text;
}

// In a base other than 10 a negative number is its 64-bit pattern, whatever type it came from.
TStringCore SignedNumber(long long value, int base, int width, TCodeUnit fill) {
  const auto pattern = static_cast<std::uint64_t>(value);
  if (base != 10) return UnsignedNumber(pattern, base, width, fill);
  return value < 0 ? Decimal(0 - pattern, true, width, fill) : Decimal(pattern, false, width, fill);
}

}  // namespace

TStringCore TStringCore::number(short value, int base, int width, TCodeUnit fill) {
  return SignedNumber(value, base, width, fill);
}
TStringCore TStringCore::number(unsigned short value, int base, int width, TCodeUnit fill) {
  return UnsignedNumber(value, base, width, fill);
}
TStringCore TStringCore::number(int value, int base, int width, TCodeUnit fill) {
  return SignedNumber(value, base, width, fill);
}
TStringCore TStringCore::number(unsigned int value, int base, int width, TCodeUnit fill) {
  return UnsignedNumber(value, base, width, fill);
}
TStringCore TStringCore::number(long value, int base, int width, TCodeUnit fill) {
  return SignedNumber(value, base, width, fill);
}
TStringCore TStringCore::number(unsigned long value, int base, int width, TCodeUnit fill) {
  return UnsignedNumber(value, base, width, fill);
}
TStringCore TStringCore::number(long long value, int base, int width, TCodeUnit fill) {
  return SignedNumber(value, base, width, fill);
}
TStringCore TStringCore::number(unsigned long long value, int base, int width, TCodeUnit fill) {
  return UnsignedNumber(value, base, width, fill);
}

TStringCore TStringCore::pointer(const void* p, bool prefix, bool fullWidth) {
  const auto address = static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(p));
  TStringCore text = UnsignedNumber(address, 16, fullWidth ? 16 : 0, u'0');
  if (prefix) text.insert(0, u"0x");
  return text;
}
