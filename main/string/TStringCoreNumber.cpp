// Integers to text.
#include "qilsys/TStringCore.h"

#include <algorithm>
#include <cstdint>

#include "numbers/IntegerText.h"
#include "string/StringGrowth.h"

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

constexpr int MaxInlineLength = qilsys::StringStorage::MaxInlineLength;

// The units of an empty inline string that becomes `n` long; short text stays in view of the compiler.
inline TCodeUnit* WritableOfLength(TStringCore& text, int n) {
  if (n > MaxInlineLength) return qilsys::string::ResizeForWrite(text, n);
  qilsys::StringStorage& storage = qilsys::string::Inside::StorageOf(text);
  storage.setLengthOfZeroed(n);
  return storage.inlineUnits();
}

// Text is built in the place of the result itself: a copy right behind the small stores would have to wait for them.
inline TStringCore ShortDecimalNumber(std::uint64_t magnitude, int length) {
  TStringCore text;
  TCodeUnit* const first = WritableOfLength(text, length);
  *first = u'-';  // The first digit takes its place unless the number is negative.
  WriteDecimalBefore(first + length, magnitude);
  return text;
}

TStringCore PaddedDecimalNumber(std::uint64_t magnitude, bool negative, int length, TCodeUnit fill) {
  TStringCore text;
  TCodeUnit* const first = WritableOfLength(text, length);
  TCodeUnit* const digits = WriteDecimalBefore(first + length, magnitude);
  if (digits != first) WriteSignAndFill(first, digits, negative, fill);
  return text;
}

TStringCore DecimalNumber(std::uint64_t magnitude, bool negative, int width, TCodeUnit fill) {
  const int length = DecimalLength(magnitude) + (negative ? 1 : 0);
  if (width <= length && length <= MaxInlineLength) return ShortDecimalNumber(magnitude, length);
  return PaddedDecimalNumber(magnitude, negative, std::max(length, width), fill);
}

TStringCore DigitsNumber(std::uint64_t pattern, int base, int width, TCodeUnit fill) {
  if (!IsBase(base)) throw TStringCore::Exception(u"TStringCore::number: base out of range.");
  const int length = std::max(DigitsLength(pattern, base), width);
  TStringCore text;
  TCodeUnit* const first = WritableOfLength(text, length);
  std::fill(first, WriteDigitsBefore(first + length, pattern, base), fill);
  return text;
}

}  // namespace

// In a base other than 10 a negative number is its 64-bit pattern, whatever type it came from.
TStringCore TStringCore::number(long long value, int base, int width, TCodeUnit fill) {
  const auto pattern = static_cast<std::uint64_t>(value);
  if (base != 10) return DigitsNumber(pattern, base, width, fill);
  return DecimalNumber(value < 0 ? 0 - pattern : pattern, value < 0, width, fill);
}

TStringCore TStringCore::number(unsigned long long value, int base, int width, TCodeUnit fill) {
  return base == 10 ? DecimalNumber(value, false, width, fill) : DigitsNumber(value, base, width, fill);
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
  TStringCore text = DigitsNumber(address, 16, fullWidth ? 16 : 0, u'0');
  if (prefix) text.insert(0, u"0x");
  return text;
}
