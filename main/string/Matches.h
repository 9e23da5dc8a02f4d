/// The matches of one needle, prepared before the first unit of a text moves.
#pragma once

#include <vector>

#include "search/Search.h"

namespace qilsys::string {

/// Finds matches from left to right, apart from one another; a NUL in the needle is a unit like any other.
///
/// An exact search is that of indexOf. One without case makes its table here, where indexOf makes one only once it has
/// met many near matches: in the midst of an edit there must be nothing left that can fail.
class Matches {
 public:
  /// `length` is above 0, and the needle outlives this object.
  Matches(const TCodeUnit* needle, int length, search::CaseSensitivity cs);

  /// The first match at or after `from`, or -1.
  int Next(const TCodeUnit* text, int textLength, int from) const;

 private:
  const TCodeUnit* m_needle;
  int m_length;
  search::CaseSensitivity m_cs;
  bool m_byTable;
  std::vector<int> m_table;
};

}  // namespace qilsys::string
