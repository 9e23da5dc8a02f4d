// Text to floating-point numbers.
#include <cerrno>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "qilsys/StringToDouble_platform.h"
#include "qilsys/TCType.h"
#include "qilsys/TStringCore.h"

namespace {

using View = std::basic_string_view<TCodeUnit>;

void SetOk(bool* ok, bool value) {
  if (ok != nullptr) *ok = value;
}

// The text without white space around it, in lower case.
TStringCore Normalized(const TStringCore& string) {
  const TCodeUnit* const text = string.constData();
  int length = string.length();
  while (length > 0 && TCType::isSpace(text[length - 1])) --length;
  int start = 0;
  while (start < length && TCType::isSpace(text[start])) ++start;
  TStringCore copy(text + start, length - start);
  copy.toLower();
  return copy;
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

View AfterInfinity(View rest) {
  for (const View tail : {View(u".0"), View(u"inity")}) {
    if (rest.starts_with(tail)) return rest.substr(tail.size());
  }
  return rest;
}

View AfterNanName(View rest) {
  while (!rest.empty() && (TCType::isAlnum(rest.front()) || rest.front() == u'_')) rest.remove_prefix(1);
  return rest;
}

// Reads "inf" and "nan" with what may follow them; nothing if the text is neither.
std::optional<double> ParseSpecialDouble(View text, bool* ok) {
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  const View rest = text.substr(std::min<std::size_t>(3, text.size()));
  if (text.starts_with(View(u"inf"))) {
    const double infinity = std::numeric_limits<double>::infinity();
    return SpecialValue(negative ? -infinity : infinity, AfterInfinity(rest), ok);
  }
  if (text.starts_with(View(u"nan"))) {
    return SpecialValue(std::numeric_limits<double>::quiet_NaN(), AfterNanName(rest), ok);
  }
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
  char* end = nullptr;
  const double value = qilsys::StringToDouble(narrow.c_str(), &end);
  SetOk(ok, errno == 0 && !narrow.empty() && end == narrow.c_str() + narrow.size());
  return std::fpclassify(value) == FP_SUBNORMAL ? 0.0 : value;
}

float TStringCore::toFloat(bool* ok) const { return static_cast<float>(toDouble(ok)); }
