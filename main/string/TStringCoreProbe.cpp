// How many units at the start of a text form a number.
#include "qilsys/TStringCore.h"

#include "qilsys/TCType.h"

namespace {

void RequireBase(bool valid) {
  if (!valid) throw TStringCore::Exception(u"TStringCore::parseInteger: base out of range.");
}

bool StartsWithHexPrefix(const TCodeUnit* text, int len) {
  return len >= 2 && text[0] == u'0' && (text[1] == u'x' || text[1] == u'X');
}

int ResolvedBase(const TCodeUnit* text, int len) {
  if (StartsWithHexPrefix(text, len)) return 16;
  return text[0] == u'0' ? 8 : 10;
}

int PrefixLength(const TCodeUnit* text, int len, int base) {
  if (base == 16 && StartsWithHexPrefix(text, len)) return 2;
  return base == 10 && (text[0] == u'+' || text[0] == u'-') ? 1 : 0;
}

bool IsDigitInBase(TCodeUnit unit, int base) {
  const int c = unit | 0x20;
  if (c >= u'0' && c <= (base > 10 ? int{u'9'} : 0x2F + base)) return true;
  return base > 10 && c >= u'a' && c <= 0x56 + base;
}

// Walks over a floating-point number. The text ends at its NUL or after a given number of units.
class DoubleProbe {
 public:
  DoubleProbe(const TCodeUnit* text, int len) : m_text(text), m_length(len) {}

  int Length();

 private:
  bool AtEnd() const { return m_at == m_length || m_text[m_at] == 0; }
  bool TakeIf(TCodeUnit a, TCodeUnit b);
  int TakeDigits();

  const TCodeUnit* m_text;
  int m_length;
  int m_at = 0;
};

bool DoubleProbe::TakeIf(TCodeUnit a, TCodeUnit b) {
  if (AtEnd() || (m_text[m_at] != a && m_text[m_at] != b)) return false;
  ++m_at;
  return true;
}

int DoubleProbe::TakeDigits() {
  const int from = m_at;
  while (!AtEnd() && TCType::isDigit(m_text[m_at])) ++m_at;
  return m_at - from;
}

// The end of the text wins over what is missing, so "1e" counts 2 units where "1ex" counts 1.
int DoubleProbe::Length() {
  TakeIf(u'+', u'-');
  int mantissaDigits = TakeDigits();
  TakeIf(u'.', u'.');
  mantissaDigits += TakeDigits();
  if (AtEnd()) return m_at;
  if (mantissaDigits == 0) return 0;
  const int mantissaEnd = m_at;
  if (!TakeIf(u'e', u'E')) return m_at;
  TakeIf(u'+', u'-');
  const int exponentDigits = TakeDigits();
  return AtEnd() || exponentDigits > 0 ? m_at : mantissaEnd;
}

}  // namespace

int TStringCore::leftIntegerLength(int base) const { return leftIntegerLength(constData(), length(), base); }

int TStringCore::leftIntegerLength(const TCodeUnit* text, int len, int base) {
  if (text == nullptr || len == 0 || *text == 0) return 0;
  if (len < 0) len = length(text);
  RequireBase(base == 0 ? len >= 2 : base >= 2 && base <= 36);
  if (base == 0) base = ResolvedBase(text, len);
  const int prefix = PrefixLength(text, len, base);
  int at = prefix;
  while (at < len && IsDigitInBase(text[at], base)) ++at;
  return at == prefix ? 0 : at;
}

int TStringCore::leftDoubleLength() const { return leftDoubleLength(constData(), length()); }

int TStringCore::leftDoubleLength(const TCodeUnit* text, int len) {
  return text == nullptr ? 0 : DoubleProbe(text, len).Length();
}
