// Remove and truncate.
#include "qilsys/TStringCore.h"

#include <algorithm>
#include <cstdint>

#include "qilsys/TCodePointIterator.h"
#include "search/Search.h"
#include "string/OwnText.h"

namespace search = qilsys::search;

TStringCore& TStringCore::removeAt(int pos, int n) {
  const int before = length();
  if (pos >= before) return *this;
  if (std::int64_t{pos} + n >= before) return truncate(pos);
  if (pos < 0) {
    n = static_cast<int>(std::max<std::int64_t>(std::int64_t{n} + pos, 0));
    pos = 0;
  }
  if (n < 1) return *this;
  TCodeUnit* units = data();
  std::copy(units + pos + n, units + before, units + pos);
  resizeForWrite(before - n);
  return *this;
}

TStringCore& TStringCore::removeAt(const CodePointIterator& at, int n) {
  return at.codeUnitIndex < 0 ? *this : removeAt(at.codeUnitIndex, n);
}

TStringCore& TStringCore::removeAll(TCodeUnit c) {
  const int first = search::findUnit(constData(), length(), c, 0);
  if (first < 0) return *this;
  TCodeUnit* units = data();
  TCodeUnit* end = units + first + search::lengthToNul(units + first, length() - first);
  TCodeUnit* kept = std::remove(units + first, end, c);
  resizeForWrite(static_cast<int>(kept - units));
  return *this;
}

// A search that restarts where a match was taken out sees only what followed that match, so matches can be taken from
// left to right in one pass.
TStringCore& TStringCore::removeAll(const TCodeUnit* s, int len, CaseSensitivity cs) {
  if (!s || len == 0 || *s == 0) return *this;
  if (len < 0) len = length(s);
  if (qilsys::string::InSelf(*this, s)) return removeAll(TStringCore(s, len), cs);
  const int before = length();
  int match = search::findStrCore(constData(), before, s, len, 0, cs);
  if (match < 0) return *this;
  TCodeUnit* units = data();
  int kept = match;
  while (match >= 0) {
    const int from = match + len;
    match = search::findStrCore(units, before, s, len, from, cs);
    const int to = match < 0 ? before : match;
    std::copy(units + from, units + to, units + kept);
    kept += to - from;
  }
  resizeForWrite(kept);
  return *this;
}

TStringCore& TStringCore::removeAll(const TStringCore& text, CaseSensitivity cs) {
  // A copy, since `text` may be this string.
  const TStringCore sought = text;  // NOLINT(performance-unnecessary-copy-initialization)
  return removeAll(sought.constData(), sought.length(), cs);
}

TStringCore& TStringCore::truncate(int n) {
  n = std::max(n, 0);
  if (n < length()) resizeForWrite(n);
  return *this;
}

TStringCore& TStringCore::truncate(const CodePointIterator& at) {
  return at.codeUnitIndex < 0 ? *this : truncate(at.codeUnitIndex);
}

TStringCore& TStringCore::truncateAtFirstNull() { return truncate(search::lengthToNul(constData(), length())); }

void TStringCore::chop(int n) {
  if (n > 0) truncate(length() - n);
}
