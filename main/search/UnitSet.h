/// A set of units or code points, prepared once for any number of questions: the one place that knows what a set is to
/// each operation that takes one.
///
/// | made by        | ends at       | members                                        | a lone surrogate is |
/// |----------------|---------------|------------------------------------------------|---------------------|
/// | `forAnyOf`     | NUL if ASCII  | code points                                    | U+FFFD              |
/// | `forNotOf`     | its length    | code points                                    | U+FFFD              |
/// | `forRemoving`  | its length    | units; code points if one is a surrogate       | U+FFFD              |
/// | `ofCodePoints` | its length    | code points                                    | U+FFFD              |
/// | `forTrimming`  | NUL           | code points                                    | itself              |
#pragma once

#include <algorithm>
#include <vector>

#include "qilsys/TCodeUnit.h"

namespace qilsys::search {

/// Whether all of `n` units are ASCII.
bool isAscii(const TCodeUnit* units, int n);

/// The set is copied, so it may change afterwards. Decoding looks one unit ahead: set and text must be terminated at
/// their lengths, unless they are searched by unit. Up to 64 units of a set, and any ASCII set, need no memory from the
/// heap; more may raise std::bad_alloc.
class UnitSet {
 public:
  // Null is the empty set to all of these.
  static UnitSet forAnyOf(const TCodeUnit* set, int setLen);
  static UnitSet forNotOf(const TCodeUnit* set, int setLen);
  static UnitSet forRemoving(const TCodeUnit* set, int setLen);
  static UnitSet forTrimming(const TCodeUnit* set);
  static UnitSet ofCodePoints(const TCodeUnit* set, int setLen);

  /// The first member at or after `start`, else -1; -1 for a negative `start`.
  int findAnyOf(const TCodeUnit* text, int textLen, int start) const;
  /// The first that is no member at or after `start`, else -1; -1 for a negative `start`.
  int findNotOf(const TCodeUnit* text, int textLen, int start) const;

  /// Whether a set of code points has this one.
  bool holds(char32_t codePoint) const { return m_members.hold(codePoint); }
  /// The same for a code point that stands as these units; false for any other sequence.
  bool holds(const TCodeUnit* units, int n) const;

  /// True if text is to be searched by unit, whatever surrogates it has.
  bool isOfUnits() const { return m_kind != Kind::CodePoints; }
  /// Calls `use` with the test of single units, for a set that is one of units.
  template <class Use>
  auto withUnitTest(Use use) const;

 private:
  // Few: at most MaxFew units, found by vectors. Ascii: looked up. Units and CodePoints: listed.
  enum class Kind { Few, Ascii, Units, CodePoints };
  static constexpr int MaxFew = 8;

  /// A list that keeps its first members in itself.
  class Members {
   public:
    /// With room for so many, after which adding can't fail.
    explicit Members(int most) {
      if (most > InlineRoom) m_more.reserve(static_cast<std::size_t>(most - InlineRoom));
    }
    void add(char32_t member) {
      if (m_count < InlineRoom) {
        m_first[m_count++] = member;
      } else {
        m_more.push_back(member);
      }
    }
    bool hold(char32_t member) const {
      return std::find(m_first, m_first + m_count, member) != m_first + m_count ||
             std::find(m_more.begin(), m_more.end(), member) != m_more.end();
    }

   private:
    static constexpr int InlineRoom = 64;

    int m_count = 0;
    char32_t m_first[InlineRoom];
    std::vector<char32_t> m_more;
  };

  enum class LoneSurrogate { Replaced, Kept };
  UnitSet(Kind kind, const TCodeUnit* set, int setLen, LoneSurrogate lone = LoneSurrogate::Replaced);
  static UnitSet ofDecoded(const TCodeUnit* set, int setLen);
  template <bool Wanted>
  int find(const TCodeUnit* text, int textLen, int start) const;
  template <bool Wanted>
  int findCodePoint(const TCodeUnit* text, int textLen, int start) const;
  template <bool Wanted, int N>
  int findFew(const TCodeUnit* text, int textLen, int start) const;

  Kind m_kind;
  int m_fewCount = 0;
  union {
    TCodeUnit m_few[MaxFew];
    bool m_ascii[128];
  };
  Members m_members;
};

template <class Use>
auto UnitSet::withUnitTest(Use use) const {
  if (m_kind == Kind::Few && m_fewCount == 1) return use([c = m_few[0]](TCodeUnit unit) { return unit == c; });
  if (m_kind == Kind::Few) {
    return use([this](TCodeUnit unit) { return std::find(m_few, m_few + m_fewCount, unit) != m_few + m_fewCount; });
  }
  if (m_kind == Kind::Ascii) return use([this](TCodeUnit unit) { return unit < 0x80 && m_ascii[unit]; });
  return use([this](TCodeUnit unit) { return m_members.hold(unit); });
}

}  // namespace qilsys::search
