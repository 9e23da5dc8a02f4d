#include "search/SetEdit.h"

#include <algorithm>

#include "qilsys/CodePoint.h"
#include "search/Search.h"
#include "search/UnitSet.h"

namespace qilsys::search {

namespace {

constexpr TCodeUnit AsciiLimit = 0x80;

bool AsksForNothing(const TCodeUnit* text, int length, const TCodeUnit* set, int setLen, int start) {
  return !text || !set || setLen < 1 || start < 0 || start >= length;
}

/// Where a set takes effect no more: at the end, by code point at the first NUL.
int EndOf(const TCodeUnit* text, int length, int start, const UnitSet& set) {
  return set.isOfUnits() ? length : start + lengthToNul(text + start, length - start);
}

int RemoveUnits(TCodeUnit* text, int length, const UnitSet& set, TCodeUnit terminator, int start) {
  TCodeUnit* const end =
      set.withUnitTest([=](const auto& test) { return std::remove_if(text + start, text + length, test); });
  if (end != text + length) *end = terminator;
  return static_cast<int>(end - text);
}

int RemoveCodePoints(TCodeUnit* text, int length, const UnitSet& set, int start) {
  const int end = EndOf(text, length, start, set);
  int match = set.findAnyOf(text, end, start);
  if (match < 0) return length;
  int kept = match;
  while (match >= 0) {
    int units = 0;
    CodePoint::GetCodePoint(text + match, &units);
    const int from = match + units;
    match = set.findAnyOf(text, end, from);
    const int to = match >= 0 ? match : end;
    std::copy(text + from, text + to, text + kept);
    kept += to - from;
  }
  text[kept] = 0;
  return kept;
}

/// The ASCII units that a set begins with, each once.
class AsciiPrefix {
 public:
  AsciiPrefix(const TCodeUnit* set, int setLen) {
    bool isKnown[AsciiLimit] = {};
    for (; m_length < setLen && set[m_length] < AsciiLimit; ++m_length) {
      if (!isKnown[set[m_length]]) m_units[m_count++] = set[m_length];
      isKnown[set[m_length]] = true;
    }
  }
  /// Units of the set that it covers.
  int Length() const { return m_length; }
  void ReplaceAll(TCodeUnit* text, TCodeUnit* end, TCodeUnit c) const {
    for (int i = 0; i < m_count; ++i) std::replace(text, end, m_units[i], c);
  }

 private:
  TCodeUnit m_units[AsciiLimit];
  int m_count = 0;
  int m_length = 0;
};

int ReplaceCodePoints(TCodeUnit* text, int length, const UnitSet& set, TCodeUnit c, int start) {
  int kept = start;
  for (int from = start, units = 0; from < length && text[from] != 0; from += units) {
    if (set.holds(CodePoint::GetCodePoint(text + from, &units))) {
      text[kept++] = c;
    } else {
      for (int i = 0; i < units; ++i) text[kept++] = text[from + i];
    }
  }
  text[kept] = 0;
  return kept;
}

}  // namespace

int findRemovable(const TCodeUnit* text, int length, const TCodeUnit* set, int setLen, int start) {
  if (AsksForNothing(text, length, set, setLen, start)) return -1;
  const UnitSet removed = UnitSet::forRemoving(set, setLen);
  return removed.findAnyOf(text, EndOf(text, length, start, removed), start);
}

int removeSet(TCodeUnit* text, int length, const TCodeUnit* set, int setLen, int start) {
  if (AsksForNothing(text, length, set, setLen, start)) return length;
  const UnitSet removed = UnitSet::forRemoving(set, setLen);
  if (!removed.isOfUnits()) return RemoveCodePoints(text, length, removed, start);
  const TCodeUnit terminator = setLen == 1 || isAscii(set, setLen) ? TCodeUnit{0} : TCodeUnit{u'0'};
  return RemoveUnits(text, length, removed, terminator, start);
}

int replaceSet(TCodeUnit* text, int length, const TCodeUnit* set, int setLen, TCodeUnit c, int start) {
  if (AsksForNothing(text, length, set, setLen, start)) return length;
  // Both parts of the set are taken down before the first unit is written, since the text may hold the set.
  const AsciiPrefix prefix(set, c < AsciiLimit ? setLen : 0);
  const UnitSet rest = UnitSet::ofCodePoints(set + prefix.Length(), setLen - prefix.Length());
  const bool isAll = prefix.Length() == setLen;
  prefix.ReplaceAll(text + start, text + length, c);
  return isAll ? length : ReplaceCodePoints(text, length, rest, c, start);
}

}  // namespace qilsys::search
