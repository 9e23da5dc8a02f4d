// Text to floating-point numbers.
#include "qilsys/TStringCore.h"

#include <cerrno>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

#include "numbers/StringToDouble.h"
#include "qilsys/TCType.h"
#include "qilsys/TMemory.h"
#include "units/TextLimits.h"

namespace {

using View = std::basic_string_view<TCodeUnit>;

// What a text comes to; nobody has been told yet.
struct Parsed {
  double value;
  bool isNumber;
  int error;
};

View WithoutSpaceAround(View text) {
  while (!text.empty() && TCType::isSpace(text.back())) text.remove_suffix(1);
  while (!text.empty() && TCType::isSpace(text.front())) text.remove_prefix(1);
  return text;
}

// ASCII letters alone: the names below are ASCII, and the lower case of a Turkish "I" is no "i".
TCodeUnit Lowered(TCodeUnit unit) { return static_cast<TCodeUnit>(unit >= u'A' && unit <= u'Z' ? unit | 0x20 : unit); }

// Walks over `name`, which is ASCII in lower case, where the text starts with it in any case.
bool TakeName(View& text, std::string_view name) {
  if (name.size() > text.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (Lowered(text[i]) != static_cast<TCodeUnit>(name[i])) return false;
  }
  text.remove_prefix(name.size());
  return true;
}

// The value of a special text by what is left of it. Anything left makes it no number; unless white space comes
// first, it makes it no value either.
Parsed Special(double value, View rest) {
  if (rest.empty()) return {value, true, 0};
  if (TCType::isSpace(rest.front())) return {value, false, 0};
  return {0, false, ERANGE};
}

Parsed Infinity(bool negative, View rest) {
  if (!TakeName(rest, ".0")) TakeName(rest, "inity");
  const double infinity = std::numeric_limits<double>::infinity();
  return Special(negative ? -infinity : infinity, rest);
}

Parsed NotANumber(View rest) {
  while (!rest.empty() && (TCType::isAlnum(rest.front()) || rest.front() == u'_')) rest.remove_prefix(1);
  return Special(std::numeric_limits<double>::quiet_NaN(), rest);
}

// Reads "inf" and "nan" with what may follow them; nothing if the text is neither.
std::optional<Parsed> ParseSpecial(View text) {
  const bool negative = TakeName(text, "-");
  if (!negative) TakeName(text, "+");
  if (TakeName(text, "inf")) return Infinity(negative, text);
  if (TakeName(text, "nan")) return NotANumber(text);
  return std::nullopt;
}

// The text as narrow characters with a NUL behind them; "?" for what Latin-1 lacks, which no number has. Only a long one
// needs memory, and raises TStringCore::OutOfMemoryException where there is none.
class NarrowText {
 public:
  explicit NarrowText(View text) : m_end(Room(text.size() + 1)) {
    for (const TCodeUnit unit : text) *m_end++ = unit <= 0xFF ? static_cast<char>(unit) : '?';
    *m_end = '\0';
  }
  ~NarrowText() {
    if (m_text != m_inline) TFree(m_text);
  }
  NarrowText(const NarrowText&) = delete;
  NarrowText& operator=(const NarrowText&) = delete;

  const char* Begin() const { return m_text; }
  const char* End() const { return m_end; }

 private:
  char* Room(std::size_t size) {
    if (size > sizeof m_inline) m_text = static_cast<char*>(TMalloc(size));
    if (m_text == nullptr) qilsys::units::ThrowOutOfMemory();
    return m_text;
  }

  char m_inline[128];
  char* m_text = m_inline;
  char* m_end;
};

Parsed ParseNumber(View text) {
  const NarrowText narrow(text);
  const char* end = nullptr;
  errno = 0;
  const double value = qilsys::numbers::StringToDouble(narrow.Begin(), &end);
  const bool isNumber = errno == 0 && !text.empty() && end == narrow.End();
  return {std::fpclassify(value) == FP_SUBNORMAL ? 0.0 : value, isNumber, errno};
}

}  // namespace

// Memory may end while the text is read, so `*ok` is written last.
double TStringCore::toDouble(bool* ok) const {
  const View text = WithoutSpaceAround({constData(), size()});
  const std::optional<Parsed> special = ParseSpecial(text);
  const Parsed parsed = special ? *special : ParseNumber(text);
  errno = parsed.error;
  if (ok != nullptr) *ok = parsed.isNumber;
  return parsed.value;
}

float TStringCore::toFloat(bool* ok) const { return static_cast<float>(toDouble(ok)); }
