/// A set of code points, prepared once for any number of searches.
#pragma once

#include <vector>

#include "qilsys/TCodeUnit.h"

namespace qilsys::search {

/// Units decode as code points, so a lone surrogate of text or set is U+FFFD. Set and text must be terminated at their
/// lengths, since decoding looks one unit ahead. The set is copied.
class UnitSet {
 public:
  /// The set as findAnyOf takes it: an ASCII set ends at its first NUL, another has `setLen` units. Null is empty.
  static UnitSet forAnyOf(const TCodeUnit* set, int setLen);
  /// The set as findNotOf takes it: all of `setLen` units. Null is empty.
  static UnitSet forNotOf(const TCodeUnit* set, int setLen) { return UnitSet(set, set != nullptr ? setLen : 0); }

  /// The first code point in the set at or after `start`, else -1; -1 for a negative `start`.
  int findAnyOf(const TCodeUnit* text, int textLen, int start) const;
  /// The first code point outside the set at or after `start`, else -1; -1 for a negative `start`.
  int findNotOf(const TCodeUnit* text, int textLen, int start) const;

 private:
  // Few: at most MaxFew units, each a code point by itself: compared as units. Ascii: looked up. Many: decoded.
  enum class Kind { Few, Ascii, Many };
  static constexpr int MaxFew = 8;

  UnitSet(const TCodeUnit* set, int setLen);
  static Kind kindOf(const TCodeUnit* set, int setLen);
  void decode(const TCodeUnit* set, int setLen);
  bool holds(char32_t codePoint) const;
  template <bool Wanted>
  int find(const TCodeUnit* text, int textLen, int start) const;
  template <bool Wanted>
  int findAscii(const TCodeUnit* text, int textLen, int start) const;
  template <bool Wanted, int N>
  int findFew(const TCodeUnit* text, int textLen, int start) const;

  Kind m_kind;
  int m_count = 0;
  TCodeUnit m_few[MaxFew];
  bool m_ascii[128];
  std::vector<char32_t> m_many;
};

}  // namespace qilsys::search
