/// When a search that tries place by place gives up.
#pragma once

#include <cstdint>

namespace qilsys::search {

/// Trying each place is the fastest way in nearly all texts, but where near misses are long and many it costs needle
/// times text. This counts what the tries have cost: once that is more than a few times the units walked over, the
/// search goes on by the way that is linear whatever the text.
class Effort {
 public:
  /// `unitsPerStep`: how many units may be compared for each unit of the way.
  Effort(int needleLength, int unitsPerStep) : m_needleLength(needleLength), m_unitsPerStep(unitsPerStep) {}

  void spend(int units) { m_spent += units; }
  /// `way`: the units walked over.
  bool isTooMuch(int way) const { return m_spent > FreeUnits + m_unitsPerStep * (std::int64_t{way} + m_needleLength); }

 private:
  static constexpr int FreeUnits = 256;

  std::int64_t m_spent = 0;
  int m_needleLength;
  int m_unitsPerStep;
};

}  // namespace qilsys::search
