// Forward: the places at which both ends of the needle match are found by vectors and tried; where the tries cost too
// much the Two-Way algorithm goes on.
#include "search/Search.h"

#include <algorithm>

#include "qilsys/CodePoint.h"
#include "search/Effort.h"
#include "search/TwoWay.h"
#include "units/UnitScan.h"

namespace qilsys::search {
namespace {

using Originals = units::FoldingTable::Originals;

/// Where to look, and for what.
struct Sought {
  const TCodeUnit* text;
  int textLen;
  const TCodeUnit* needle;
  int needleLen;
  CaseSensitivity cs;
};

struct FoldedUnits {
  TCodeUnit operator[](int i) const { return units::foldCodeUnit(text[i]); }
  const TCodeUnit* text;
};

template <class Match>
void eachByTwoWay(const Sought& s, int from, Match match) {
  if (s.cs == TStringOptions::CaseSensitive) {
    TwoWay<const TCodeUnit*>(s.needle, s.needleLen).eachMatch(s.text, s.textLen, from, match);
  } else {
    TwoWay<FoldedUnits>({s.needle}, s.needleLen).eachMatch(FoldedUnits{s.text}, s.textLen, from, match);
  }
}

/// Both ends of the needle are looked for at once, which few places of a text pass by chance. `firsts` and `lasts` are
/// `N` units each that its first and its last unit may stand as.
template <int N, class Match>
void eachByEnds(const Sought& s, int from, const TCodeUnit* firsts, const TCodeUnit* lasts, Match match) {
  // Vectors compare and pass over sixteen units in the time that the Two-Way algorithm takes for one.
  constexpr int Width = units::UnitLanes::Count;
  using Ends = units::IsOneOf<units::UnitLanes, N>;
  const units::AreBoth<Ends, Ends> test(Ends(s.text, firsts), Ends(s.text + s.needleLen - 1, lasts));
  const int end = s.textLen - s.needleLen + 1;
  Effort effort(s.needleLen, Width);
  for (int at = from; (at = units::scanForward(at, end, test)) >= 0; ++at) {
    const int same = firstDifference(s.text + at, s.needle, s.needleLen, s.cs);
    if (same == s.needleLen && !match(at)) return;
    effort.spend(same + Width);
    if (effort.isTooMuch(at - from)) return eachByTwoWay(s, at + 1, match);
  }
}

/// Fills the unused places, so that a test of fixed width may look for all of them.
Originals padded(Originals originals) {
  for (int i = originals.count; i < Originals::MaxUnits; ++i) originals.units[i] = originals.units[0];
  return originals;
}

template <class Match>
void eachFolded(const Sought& s, int from, Match match) {
  const units::FoldingTable& folding = units::FoldingTable::instance();
  const Originals first = padded(folding.originals(units::foldCodeUnit(s.needle[0])));
  const Originals last = padded(folding.originals(units::foldCodeUnit(s.needle[s.needleLen - 1])));
  if (first.count == 0 || last.count == 0) return eachByTwoWay(s, from, match);
  const bool areNarrow = first.count <= 2 && last.count <= 2;
  return areNarrow ? eachByEnds<2>(s, from, first.units, last.units, match)
                   : eachByEnds<4>(s, from, first.units, last.units, match);
}

/// Calls `match(at)` for each place at or after `from`, in order and overlaps included, until it says false.
template <class Match>
void eachMatch(const Sought& s, int from, Match match) {
  if (s.needleLen > s.textLen - from) return;
  if (s.cs != TStringOptions::CaseSensitive) return eachFolded(s, from, match);
  eachByEnds<1>(s, from, s.needle, s.needle + s.needleLen - 1, match);
}

int firstMatch(const Sought& s, int from) {
  int found = -1;
  eachMatch(s, from, [&](int at) {
    found = at;
    return false;
  });
  return found;
}

}  // namespace

int findStrCore(const TCodeUnit* hay, int hayLen, const TCodeUnit* needle, int needleLen, int start,
                CaseSensitivity cs) {
  // A negative length counts as no text; this also keeps the sum from wrapping.
  if (start < 0) start = hayLen < 0 ? -1 : start + hayLen;
  if (start < 0 || start >= hayLen) return -1;
  if (needle == nullptr || needle[0] == 0) return start;
  if (hay == nullptr || needleLen < 0) return -1;
  if (needleLen == 0) return cs == TStringOptions::CaseSensitive ? start : -1;
  return firstMatch({hay, hayLen, needle, needleLen, cs}, start);
}

int findUnits(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, int from,
              CaseSensitivity cs) {
  return firstMatch({text, textLen, needle, needleLen, cs}, from);
}

int countStr(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, CaseSensitivity cs) {
  if (needle == nullptr || needleLen < 1 || needleLen > textLen) return 0;
  // A needle that begins with NUL is found at every unit.
  if (needle[0] == 0) return textLen - needleLen + 1;
  const int step = std::max(CodePoint::CountCodeUnits(needle), 1);
  int count = 0;
  int next = 0;
  eachMatch({text, textLen, needle, needleLen, cs}, 0, [&](int at) {
    if (at < next) return true;
    ++count;
    next = at + step;
    return true;
  });
  return count;
}

}  // namespace qilsys::search
