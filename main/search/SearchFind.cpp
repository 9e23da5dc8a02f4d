#include "search/Search.h"

#include <algorithm>
#include <cstdint>

#include "units/UnitScan.h"

namespace qilsys::search {
namespace {

using Originals = units::FoldingTable::Originals;

// Both ends of the needle are looked for at once, which few places of a text pass by chance.
template <int N>
auto endsTest(const TCodeUnit* text, const TCodeUnit* firsts, const TCodeUnit* lasts, int needleLen) {
  using Ends = units::IsOneOf<units::UnitLanes, N>;
  return units::AreBoth<Ends, Ends>(Ends(text, firsts), Ends(text + needleLen - 1, lasts));
}

int findExactly(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, int start) {
  const int end = textLen - needleLen + 1;
  const auto test = endsTest<1>(text, needle, needle + needleLen - 1, needleLen);
  for (int at = start; (at = units::scanForward(at, end, test)) >= 0; ++at) {
    if (equalUnits(text + at, needle, needleLen, TStringOptions::CaseSensitive)) return at;
  }
  return -1;
}

int findByTable(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, int start) {
  std::vector<int> table;
  buildFailureTable(needle, needleLen, table, TStringOptions::CaseInsensitive);
  const int at = kmpSearch(text + start, textLen - start, needle, needleLen, table, TStringOptions::CaseInsensitive);
  return at < 0 ? at : at + start;
}

// Fills the unused places, so that a test of fixed width may look for all of them.
Originals padded(Originals originals) {
  for (int i = originals.count; i < Originals::MaxUnits; ++i) originals.units[i] = originals.units[0];
  return originals;
}

// Tries the places at which both ends match. A text that is full of near misses would cost needle times text, so
// once the tries have cost more than the table would, the table takes over from there.
template <int N>
int findFoldedEnds(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, int start,
                   const Originals& first, const Originals& last) {
  constexpr std::int64_t FreeUnits = 256;
  const int end = textLen - needleLen + 1;
  const auto test = endsTest<N>(text, first.units, last.units, needleLen);
  std::int64_t tried = 0;
  for (int at = start; (at = units::scanForward(at, end, test)) >= 0; ++at) {
    if (equalUnits(text + at, needle, needleLen, TStringOptions::CaseInsensitive)) return at;
    tried += needleLen;
    if (tried > FreeUnits + needleLen + (at - start)) {
      return findByTable(text, textLen, needle, needleLen, at + 1);
    }
  }
  return -1;
}

int findFolded(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, int start) {
  if (needleLen < 1 || needleLen > textLen - start) return -1;
  const units::FoldingTable& folding = units::FoldingTable::instance();
  const Originals first = padded(folding.originals(units::foldCodeUnit(needle[0])));
  const Originals last = padded(folding.originals(units::foldCodeUnit(needle[needleLen - 1])));
  if (first.count == 0 || last.count == 0) return findByTable(text, textLen, needle, needleLen, start);
  const bool areNarrow = first.count <= 2 && last.count <= 2;
  return areNarrow ? findFoldedEnds<2>(text, textLen, needle, needleLen, start, first, last)
                   : findFoldedEnds<4>(text, textLen, needle, needleLen, start, first, last);
}

TCodeUnit folded(TCodeUnit c, CaseSensitivity cs) {
  return cs == TStringOptions::CaseSensitive ? c : units::foldCodeUnit(c);
}

// The longest border of what had matched up to `k` that `c` lengthens.
int nextMatched(const TCodeUnit* needle, const std::vector<int>& table, int k, TCodeUnit c, CaseSensitivity cs) {
  while (k >= 0 && folded(needle[k + 1], cs) != c) k = table[static_cast<std::size_t>(k)];
  return folded(needle[k + 1], cs) == c ? k + 1 : k;
}

}  // namespace

int findStrCore(const TCodeUnit* hay, int hayLen, const TCodeUnit* needle, int needleLen, int start,
                CaseSensitivity cs) {
  // A negative length counts as no text; this also keeps the sum from wrapping.
  if (start < 0) start = hayLen < 0 ? -1 : start + hayLen;
  if (start < 0 || start >= hayLen) return -1;
  if (needle == nullptr || needle[0] == 0) return start;
  if (hay == nullptr) return -1;
  if (cs != TStringOptions::CaseSensitive) return findFolded(hay, hayLen, needle, needleLen, start);
  if (needleLen < 0 || needleLen > hayLen - start) return -1;
  return needleLen == 0 ? start : findExactly(hay, hayLen, needle, needleLen, start);
}

void buildFailureTable(const TCodeUnit* needle, int length, std::vector<int>& table, CaseSensitivity cs) {
  if (needle == nullptr || length < 1) return;
  table.assign(static_cast<std::size_t>(length), 0);
  table[0] = -1;
  int k = -1;
  for (int i = 1; i < length; ++i) {
    k = nextMatched(needle, table, k, folded(needle[i], cs), cs);
    table[static_cast<std::size_t>(i)] = k;
  }
}

int kmpSearch(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, const std::vector<int>& table,
              CaseSensitivity cs) {
  if (text == nullptr || needle == nullptr || textLen < 1 || needleLen < 1 || textLen < needleLen) return -1;
  int k = -1;
  for (int i = 0; i < textLen; ++i) {
    k = nextMatched(needle, table, k, folded(text[i], cs), cs);
    if (k + 1 == needleLen) return i - needleLen + 1;
  }
  return -1;
}

}  // namespace qilsys::search
