#include "qilsys/TStringCore.h"

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
Walk walkBackward(CodePoints& at, const TStringCore& needle, TStringCore::CaseSensitivity cs) {
  CodePoints wanted = needle.codepoint_cend();
  while (true) {
    --wanted;
    if (!isSame(*at, *wanted, cs)) return Walk::Mismatched;
    if (wanted.codeUnitIndex == 0) return Walk::Matched;
    if (at.codeUnitIndex == 0) return Walk::TextEnded;
    --at;
  }
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
  while (true) {
    CodePoints at = candidate;
    const Walk walk = walkBackward(at, needle, cs);
    if (walk == Walk::Matched) return at;
    // With less text before it, no earlier candidate can match either.
    if (walk == Walk::TextEnded || candidate.codeUnitIndex == 0) return codepoint_cend();
    --candidate;
  }
}

CodePoints TStringCore::findLast(TCodeUnit c) const { return findLast(c, codepoint_cend()); }

CodePoints TStringCore::findLast(TCodeUnit c, const CodePointIterator& from) const {
  if (from == codepoint_cbegin()) return codepoint_cend();
  return createFromIndex(lastIndexOf(c, from.codeUnitIndex));
}
