// Text to integers.
#include "qilsys/TStringCore.h"

#include <cerrno>
#include <cstdint>
#include <limits>

#include "qilsys/TCType.h"

namespace {

constexpr int LowestBase = 2;
constexpr int HighestBase = 36;
// The bit that tells the cases of a letter apart. Set before a unit is judged, it also turns the control units 0x10
// to 0x19 into digits; callers rely on what passes today, so that stays.
constexpr int CaseBit = 0x20;

void RequireBase(int base) {
  if (base < LowestBase || base > HighestBase) {
    throw TStringCore::Exception(u"TStringCore::parseInteger: base out of range.");
  }
}

// Both pointers may be at the end of the text, which holds a NUL there.
bool StartsWithHexPrefix(const TCodeUnit* text) { return text[0] == u'0' && (text[1] | CaseBit) == u'x'; }

// The value of a digit, -1 for any other unit. "0" to "9" pass in every base.
int DigitValue(TCodeUnit unit, int base) {
  const int c = unit | CaseBit;
  if (c < u'0') return -1;
  if (c <= u'9') return c - u'0';
  const int letterLimit = base <= 10 ? 0x2F + base : 0x56 + base;
  return c < u'a' || c > letterLimit ? -1 : c - 0x57;
}

// The pattern after `digit`, which is negative in a negative number; `overflowed` tells that it does not fit.
// Multiplication wraps silently between these tests; what they miss is not detected.
struct Step {
  std::uint64_t value;
  bool overflowed;
};

Step AddDigit(std::uint64_t value, int base, int digit, bool negative) {
  const std::uint64_t shifted = value * static_cast<std::uint64_t>(base);
  if (negative) {
    const std::uint64_t next = shifted - static_cast<std::uint64_t>(digit);
    return {next, static_cast<std::int64_t>(next) > static_cast<std::int64_t>(value)};
  }
  const std::uint64_t next = shifted + static_cast<std::uint64_t>(digit);
  return {next, next < value};
}

bool IsAllSpace(const TCodeUnit* from, const TCodeUnit* end) {
  while (from != end && TCType::isSpace(*from)) ++from;
  return from == end;
}

void SetOk(bool* ok, bool value) {
  if (ok != nullptr) *ok = value;
}

// Walks over a base prefix and gives the base in force.
int TakeBase(const TCodeUnit*& text, int base) {
  const bool hex = StartsWithHexPrefix(text);
  if (base == 0) base = hex ? 16 : *text == u'0' ? 8 : 10;
  RequireBase(base);
  if (base == 16 && hex) text += 2;
  return base;
}

// Walks over a sign and tells whether it was "-".
bool TakeSign(const TCodeUnit*& text) {
  const bool negative = *text == u'-';
  if (negative || *text == u'+') ++text;
  return negative;
}

struct Parsed {
  std::uint64_t pattern;
  bool negative;
};

// Sets `*ok` and `errno` for the text as it stands; the caller tests the range of its type. `errno` is ERANGE after
// an overflow of 64 bits.
Parsed ParseInteger(const TStringCore& string, bool* ok, int base) {
  SetOk(ok, false);
  errno = 0;
  const TCodeUnit* text = string.constData();
  const TCodeUnit* const end = text + string.length();
  while (TCType::isSpace(*text)) ++text;
  const bool negative = TakeSign(text);
  base = TakeBase(text, base);
  const TCodeUnit* const digits = text;
  std::uint64_t value = 0;
  for (int digit; (digit = DigitValue(*text, base)) >= 0; ++text) {
    const Step step = AddDigit(value, base, digit, negative);
    if (step.overflowed) {
      errno = ERANGE;
      return {negative ? 0 : ~std::uint64_t{0}, negative};
    }
    value = step.value;
  }
  if (text == digits) {
    errno = EINVAL;
  } else {
    SetOk(ok, IsAllSpace(text, end));
  }
  return {value, negative};
}

template <class T>
T OutOfRange(bool* ok, T limit) {
  errno = ERANGE;
  SetOk(ok, false);
  return limit;
}

template <class T>
T ToSigned(const TStringCore& string, bool* ok, int base) {
  using Limits = std::numeric_limits<T>;
  const Parsed parsed = ParseInteger(string, ok, base);
  const auto value = static_cast<std::int64_t>(parsed.pattern);
  if (!parsed.negative && value < 0) return OutOfRange(ok, Limits::max());
  if (parsed.negative && errno == ERANGE) return OutOfRange(ok, Limits::min());
  if (value > Limits::max()) return OutOfRange(ok, Limits::max());
  if (value < Limits::min()) return OutOfRange(ok, Limits::min());
  return static_cast<T>(value);
}

// The sign is not asked for: a "-" gives a pattern above the limit, but for "-0".
template <class T>
T ToNarrowUnsigned(const TStringCore& string, bool* ok, int base) {
  const std::uint64_t pattern = ParseInteger(string, ok, base).pattern;
  if (errno == ERANGE || pattern > std::numeric_limits<T>::max()) return OutOfRange(ok, std::numeric_limits<T>::max());
  return static_cast<T>(pattern);
}

// A "-" wraps around without an error.
unsigned long long ToWideUnsigned(const TStringCore& string, bool* ok, int base) {
  const std::uint64_t pattern = ParseInteger(string, ok, base).pattern;
  return errno == ERANGE ? std::numeric_limits<unsigned long long>::max() : pattern;
}

}  // namespace

short TStringCore::toShort(bool* ok, int base) const { return ToSigned<short>(*this, ok, base); }
int TStringCore::toInt(bool* ok, int base) const { return ToSigned<int>(*this, ok, base); }
long long TStringCore::toLong(bool* ok, int base) const { return ToSigned<long long>(*this, ok, base); }
long long TStringCore::toLongLong(bool* ok, int base) const { return ToSigned<long long>(*this, ok, base); }

unsigned short TStringCore::toUShort(bool* ok, int base) const {
  return ToNarrowUnsigned<unsigned short>(*this, ok, base);
}
unsigned int TStringCore::toUInt(bool* ok, int base) const { return ToNarrowUnsigned<unsigned int>(*this, ok, base); }
unsigned long long TStringCore::toULong(bool* ok, int base) const { return ToWideUnsigned(*this, ok, base); }
unsigned long long TStringCore::toULongLong(bool* ok, int base) const { return ToWideUnsigned(*this, ok, base); }
