// A floating-point number must be the one nearest to its text, which is found out here by whole numbers without end; the
// text must be read as far as its grammar goes; and errno must say whether the number is out of range or a subnormal that
// is only near.
#include "numbers/StringToDouble.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include "support/Natural.h"

namespace {

using qilsys::test::Natural;

constexpr std::size_t MostBytes = 1024;
constexpr int KeptError = 77;

void Require(bool condition) {
  if (!condition) std::abort();
}

bool IsDigit(char c) { return '0' <= c && c <= '9'; }
char Lower(char c) { return 'A' <= c && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }
bool IsHexDigit(char c) { return IsDigit(c) || ('a' <= Lower(c) && Lower(c) <= 'f'); }
bool IsWordCharacter(char c) { return IsDigit(c) || ('a' <= Lower(c) && Lower(c) <= 'z') || c == '_'; }

enum class Kind { None, Infinity, NotANumber, Decimal, Hexadecimal };

// A number as its text tells it: digits times base to the power of the exponent.
struct Told {
  Kind kind = Kind::None;
  bool negative = false;
  std::string digits;  // From the first that is not 0.
  std::int64_t exponent = 0;
  std::size_t used = 0;
};

// Reads by the grammar, from left to right.
class Reader {
 public:
  explicit Reader(const std::string& text) : m_text(text) {}

  Told Read() {
    while (At() == ' ' || ('\t' <= At() && At() <= '\r')) ++m_at;
    m_told.negative = At() == '-';
    if (At() == '-' || At() == '+') ++m_at;
    if (Takes("inf")) {
      Takes("inity");
      return Ended(Kind::Infinity);
    }
    if (Takes("nan")) return Named();
    const bool hex = At() == '0' && Lower(At(1)) == 'x' && (IsHexDigit(At(2)) || (At(2) == '.' && IsHexDigit(At(3))));
    if (hex) m_at += 2;
    if (!TakesMantissa(hex)) return {};
    TakesExponent(hex ? 'p' : 'e');
    return Ended(hex ? Kind::Hexadecimal : Kind::Decimal);
  }

 private:
  char At(std::size_t ahead = 0) const { return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0'; }

  Told Ended(Kind kind) {
    m_told.kind = kind;
    m_told.used = m_at;
    return m_told;
  }

  bool Takes(const char* word) {
    std::size_t length = 0;
    for (; word[length] != '\0'; ++length) {
      if (Lower(At(length)) != word[length]) return false;
    }
    m_at += length;
    return true;
  }

  // Not-a-number, with a name in brackets or without.
  Told Named() {
    std::size_t end = 1;
    while (IsWordCharacter(At(end))) ++end;
    if (At() == '(' && At(end) == ')') m_at += end + 1;
    return Ended(Kind::NotANumber);
  }

  bool TakesMantissa(bool hex) {
    bool any = false;
    for (bool behindPoint = false;; ++m_at) {
      if (At() == '.' && !behindPoint) {
        behindPoint = true;
      } else if (hex ? IsHexDigit(At()) : IsDigit(At())) {
        any = true;
        if (At() != '0' || !m_told.digits.empty()) m_told.digits.push_back(At());
        if (behindPoint) m_told.exponent -= hex ? 4 : 1;
      } else {
        return any;
      }
    }
  }

  void TakesExponent(char letter) {
    if (Lower(At()) != letter) return;
    const std::size_t first = At(1) == '+' || At(1) == '-' ? 2 : 1;
    if (!IsDigit(At(first))) return;
    constexpr std::int64_t Plenty = 1000000000;
    std::int64_t exponent = 0;
    const bool negative = At(1) == '-';
    for (m_at += first; IsDigit(At()); ++m_at) exponent = std::min(Plenty, exponent * 10 + (At() - '0'));
    m_told.exponent += negative ? -exponent : exponent;
  }

  const std::string& m_text;
  std::size_t m_at = 0;
  Told m_told;
};

// The text's number against `multiple` times 2 to the power of `exponent`, exactly.
std::strong_ordering Compare(const Told& told, std::uint64_t multiple, std::int64_t exponent) {
  const bool hex = told.kind == Kind::Hexadecimal;
  Natural left;
  for (const char digit : told.digits) {
    const int value = IsDigit(digit) ? digit - '0' : Lower(digit) - 'a' + 10;
    left.MultiplyAndAdd(hex ? 16 : 10, static_cast<std::uint32_t>(value));
  }
  Natural right(multiple);
  left.MultiplyByPower(hex ? 2 : 10, told.exponent);
  right.MultiplyByPower(hex ? 2 : 10, -told.exponent);
  left.MultiplyByPower(2, -exponent);
  right.MultiplyByPower(2, exponent);
  return left <=> right;
}

constexpr std::int64_t LowestExponent = -1074;

// A finite number as a multiple of a power of two.
struct Binary {
  std::uint64_t multiple;
  std::int64_t exponent;
};

Binary ToBinary(double magnitude) {
  const auto bits = std::bit_cast<std::uint64_t>(magnitude);
  const auto biased = static_cast<std::int64_t>(bits >> 52);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << 52) - 1);
  if (biased == 0) return {fraction, LowestExponent};
  return {fraction | std::uint64_t{1} << 52, LowestExponent + biased - 1};
}

