/// Exact search in linear time and constant space, whatever the letters: the Two-Way algorithm of M. Crochemore and
/// D. Perrin, "Two-way string-matching" (Journal of the ACM 38, 1991).
///
/// The needle is cut in two at a place where no repetition across the cut is shorter than the needle's own period. The
/// right part is compared first: a mismatch in it moves the needle behind the units compared, a mismatch in the left
/// part moves it by the period.
#pragma once

#include <algorithm>
#include <functional>

namespace qilsys::search {

/// A needle, cut. Units are read by index alone, so that a reader may fold them or run backward; reading needle and
/// text takes no more than a handful of steps for each of their units.
template <class Needle>
class TwoWay {
 public:
  /// A needle of at least one unit.
  TwoWay(const Needle& needle, int length) : m_needle(needle), m_length(length) {
    const Suffix greatest = maximalSuffix(std::less<>());
    const Suffix least = maximalSuffix(std::greater<>());
    const Suffix& cut = greatest.start > least.start ? greatest : least;
    m_cut = cut.start;
    m_isPeriodic = repeats(cut.period, cut.start);
    m_period = m_isPeriodic ? cut.period : std::max(m_cut, m_length - m_cut) + 1;
  }

  /// Calls `match(at)` for each place at or after `from`, in order and overlaps included, until it says false.
  template <class Text, class Match>
  void eachMatch(const Text& text, int textLength, int from, Match match) const {
    int known = 0;  // so many units of the needle match for certain
    for (int at = from; at <= textLength - m_length;) {
      int right = std::max(m_cut, known);
      while (right < m_length && m_needle[right] == text[at + right]) ++right;
      if (right < m_length) {
        at += right - m_cut + 1;
        known = 0;
        continue;
      }
      int left = m_cut;
      while (left > known && m_needle[left - 1] == text[at + left - 1]) --left;
      if (left <= known && !match(at)) return;
      at += m_period;
      known = m_isPeriodic ? m_length - m_period : 0;
    }
  }

 private:
  struct Suffix {
    int start;
    int period;
  };

  /// The suffix that is the greatest by an order of the units.
  template <class Less>
  Suffix maximalSuffix(Less less) const {
    int before = -1;  // the best suffix so far begins behind it
    int rival = 0;    // and the one it is compared with behind this
    int step = 1;
    int period = 1;
    while (rival + step < m_length) {
      const auto theirs = m_needle[rival + step];
      const auto ours = m_needle[before + step];
      if (less(theirs, ours)) {
        rival += step;
        step = 1;
        period = rival - before;
      } else if (theirs != ours) {
        before = rival++;
        step = period = 1;
      } else if (step != period) {
        ++step;
      } else {
        rival += period;
        step = 1;
      }
    }
    return {before + 1, period};
  }

  /// Whether the first `count` units stand again one period later.
  bool repeats(int period, int count) const {
    for (int i = 0; i < count; ++i) {
      if (m_needle[i] != m_needle[i + period]) return false;
    }
    return true;
  }

  Needle m_needle;
  int m_length;
  int m_cut;
  int m_period;  // that of the needle if it is periodic, else a lower bound
  bool m_isPeriodic;
};

}  // namespace qilsys::search
