// Knuth-Morris-Pratt, for those who prepare a table once and search by it often.
#include "search/Search.h"

namespace qilsys::search {
namespace {

TCodeUnit folded(TCodeUnit c, CaseSensitivity cs) {
  return cs == TStringOptions::CaseSensitive ? c : units::foldCodeUnit(c);
}

// The longest border of what had matched up to `k` that `c` lengthens.
int nextMatched(const TCodeUnit* needle, const std::vector<int>& table, int k, TCodeUnit c, CaseSensitivity cs) {
  while (k >= 0 && folded(needle[k + 1], cs) != c) k = table[static_cast<std::size_t>(k)];
  return folded(needle[k + 1], cs) == c ? k + 1 : k;
}

}  // namespace

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
