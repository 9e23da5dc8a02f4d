// Text to floating-point numbers.
#include "qilsys/TStringCore.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "numbers/StringToDouble.h"
#include "qilsys/TCType.h"

namespace {

using View = std::basic_string_view<TCodeUnit>;

void SetOk(bool* ok, bool value) {
  if (ok != nullptr) *ok = value;
}

// The text without white space around it, its ASCII letters in lower case: the names below are ASCII, and the lower
// case of a Turkish "I" is no "i".
TStringCore Normalized(const TStringCore& string) {
  const TCodeUnit* const text = string.constData();
  int length = string.length();
  while (length > 0 && TCType::isSpace(text[length - 1])) --length;
  int start = 0;
  while (start < length && TCType::isSpace(text[start])) ++start;
  TStringCore lowered(text + start, length - start);
  for (TCodeUnit& unit : lowered) unit = static_cast<TCodeUnit>(unit >= u'A' && unit <= u'Z' ? unit | 0x20 : unit);
  return lowered;
}

// Walks over `name`, which is ASCII, where the text starts with it.
bool TakeName(View& text, std::string_view name) {
  if (!std::equal(name.begin(), name.end(), text.begin(), text.begin() + std::min(name.size(), text.size()))) {
    return false;
  }
  text.remove_prefix(name.size());
  return true;
}

// The value of a special text by what is left of it. Anything left makes it no number; unless white space comes
// first, it makes it no value either.
double SpecialValue(double value, View rest, bool* ok) {
  if (rest.empty()) return value;
  SetOk(ok, false);
  if (TCType::isSpace(rest.front())) return value;
  errno = ERANGE;
  return 0;
}

double Infinity(bool negative, View rest, bool* ok) {
  if (!TakeName(rest, ".0")) TakeName(rest, "inity");
  const double infinity = std::numeric_limits<double>::infinity();
  return SpecialValue(negative ? -infinity : infinity, rest, ok);
}

double NotANumber(View rest, bool* ok) {
  while (!rest.empty() && (TCType::isAlnum(rest.front()) || rest.front() == u'_')) rest.remove_prefix(1);
  return SpecialValue(std::numeric_limits<double>::quiet_NaN(), rest, ok);
}

// Reads "inf" and "nan" with what may follow them; nothing if the text is neither.
std::optional<double> ParseSpecialDouble(View text, bool* ok) {
  const bool negative = TakeName(text, "-");
  if (!negative) TakeName(text, "+");
  if (TakeName(text, "inf")) return Infinity(negative, text, ok);
  if (TakeName(text, "nan")) return NotANumber(text, ok);
  return std::nullopt;
}

}  // namespace

double TStringCore::toDouble(bool* ok) const {
  errno = 0;
  SetOk(ok, true);
  const TStringCore text = Normalized(*this);
  const View view(text.constData(), static_cast<std::size_t>(text.length()));
  if (const std::optional<double> special = ParseSpecialDouble(view, ok)) return *special;
  const std::string narrow = text.toLatin1();
  const char* end = nullptr;
  const double value = qilsys::numbers::StringToDouble(narrow.c_str(), &end);
  SetOk(ok, errno == 0 && !narrow.empty() && end == narrow.c_str() + narrow.size());
  return std::fpclassify(value) == FP_SUBNORMAL ? 0.0 : value;
}

float TStringCore::toFloat(bool* ok) const { return static_cast<float>(toDouble(ok)); }
