// Comparing: by vectors where the lengths are known, unit by unit where a text ends at its NUL.
#include "search/Search.h"

#include <algorithm>

#include "units/UnitScan.h"

namespace qilsys::search {
namespace {

constexpr TCodeUnit EmptyText[] = {0};

int orderOf(TCodeUnit a, TCodeUnit b, CaseSensitivity cs) {
  if (a == b) return 0;
  if (cs != TStringOptions::CaseSensitive) {
    a = units::foldCodeUnit(a);
    b = units::foldCodeUnit(b);
  }
  return a == b ? 0 : a < b ? -1 : 1;
}

// The walk over raw text: its length isn't known, so nothing beyond the unit at hand may be read. A negative `n` never
// counts down to 0.
int walk(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs) {
  for (; n != 0; ++a, ++b) {
    if (const int order = orderOf(*a, *b, cs)) return order;
    if (*a == 0) return 0;
    if (n > 0) --n;
  }
  return 0;
}

// The first index at which the folded texts differ, or `n`.
template <bool StopAtNul>
int firstFoldedDifference(const TCodeUnit* a, const TCodeUnit* b, int n) {
  const units::IsDifferent<units::UnitLanes, true, StopAtNul> test(a, b);
  int at = units::scanForward(0, n, test);
  while (at >= 0) {
    // Where text outside ASCII differs the next units do too: a whole block goes through the table.
    for (const int end = std::min(n - at, units::UnitLanes::Count) + at; at < end; ++at) {
      if (units::foldCodeUnit(a[at]) != units::foldCodeUnit(b[at]) || (StopAtNul && a[at] == 0)) return at;
    }
    at = units::scanForward(at, n, test);
  }
  return n;
}

template <bool StopAtNul>
int firstDifference(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs) {
  if (cs != TStringOptions::CaseSensitive) return firstFoldedDifference<StopAtNul>(a, b, n);
  const int at = units::scanForward(0, n, units::IsDifferent<units::UnitLanes, false, StopAtNul>(a, b));
  return at < 0 ? n : at;
}

}  // namespace

int compareText(const TCodeUnit* a, const TCodeUnit* b, CaseSensitivity cs) {
  if (a == b) return 0;
  return walk(a != nullptr ? a : EmptyText, b != nullptr ? b : EmptyText, -1, cs);
}

int compareText(const TCodeUnit* a, int aLen, const TCodeUnit* b, int bLen, CaseSensitivity cs) {
  if (a == b) return 0;
  const int at = firstDifference<true>(a, b, std::min(aLen, bLen), cs);
  return orderOf(a[at], b[at], cs);
}

int compareN(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs) {
  if (n == 0 || a == b) return 0;
  return walk(a != nullptr ? a : EmptyText, b != nullptr ? b : EmptyText, n, cs);
}

bool equalUpToNul(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs) {
  const int at = firstDifference<true>(a, b, n, cs);
  return at == n || a[at] == b[at];
}

int firstDifference(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs) {
  return firstDifference<false>(a, b, n, cs);
}

}  // namespace qilsys::search
