// Integers to text.
#include "qilsys/TStringCore.h"

#include <algorithm>
#include <cstdint>

#include "numbers/IntegerText.h"

namespace {

using namespace qilsys::numbers;

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

}  // namespace

// The units of an empty inline string that becomes `n` long; short text stays in view of the compiler.
inline TCodeUnit* TStringCore::writableOfLength(int n) {
  if (n > MaxInlineLength) return resizeForWrite(n);
  m_words.storageState = static_cast<std::int16_t>(n);
  return m_words.inlineUnits;
}

// Text is built in the place of the result itself: a copy right behind the small stores would have to wait for them.
inline TStringCore TStringCore::shortDecimalNumber(std::uint64_t magnitude, int length) {
  TStringCore text;
  TCodeUnit* const first = text.writableOfLength(length);
  *first = u'-';  // The first digit takes its place unless the number is negative.
  WriteDecimalBefore(first + length, magnitude);
  return text;
}

TStringCore TStringCore::decimalNumber(std::uint64_t magnitude, bool negative, int width, TCodeUnit fill) {
  const int length = DecimalLength(magnitude) + (negative ? 1 : 0);
  if (width <= length && length <= MaxInlineLength) return shortDecimalNumber(magnitude, length);
  return paddedDecimalNumber(magnitude, negative, std::max(length, width), fill);
}

TStringCore TStringCore::paddedDecimalNumber(std::uint64_t magnitude, bool negative, int length, TCodeUnit fill) {
  TStringCore text;
  TCodeUnit* const first = text.writableOfLength(length);
  TCodeUnit* const digits = WriteDecimalBefore(first + length, magnitude);
  if (digits != first) WriteSignAndFill(first, digits, negative, fill);
  return text;
}

TStringCore TStringCore::digitsNumber(std::uint64_t pattern, int base, int width, TCodeUnit fill) {
  if (!IsBase(base)) throw Exception(u"TStringCore::number: base out of range.");
  const int length = std::max(DigitsLength(pattern, base), width);
  TStringCore text;
  TCodeUnit* const first = text.writableOfLength(length);
  std::fill(first, WriteDigitsBefore(first + length, pattern, base), fill);
  return text;
}

// In a base other than 10 a negative number is its 64-bit pattern, whatever type it came from.
TStringCore TStringCore::number(long long value, int base, int width, TCodeUnit fill) {
  const auto pattern = static_cast<std::uint64_t>(value);
  if (base != 10) return digitsNumber(pattern, base, width, fill);
  return decimalNumber(value < 0 ? 0 - pattern : pattern, value < 0, width, fill);
}

TStringCore TStringCore::number(unsigned long long value, int base, int width, TCodeUnit fill) {
  return base == 10 ? decimalNumber(value, false, width, fill) : digitsNumber(value, base, width, fill);
}

TStringCore TStringCore::number(short value, int base, int width, TCodeUnit fill) {
  return number(static_cast<long long>(value), base, width, fill);
}
TStringCore TStringCore::number(unsigned short value, int base, int width, TCodeUnit fill) {
  return number(static_cast<unsigned long long>(value), base, width, fill);
}
TStringCore TStringCore::number(int value, int base, int width, TCodeUnit fill) {
  return number(static_cast<long long>(value), base, width, fill);
}
TStringCore TStringCore::number(unsigned int value, int base, int width, TCodeUnit fill) {
  return number(static_cast<unsigned long long>(value), base, width, fill);
}
TStringCore TStringCore::number(long value, int base, int width, TCodeUnit fill) {
  return number(static_cast<long long>(value), base, width, fill);
}
TStringCore TStringCore::number(unsigned long value, int base, int width, TCodeUnit fill) {
  return number(static_cast<unsigned long long>(value), base, width, fill);
}

TStringCore TStringCore::pointer(const void* p, bool prefix, bool fullWidth) {
  const auto address = std::uint64_t{reinterpret_cast<std::uintptr_t>(p)};
  TStringCore text = digitsNumber(address, 16, fullWidth ? 16 : 0, u'0');
  if (prefix) text.insert(0, u"0x");
  return text;
}
