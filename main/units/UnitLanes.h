/// Sixteen units at a time: the one place that knows the vector instructions.
///
/// | type            | where                       |
/// |-----------------|-----------------------------|
/// | `PortableLanes` | everywhere, and in the tests |
/// | `Sse2Lanes`     | x86-64, where SSE2 is always there |
///
/// A comparison gives lanes of all ones or all zeros; `bits()` turns them into one bit a unit, the first unit lowest.
#pragma once

#include <cstdint>
#include <cstring>

#include "qilsys/TCodeUnit.h"

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define QILSYS_LANES_SSE2 1
#else
#define QILSYS_LANES_SSE2 0
#endif

namespace qilsys::units {

class PortableLanes {
 public:
  static constexpr int Count = 16;

  static PortableLanes load(const TCodeUnit* p) {
    PortableLanes lanes;
    std::memcpy(lanes.m_units, p, sizeof lanes.m_units);
    return lanes;
  }

  static PortableLanes all(TCodeUnit c) {
    PortableLanes lanes;
    for (std::uint16_t& unit : lanes.m_units) unit = c;
    return lanes;
  }

  PortableLanes operator==(const PortableLanes& other) const {
    return combine(other, [](std::uint16_t a, std::uint16_t b) { return a == b ? 0xFFFF : 0; });
  }
  PortableLanes operator|(const PortableLanes& other) const {
    return combine(other, [](std::uint16_t a, std::uint16_t b) { return a | b; });
  }
  PortableLanes operator&(const PortableLanes& other) const {
    return combine(other, [](std::uint16_t a, std::uint16_t b) { return a & b; });
  }

  PortableLanes operator-(const PortableLanes& other) const {
    return combine(other, [](std::uint16_t a, std::uint16_t b) { return a - b; });
  }

  PortableLanes foldAscii() const {
    return combine(*this, [](std::uint16_t a, std::uint16_t) { return a >= 0x41 && a <= 0x5A ? a | 0x20 : a; });
  }

  std::uint32_t bits() const {
    std::uint32_t bits = 0;
    for (int i = 0; i < Count; ++i) bits |= (m_units[i] & 1U) << i;
    return bits;
  }

  int sum() const {
    int sum = 0;
    for (const std::uint16_t unit : m_units) sum += unit;
    return sum;
  }

 private:
  template <class F>
  PortableLanes combine(const PortableLanes& other, F f) const {
    PortableLanes result;
    for (int i = 0; i < Count; ++i) result.m_units[i] = static_cast<std::uint16_t>(f(m_units[i], other.m_units[i]));
    return result;
  }

  std::uint16_t m_units[Count];
};

#if QILSYS_LANES_SSE2

class Sse2Lanes {
 public:
  static constexpr int Count = 16;

  static Sse2Lanes load(const TCodeUnit* p) {
    return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8))};
  }

  static Sse2Lanes all(TCodeUnit c) {
    const __m128i units = _mm_set1_epi16(static_cast<short>(c));
    return {units, units};
  }

  Sse2Lanes operator==(const Sse2Lanes& other) const {
    return {_mm_cmpeq_epi16(m_low, other.m_low), _mm_cmpeq_epi16(m_high, other.m_high)};
  }
  Sse2Lanes operator|(const Sse2Lanes& other) const {
    return {_mm_or_si128(m_low, other.m_low), _mm_or_si128(m_high, other.m_high)};
  }
  Sse2Lanes operator&(const Sse2Lanes& other) const {
    return {_mm_and_si128(m_low, other.m_low), _mm_and_si128(m_high, other.m_high)};
  }

  Sse2Lanes operator-(const Sse2Lanes& other) const {
    return {_mm_sub_epi16(m_low, other.m_low), _mm_sub_epi16(m_high, other.m_high)};
  }

  Sse2Lanes foldAscii() const { return {foldAscii(m_low), foldAscii(m_high)}; }

  std::uint32_t bits() const { return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(m_low, m_high))); }

  int sum() const {
    std::uint16_t units[Count];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(units), m_low);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(units + 8), m_high);
    int sum = 0;
    for (const std::uint16_t unit : units) sum += unit;
    return sum;
  }

 private:
  Sse2Lanes(__m128i low, __m128i high) : m_low(low), m_high(high) {}

  // Only signed comparison exists, so 'A' is moved to the lowest signed value first.
  static __m128i foldAscii(__m128i units) {
    const __m128i moved = _mm_add_epi16(units, _mm_set1_epi16(static_cast<short>(0x8000 - 0x41)));
    const __m128i isUpper = _mm_cmplt_epi16(moved, _mm_set1_epi16(static_cast<short>(0x8000 + 26)));
    return _mm_or_si128(units, _mm_and_si128(isUpper, _mm_set1_epi16(0x20)));
  }

  __m128i m_low;
  __m128i m_high;
};

using UnitLanes = Sse2Lanes;

#else

using UnitLanes = PortableLanes;

#endif

}  // namespace qilsys::units
