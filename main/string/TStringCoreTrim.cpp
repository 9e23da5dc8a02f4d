// Trim at either end: white space, one unit, a set.
#include "qilsys/TStringCore.h"

#include "qilsys/CodePoint.h"
#include "qilsys/TCType.h"
#include "search/UnitSet.h"
#include "string/OwnText.h"

using qilsys::search::UnitSet;

namespace {

/// The first unit of the code point that ends before `end`, the low surrogates behind it counted in; -1 where nothing
/// but low surrogates is left.
int LastCodePoint(const TCodeUnit* text, int end) {
  int first = end - 1;
  while (first >= 0 && !CodePoint::IsFirstCodeUnit(text[first])) --first;
  return first;
}

/// The length that is left once the code points that pass `test(first, units)` are taken from the end.
template <class Test>
int LengthWithoutTail(const TStringCore& text, Test test) {
  const TCodeUnit* units = text.constData();
  int end = text.length();
  while (end > 0) {
    const int first = LastCodePoint(units, end);
    if (first < 0 || !test(units + first, end - first)) break;
    end = first;
  }
  return end;
}

// A negative number stands for the whole text, whose storage is given up then.
TStringCore& RemoveLeading(TStringCore& text, int n) {
  if (n >= 0) return text.removeAt(0, n);
  text.clear();
  return text;
}

}  // namespace

TStringCore& TStringCore::trimRight() {
  return truncate(LengthWithoutTail(*this, [](const TCodeUnit* first, int) { return TCType::isSpace(*first); }));
}

TStringCore& TStringCore::trimLeft() {
  const TCodeUnit* units = constData();
  int from = 0;
  for (int n = 0; from < length() && TCType::isSpace32(CodePoint::GetCodePoint(units + from, &n)); from += n) {
  }
  return RemoveLeading(*this, from < length() ? from : -1);
}

TStringCore& TStringCore::trim() { return trimRight().trimLeft(); }

TStringCore& TStringCore::trimRight(TCodeUnit c) {
  const TCodeUnit* units = constData();
  int end = length();
  while (end > 0 && units[end - 1] == c) --end;
  return truncate(end);
}

TStringCore& TStringCore::trimLeft(TCodeUnit c) {
  if (c == 0) return *this;
  const TCodeUnit* units = constData();
  int from = 0;
  while (units[from] == c) ++from;
  return removeAt(0, from);
}

TStringCore& TStringCore::trim(TCodeUnit c) { return trimRight(c).trimLeft(c); }

TStringCore& TStringCore::trimRight(const TCodeUnit* set) {
  if (!set || *set == 0) return *this;
  if (set[1] == 0) return trimRight(*set);
  const UnitSet members = UnitSet::forTrimming(set);
  return truncate(
      LengthWithoutTail(*this, [&members](const TCodeUnit* first, int units) { return members.holds(first, units); }));
}

TStringCore& TStringCore::trimLeft(const TCodeUnit* set) {
  return RemoveLeading(*this, findOneNotOf(constData(), set, 0));
}

// The set of the left end is made before the right end is cut: after that nothing can fail.
TStringCore& TStringCore::trim(const TCodeUnit* set) {
  if (qilsys::string::InSelf(*this, set)) return trim(TStringCore(set).constData());
  const int setLen = length(set);
  const UnitSet members = UnitSet::forNotOf(set, setLen);
  trimRight(set);
  const int textLen = length(constData());
  if (textLen == 0) return RemoveLeading(*this, -1);
  // As the static findOneNotOf has it: one ASCII unit that covers the text is taken out up to a NUL.
  const int first = members.findNotOf(constData(), textLen, 0);
  return RemoveLeading(*this, first < 0 && setLen == 1 && *set < 0x80 ? textLen : first);
}

TStringCore& TStringCore::trimRight(const TStringCore& set) { return trimRight(set.constData()); }

TStringCore& TStringCore::trimLeft(const TStringCore& set) { return RemoveLeading(*this, findOneNotOf(set, 0)); }

TStringCore& TStringCore::trim(const TStringCore& set) {
  // A copy, since `set` may be this string.
  const TStringCore kept = set;  // NOLINT(performance-unnecessary-copy-initialization)
  const UnitSet members = UnitSet::forNotOf(kept.constData(), kept.length());
  trimRight(kept);
  return RemoveLeading(*this, members.findNotOf(constData(), length(), 0));
}
