// Replace: ranges, units, matches.
#include "qilsys/TStringCore.h"

#include <algorithm>

#include "qilsys/TCodePointIterator.h"
#include "search/Search.h"
#include "string/OwnText.h"
#include "string/StringGrowth.h"
#include "string/StringSum.h"

namespace search = qilsys::search;
using namespace qilsys::string;

namespace {

// The text to put in lies outside the string.
TStringCore& ReplaceRange(TStringCore& text, int pos, int n, const TCodeUnit* s, int len) {
  const int before = text.length();
  n = std::min(n, before - pos);
  const int after = SumOfLengths(before, len - n);
  TCodeUnit* units = after > before || after < 0 ? ResizeForWrite(text, after) : text.data();
  std::char_traits<TCodeUnit>::move(units + pos + len, units + pos + n, static_cast<std::size_t>(before - pos - n));
  std::copy_n(s, len, units + pos);
  if (after < before) ResizeForWrite(text, after);
  return text;
}

}  // namespace

TStringCore& TStringCore::replace(int pos, int n, const TCodeUnit* s, int len) {
  if (pos < 0 || pos > length() || n < 0 || (!s && len != 0)) return *this;
  if (len == 0) s = nullptr;
  if (pos == 0 && n >= length()) return set(s, len);
  const bool toEnd = n >= length() - pos;
  if (!s) return toEnd ? truncate(pos) : removeAt(pos, n);
  if (n == 0 && !toEnd) return insert(pos, s, len);
  if (!InSelf(*this, s)) return ReplaceRange(*this, pos, n, s, len < 0 ? length(s) : len);
  const int at = static_cast<int>(s - constData());
  if (toEnd && at <= pos) {
    // What stands behind `pos` counts as cut off before own text is read, so that ends there.
    const int count = len < 0 ? pos - at : std::min(len, pos - at);
    if (count == 0) return truncate(pos);
    TCodeUnit* units = resizeForWrite(SumOfLengths(pos, count));
    std::copy_n(units + at, count, units + pos);
    return *this;
  }
  const TStringCore copy(s, std::min(len < 0 ? length(s) : len, length() - at));
  return ReplaceRange(*this, pos, n, copy.constData(), copy.length());
}

TStringCore& TStringCore::replace(int pos, int n, TCodeUnit c) {
  if (pos < 0 || pos >= length() || n < 1) return *this;
  n = std::min(n, length() - pos);
  const int codePoints = subStringSizeInCodePoints(pos, n);
  std::fill_n(data() + pos, codePoints, c);
  return removeAt(pos + codePoints, n - codePoints);
}

TStringCore& TStringCore::replace(const CodePointIterator& at, int n, const TStringCore& text) {
  return replace(at.codeUnitIndex, n, text);
}

TStringCore& TStringCore::replace(const CodePointIterator& at, int n, TCodeUnit c) {
  return replace(at.codeUnitIndex, n, c);
}

TStringCore& TStringCore::replace(TCodeUnit before, TCodeUnit after) {
  if (isShared() && search::findUnit(constData(), length(), before, 0) < 0) return *this;
  constexpr int Step = 16;
  TCodeUnit* unit = data();
  TCodeUnit* const last = end();
  for (; last - unit >= Step; unit += Step) {
    for (int i = 0; i < Step; ++i) unit[i] = unit[i] == before ? after : unit[i];
  }
  std::replace(unit, last, before, after);
  return *this;
}

TStringCore& TStringCore::replace(TCodeUnit before, const TStringCore& after) {
  replaceCount(&before, 1, after.constData(), after.length(), CaseSensitive);
  return *this;
}

TStringCore& TStringCore::replace(const TStringCore& before, const TStringCore& after, CaseSensitivity cs) {
  replaceCount(before.constData(), before.length(), after.constData(), after.length(), cs);
  return *this;
}

TStringCore& TStringCore::replace(const TCodeUnit* before, int beforeLen, const TCodeUnit* after, int afterLen,
                                  CaseSensitivity cs) {
  replaceCount(before, beforeLen, after, afterLen, cs);
  return *this;
}

namespace {

/// The text to be replaced, wherever it stands; a NUL in it is a unit like any other.
struct Sought {
  const TCodeUnit* units;
  int length;
  TStringCore::CaseSensitivity cs;

  int FindIn(const TStringCore& text, int from) const {
    return search::findUnits(text.constData(), text.length(), units, length, from, cs);
  }
};

int OverwriteMatches(TStringCore& text, const Sought& sought, int first, const TCodeUnit* after) {
  TCodeUnit* const units = text.data();
  int count = 0;
  for (int at = first; at >= 0; at = sought.FindIn(text, at + sought.length)) {
    std::copy_n(after, sought.length, units + at);
    ++count;
  }
  return count;
}

int RebuildMatches(TStringCore& text, const Sought& sought, int first, const TCodeUnit* after, int afterLen) {
  const TCodeUnit* const units = text.constData();
  TStringCore work;
  work.reserve(text.length());
  int count = 0;
  int done = 0;
  for (int at = first; at >= 0; at = sought.FindIn(text, done)) {
    work.append(units + done, at - done).append(after, afterLen);
    done = at + sought.length;
    ++count;
  }
  work.append(units + done, text.length() - done);
  text = work;
  return count;
}

}  // namespace

int TStringCore::replaceCount(const TCodeUnit* before, int beforeLen, const TCodeUnit* after, int afterLen,
                              CaseSensitivity cs) {
  if (beforeLen < 1 || !before || beforeLen > length()) return 0;
  afterLen = after ? std::max(afterLen, 0) : 0;
  if (InSelf(*this, before)) return replaceCount(TStringCore(before, beforeLen), beforeLen, after, afterLen, cs);
  if (afterLen > 0 && InSelf(*this, after)) {
    return replaceCount(before, beforeLen, TStringCore(after, afterLen), afterLen, cs);
  }
  const Sought sought{before, beforeLen, cs};
  const int first = sought.FindIn(*this, 0);
  if (first < 0) return 0;
  if (beforeLen == afterLen) return OverwriteMatches(*this, sought, first, after);
  return RebuildMatches(*this, sought, first, after, afterLen);
}
