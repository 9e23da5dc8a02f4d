// Search by code point, for iterators.
#include "qilsys/TStringCore.h"

#include "search/Effort.h"
#include "search/Search.h"

namespace search = qilsys::search;

namespace {

using CodePoints = TStringCore::CodePointIterator;

bool isSame(char32_t a, char32_t b, TStringCore::CaseSensitivity cs) {
  if (a == b) return true;
  return cs != TStringCore::CaseSensitive && qilsys::units::foldCodePoint(a) == qilsys::units::foldCodePoint(b);
}

// How a walk backward from one candidate ended.
enum class Walk { Matched, TextEnded, Mismatched };

// Walks text and needle backward in step; where they match `at` is left on the first code point of the match.
Walk walkBackward(CodePoints& at, const TStringCore& needle, TStringCore::CaseSensitivity cs, search::Effort& effort) {
  CodePoints wanted = needle.codepoint_cend();
  while (true) {
    effort.spend(1);
    --wanted;
    if (!isSame(*at, *wanted, cs)) return Walk::Mismatched;
    if (wanted.codeUnitIndex == 0) return Walk::Matched;
    if (at.codeUnitIndex == 0) return Walk::TextEnded;
    --at;
  }
}

bool areWellFormed(const TStringCore& text, const TStringCore& needle) {
  return search::isWellFormed(text.data(), text.length()) && search::isWellFormed(needle.data(), needle.length());
}

// What the walk from this candidate on would find, in a time that is linear whatever the letters.
CodePoints findLastWellFormed(CodePoints candidate, const TStringCore& needle, TStringCore::CaseSensitivity cs) {
  const TStringCore& text = *candidate.owner;
  const int end = candidate.codeUnitIndex + CodePoint::CountCodeUnits(text.data() + candidate.codeUnitIndex);
  const int index = search::findLastWellFormed(text.data(), end, needle.data(), needle.length(), cs);
  if (index < 0) return text.codepoint_cend();
  while (candidate.codeUnitIndex > index) --candidate;
  return candidate;
}

}  // namespace

CodePoints TStringCore::find(const TCodeUnit* needle, CaseSensitivity cs) const {
  return createFromIndex(indexOf(needle, 0, cs));
}

CodePoints TStringCore::find(const TCodeUnit* needle, const CodePointIterator& from, CaseSensitivity cs) const {
  return createFromIndex(indexOf(needle, from.codeUnitIndex, cs));
}

CodePoints TStringCore::find(TCodeUnit c) const { return createFromIndex(indexOf(c)); }

CodePoints TStringCore::find(TCodeUnit c, const CodePointIterator& from) const {
  return createFromIndex(indexOf(c, from.codeUnitIndex));
}

CodePoints TStringCore::findLast(const TStringCore& needle, CaseSensitivity cs) const {
  return findLast(needle, codepoint_cend(), cs);
}

CodePoints TStringCore::findLast(const TStringCore& needle, const CodePointIterator& from, CaseSensitivity cs) const {
  if (empty() || needle.empty() || from == codepoint_cbegin()) return codepoint_cend();
  CodePoints candidate(this, from.codeUnitIndex, from.codePointIndex);
  if (candidate == codepoint_cend()) --candidate;
  const int first = candidate.codeUnitIndex;
  search::Effort effort(needle.length(), search::UnitsPerStepBackward);
  bool mayBeWellFormed = CodePoint::IsFirstCodeUnit(data()[first]);
  while (true) {
    CodePoints at = candidate;
    const Walk walk = walkBackward(at, needle, cs, effort);
    if (walk == Walk::Matched) return at;
    // With less text before it, no earlier candidate can match either.
    if (walk == Walk::TextEnded || candidate.codeUnitIndex == 0) return codepoint_cend();
    --candidate;
    if (mayBeWellFormed && effort.isTooMuch(first - candidate.codeUnitIndex)) {
      mayBeWellFormed = areWellFormed(*this, needle);
      if (mayBeWellFormed) return findLastWellFormed(candidate, needle, cs);
    }
  }
}

CodePoints TStringCore::findLast(TCodeUnit c) const { return findLast(c, codepoint_cend()); }

CodePoints TStringCore::findLast(TCodeUnit c, const CodePointIterator& from) const {
  if (from == codepoint_cbegin()) return codepoint_cend();
  return createFromIndex(lastIndexOf(c, from.codeUnitIndex));
}
