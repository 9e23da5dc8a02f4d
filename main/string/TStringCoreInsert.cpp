// Insert and prepend.
#include "qilsys/TStringCore.h"

#include <algorithm>

#include "qilsys/CodePoint.h"
#include "qilsys/TCodePointIterator.h"
#include "string/OwnText.h"
#include "string/StringSum.h"

using qilsys::string::InSelf;
using qilsys::string::SumOfLengths;

namespace {

/// Opens a gap of `n` units at `i`; the text of `length` units has room for it.
void OpenGap(TCodeUnit* units, int length, int i, int n) {
  std::copy_backward(units + i, units + length, units + length + n);
}

int InsertIndex(const TStringCore& text, const TStringCore::CodePointIterator& at) {
  return at.codeUnitIndex < 0 ? text.length() : at.codeUnitIndex;
}

}  // namespace

TStringCore& TStringCore::insert(int i, TCodeUnit c) {
  const int before = length();
  if (i < 0 || i > before) return *this;
  TCodeUnit* units = resizeForWrite(SumOfLengths(before, 1));
  OpenGap(units, before, i, 1);
  units[i] = c;
  return *this;
}

TStringCore& TStringCore::insert(int i, const TCodeUnit* s, int n) {
  const int before = length();
  if (i < 0 || i > before || !s || n == 0) return *this;
  if (!CodePoint::IsFirstCodeUnit(constData()[i])) return *this;
  if (n < 0) n = length(s);
  if (n == 0) return *this;
  const std::ptrdiff_t own = InSelf(*this, s) ? s - constData() : -1;
  TCodeUnit* units = resizeForWrite(SumOfLengths(before, n));
  OpenGap(units, before, i, n);
  // Own text is read where it stood, although what was behind `i` has moved; the copy allows for the overlap.
  std::char_traits<TCodeUnit>::move(units + i, own < 0 ? s : units + own, static_cast<std::size_t>(n));
  return *this;
}

TStringCore& TStringCore::insert(const CodePointIterator& at, const TStringCore& text) {
  return insert(InsertIndex(*this, at), text);
}

TStringCore& TStringCore::insert(const CodePointIterator& at, const TCodeUnit* s, int n) {
  return insert(InsertIndex(*this, at), s, n);
}
