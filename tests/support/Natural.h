/// Numbers without end, for tests that compare to the last digit.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qilsys::test {

/// A whole number from 0 upwards, of any size.
class Natural {
 public:
  explicit Natural(std::uint64_t value = 0) {
    for (; value != 0; value >>= 32) m_limbs.push_back(static_cast<std::uint32_t>(value));
  }

  /// Multiplies, and then adds.
  void MultiplyAndAdd(std::uint32_t factor, std::uint32_t summand = 0) {
    std::uint64_t carry = summand;
    for (std::uint32_t& limb : m_limbs) {
      carry += std::uint64_t{limb} * factor;
      limb = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    if (carry != 0) m_limbs.push_back(static_cast<std::uint32_t>(carry));
  }

  /// Multiplies by a power of a base; an exponent below 0 counts as 0.
  void MultiplyByPower(std::uint32_t base, std::int64_t exponent) {
    for (; exponent > 0; --exponent) MultiplyAndAdd(base);
  }

  std::strong_ordering operator<=>(const Natural& other) const {
    if (m_limbs.size() != other.m_limbs.size()) return m_limbs.size() <=> other.m_limbs.size();
    for (std::size_t i = m_limbs.size(); i-- > 0;) {
      if (m_limbs[i] != other.m_limbs[i]) return m_limbs[i] <=> other.m_limbs[i];
    }
    return std::strong_ordering::equal;
  }
  bool operator==(const Natural& other) const = default;

 private:
  std::vector<std::uint32_t> m_limbs;  // The lowest first, the highest not 0.
};

}  // namespace qilsys::test
