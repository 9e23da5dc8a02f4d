// Backward: places are tried from the end on, by code point; where the tries cost too much the Two-Way algorithm goes
// on over the text read backward, if it is well formed.
#include "search/Search.h"

#include <algorithm>

#include "qilsys/CodePoint.h"
#include "search/Effort.h"
#include "search/TwoWay.h"
#include "units/Utf.h"

namespace qilsys::search {
namespace {

// Steps through the needle as GetNextCodePointPointer does, so a lone surrogate may end it or hide the unit behind it;
// the text moves by what was compared, and never passes the needle's length.
bool matchesAt(const TCodeUnit* text, const TCodeUnit* needle, int needleLen, CaseSensitivity cs, Effort& effort) {
  const TCodeUnit* next = needle;
  while (next != nullptr) {
    effort.spend(1);
    int units = 0;
    char32_t ours = CodePoint::GetCodePoint(text, &units);
    char32_t theirs = CodePoint::GetCodePoint(next);
    if (ours != theirs && cs != TStringOptions::CaseSensitive) {
      ours = units::foldCodePoint(ours);
      theirs = units::foldCodePoint(theirs);
    }
    if (ours != theirs) return false;
    text += units;
    next = CodePoint::GetNextCodePointPointer(needle, next, needleLen);
  }
  return true;
}

/// The units before `end` from the last to the first.
struct Backward {
  TCodeUnit operator[](int i) const { return text[end - 1 - i]; }
  const TCodeUnit* text;
  int end;
};

/// The same, of the text that its folded code points would make. Folding never turns one unit into two or two into
/// one, so each unit of that text is known where it stands.
struct FoldedBackward {
  TCodeUnit operator[](int i) const {
    const TCodeUnit* unit = text + (end - 1 - i);
    if (CodePoint::IsHighSurrogate(*unit)) {
      return toUnit(units::HighSurrogateOf(units::foldCodePoint(CodePoint::GetCodePoint(unit))));
    }
    if (CodePoint::IsLowSurrogate(*unit)) {
      return toUnit(units::LowSurrogateOf(units::foldCodePoint(CodePoint::GetCodePoint(unit - 1))));
    }
    return units::foldCodeUnit(*unit);
  }
  const TCodeUnit* text;
  int end;

 private:
  static TCodeUnit toUnit(char32_t surrogate) { return static_cast<TCodeUnit>(surrogate); }
};

template <class Reader>
int findLastByTwoWay(const TCodeUnit* text, int end, const TCodeUnit* needle, int needleLen) {
  int found = -1;
  TwoWay<Reader>({needle, needleLen}, needleLen).eachMatch(Reader{text, end}, end, 0, [&](int at) {
    found = end - at - needleLen;
    return false;
  });
  return found;
}

}  // namespace

bool isWellFormed(const TCodeUnit* s, int len) {
  for (int i = 0; i < len; ++i) {
    if (!units::IsSurrogate(s[i])) continue;
    if (!CodePoint::IsHighSurrogate(s[i]) || i + 1 == len || !CodePoint::IsLowSurrogate(s[i + 1])) return false;
    ++i;
  }
  return true;
}

int findLastWellFormed(const TCodeUnit* text, int end, const TCodeUnit* needle, int needleLen, CaseSensitivity cs) {
  return cs == TStringOptions::CaseSensitive ? findLastByTwoWay<Backward>(text, end, needle, needleLen)
                                             : findLastByTwoWay<FoldedBackward>(text, end, needle, needleLen);
}

int findLastStr(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, int from,
                CaseSensitivity cs) {
  if (textLen < 1 || needleLen < 1 || textLen < needleLen) return -1;
  if (from < 0) from = from == -1 ? textLen : from + textLen;
  if (from < 0) return -1;
  int first = std::min(from, textLen - needleLen);
  while (first >= 0 && !CodePoint::IsFirstCodeUnit(text[first])) --first;
  if (first < 0) return -1;
  Effort effort(needleLen, UnitsPerStepBackward);
  bool mayBeWellFormed = true;
  for (const TCodeUnit* at = text + first; at != nullptr; at = CodePoint::GetPreviousCodePointPointer(text, at)) {
    const int index = static_cast<int>(at - text);
    if (matchesAt(at, needle, needleLen, cs, effort)) return index;
    if (mayBeWellFormed && effort.isTooMuch(first - index)) {
      mayBeWellFormed = isWellFormed(text, textLen) && isWellFormed(needle, needleLen);
      if (mayBeWellFormed) return findLastWellFormed(text, index + needleLen, needle, needleLen, cs);
    }
  }
  return -1;
}

}  // namespace qilsys::search
