/// Scans over units, sixteen at a time: what to look for is a test, how to walk is here.
///
/// A test answers at an index: `block(i)` for the sixteen units from `i` on as one bit each, `unit(i)` for one. Tests
/// are templates on the lanes, so that the portable ones run the same code.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "units/UnitLanes.h"

namespace qilsys::units {

/// The first index from `from` on, below `to`, at which the test holds; else -1.
template <class Test>
int scanForward(int from, int to, const Test& test) {
  constexpr int Count = Test::Lanes::Count;
  const int begin = from;
  for (; to - from >= Count; from += Count) {
    if (const std::uint32_t bits = test.block(from)) return from + std::countr_zero(bits);
  }
  if (from < to && to - begin >= Count) {
    // The last block overlaps units that are known not to match.
    const std::uint32_t bits = test.block(to - Count);
    return bits != 0 ? to - Count + std::countr_zero(bits) : -1;
  }
  for (; from < to; ++from) {
    if (test.unit(from)) return from;
  }
  return -1;
}

/// The last index below `to` at which the test holds; else -1.
template <class Test>
int scanBackward(int to, const Test& test) {
  constexpr int Count = Test::Lanes::Count;
  for (; to >= Count; to -= Count) {
    if (const std::uint32_t bits = test.block(to - Count)) {
      return to - Count + static_cast<int>(std::bit_width(bits)) - 1;
    }
  }
  while (to > 0) {
    if (test.unit(--to)) return to;
  }
  return -1;
}

/// Calls `hit(i)` for every index below `to` at which the test holds, in order.
template <class Test, class Hit>
void scanEach(int to, const Test& test, Hit hit) {
  constexpr int Count = Test::Lanes::Count;
  int from = 0;
  for (; to - from >= Count; from += Count) {
    for (std::uint32_t bits = test.block(from); bits != 0; bits &= bits - 1) hit(from + std::countr_zero(bits));
  }
  for (; from < to; ++from) {
    if (test.unit(from)) hit(from);
  }
}

/// How many indices below `to` there are at which the test holds. The test gives its lanes, which count themselves:
/// each is minus one where it holds.
template <class Test>
int scanCount(int to, const Test& test) {
  constexpr int Count = Test::Lanes::Count;
  // No lane can count higher than a unit holds.
  constexpr int MostAtOnce = 0xFFFF * Count;
  int count = 0;
  int from = 0;
  while (to - from >= Count) {
    auto counts = Test::Lanes::all(0);
    for (const int end = from + std::min(to - from, MostAtOnce) / Count * Count; from < end; from += Count) {
      counts = counts - test.lanes(from);
    }
    count += counts.sum();
  }
  for (; from < to; ++from) count += test.unit(from) ? 1 : 0;
  return count;
}

/// Holds where the text has one of `N` units.
template <class L, int N>
class IsOneOf {
 public:
  using Lanes = L;

  IsOneOf(const TCodeUnit* text, const TCodeUnit* units) : m_text(text) {
    for (int i = 0; i < N; ++i) m_units[i] = units[i];
  }

  std::uint32_t block(int i) const { return lanes(i).bits(); }

  Lanes lanes(int i) const {
    const Lanes text = Lanes::load(m_text + i);
    Lanes found = text == Lanes::all(m_units[0]);
    for (int k = 1; k < N; ++k) found = found | (text == Lanes::all(m_units[k]));
    return found;
  }

  bool unit(int i) const {
    for (const TCodeUnit unit : m_units) {
      if (m_text[i] == unit) return true;
    }
    return false;
  }

 private:
  const TCodeUnit* m_text;
  TCodeUnit m_units[N];
};

/// Holds where the text has one unit.
template <class L>
class IsUnit : public IsOneOf<L, 1> {
 public:
  IsUnit(const TCodeUnit* text, TCodeUnit c) : IsOneOf<L, 1>(text, &c) {}
};

/// Holds where another test does not.
template <class Test>
class IsNot {
 public:
  using Lanes = typename Test::Lanes;

  explicit IsNot(const Test& test) : m_test(test) {}
  std::uint32_t block(int i) const { return ~m_test.block(i) & 0xFFFF; }
  bool unit(int i) const { return !m_test.unit(i); }

 private:
  Test m_test;
};

/// Holds where both tests hold.
template <class First, class Second>
class AreBoth {
 public:
  using Lanes = typename First::Lanes;

  AreBoth(const First& first, const Second& second) : m_first(first), m_second(second) {}
  std::uint32_t block(int i) const { return (m_first.lanes(i) & m_second.lanes(i)).bits(); }
  bool unit(int i) const { return m_first.unit(i) && m_second.unit(i); }

 private:
  First m_first;
  Second m_second;
};

/// Holds where two texts differ or, with `StopAtNul`, where they end; with `Fold` ASCII letters are folded first.
template <class L, bool Fold, bool StopAtNul>
class IsDifferent {
 public:
  using Lanes = L;

  IsDifferent(const TCodeUnit* a, const TCodeUnit* b) : m_a(a), m_b(b) {}

  std::uint32_t block(int i) const {
    const Lanes a = Lanes::load(m_a + i);
    const Lanes b = Lanes::load(m_b + i);
    const Lanes equal = Fold ? a.foldAscii() == b.foldAscii() : a == b;
    const std::uint32_t different = ~equal.bits() & 0xFFFF;
    return StopAtNul ? different | (a == Lanes::all(0)).bits() : different;
  }

  bool unit(int i) const {
    const TCodeUnit a = m_a[i];
    const TCodeUnit b = m_b[i];
    return (Fold ? fold(a) != fold(b) : a != b) || (StopAtNul && a == 0);
  }

 private:
  static TCodeUnit fold(TCodeUnit c) { return c >= 0x41 && c <= 0x5A ? static_cast<TCodeUnit>(c | 0x20) : c; }

  const TCodeUnit* m_a;
  const TCodeUnit* m_b;
};

}  // namespace qilsys::units