// Whether no other number is nearer, the middle going to the even one.
bool IsNearest(const Told& told, double magnitude) {
  const bool infinite = std::isinf(magnitude);
  // What comes after the largest stands for infinity.
  const Binary number = infinite ? Binary{std::uint64_t{1} << 52, 972} : ToBinary(magnitude);
  const bool even = number.multiple % 2 == 0;
  const std::strong_ordering above = Compare(told, 2 * number.multiple + 1, number.exponent - 1);
  if (!infinite && !(above < 0 || (above == 0 && even))) return false;
  if (number.multiple == 0) return true;
  // Below a power of two the numbers lie twice as close.
  const bool closer = number.multiple == std::uint64_t{1} << 52 && number.exponent > LowestExponent;
  const std::strong_ordering below = closer ? Compare(told, 4 * number.multiple - 1, number.exponent - 2)
                                            : Compare(told, 2 * number.multiple - 1, number.exponent - 1);
  return below > 0 || (below == 0 && even);
}

// Far beyond all numbers on either side nothing needs to be compared, nor could it be.
std::strong_ordering Beyond(const Told& told) {
  const std::int64_t perDigit = told.kind == Kind::Hexadecimal ? 4 : 1;
  const std::int64_t size = static_cast<std::int64_t>(told.digits.size()) * perDigit + told.exponent;
  const std::int64_t limit = told.kind == Kind::Hexadecimal ? 1100 : 340;
  return size > limit    ? std::strong_ordering::greater
         : size < -limit ? std::strong_ordering::less
                         : std::strong_ordering::equal;
}

void CheckFinite(const Told& told, double magnitude, int error) {
  if (told.digits.empty()) return Require(magnitude == 0 && error == KeptError);
  const std::strong_ordering beyond = Beyond(told);
  if (beyond > 0) return Require(std::isinf(magnitude) && error == ERANGE);
  if (beyond < 0) return Require(magnitude == 0 && error == ERANGE);
  Require(IsNearest(told, magnitude));
  if (std::isinf(magnitude) || magnitude == 0) return Require(error == ERANGE);
  const Binary number = ToBinary(magnitude);
  const bool subnormal = magnitude < std::numeric_limits<double>::min();
  const bool exact = !subnormal || Compare(told, number.multiple, number.exponent) == 0;
  Require(error == (exact ? KeptError : ERANGE));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > MostBytes) return 0;
  std::string text(data, data + size);
  text.resize(std::min(text.find('\0'), text.size()));
  const Told told = Reader(text).Read();
  errno = KeptError;
  const char* end = nullptr;
  const double value = qilsys::numbers::StringToDouble(text.c_str(), &end);
  const int error = errno;
  Require(static_cast<std::size_t>(end - text.c_str()) == told.used);
  if (told.kind == Kind::NotANumber) Require(std::isnan(value) && error == KeptError);
  if (told.kind == Kind::NotANumber) return 0;
  Require(std::signbit(value) == (told.negative && told.kind != Kind::None));
  if (told.kind == Kind::None) Require(value == 0 && error == KeptError);
  if (told.kind == Kind::Infinity) Require(std::isinf(value) && error == KeptError);
  if (told.kind == Kind::Decimal || told.kind == Kind::Hexadecimal) CheckFinite(told, std::abs(value), error);
  return 0;
}
