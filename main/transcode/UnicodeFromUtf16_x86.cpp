// Units become lanes of up to three bytes, which the tables of UnicodeTables_x86.h move together.

#include "qilsys/Unicode.h"

#include "qilsys/CodePoint.h"
#include "transcode/UnicodeKernel_x86.h"
#include "transcode/UnicodeTables_x86.h"
#include "units/Utf.h"

namespace qilsys::transcode {

namespace {

constexpr auto GatherOfTwo = MakeGatherOfTwo();
constexpr auto GatherOfThree = MakeGatherOfThree();

/// Eight units below 0x800.
QILSYS_AVX2_PART char* WriteUpToTwo(__m128i units, char* target) {
  const __m128i single = _mm_cmpeq_epi16(_mm_srli_epi16(units, 7), _mm_setzero_si128());
  const __m128i lead = _mm_or_si128(_mm_srli_epi16(units, 6), _mm_set1_epi16(0xC0));
  const __m128i last = _mm_or_si128(_mm_and_si128(units, _mm_set1_epi16(0x3F)), _mm_set1_epi16(0x80));
  const __m128i both = _mm_or_si128(lead, _mm_slli_epi16(last, 8));
  const __m128i lanes = _mm_blendv_epi8(both, units, single);
  const auto singles = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(single, _mm_setzero_si128())));
  const Gather& gather = GatherOfTwo.gathers[singles];
  Store(target, _mm_shuffle_epi8(lanes, Load(gather.shuffle.bytes)));
  return target + gather.bytes;
}

/// Four values in 32-bit lanes, none a surrogate.
QILSYS_AVX2_PART char* WriteUpToThree(__m128i values, char* target) {
  const __m128i two = _mm_cmpgt_epi32(values, _mm_set1_epi32(0x7F));
  const __m128i three = _mm_cmpgt_epi32(values, _mm_set1_epi32(0x7FF));
  const __m128i mask6 = _mm_set1_epi32(0x3F);
  const __m128i last = _mm_or_si128(_mm_and_si128(values, mask6), _mm_set1_epi32(0x80));
  const __m128i middle = _mm_or_si128(_mm_and_si128(_mm_srli_epi32(values, 6), mask6), _mm_set1_epi32(0x80));
  const __m128i ofTwo =
      _mm_or_si128(_mm_or_si128(_mm_srli_epi32(values, 6), _mm_set1_epi32(0xC0)), _mm_slli_epi32(last, 8));
  const __m128i ofThree = _mm_or_si128(
      _mm_or_si128(_mm_or_si128(_mm_srli_epi32(values, 12), _mm_set1_epi32(0xE0)), _mm_slli_epi32(middle, 8)),
      _mm_slli_epi32(last, 16));
  const __m128i lanes = _mm_blendv_epi8(_mm_blendv_epi8(values, ofTwo, two), ofThree, three);
  const auto lengths =
      static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(two)) | _mm_movemask_ps(_mm_castsi128_ps(three)) << 4);
  const Gather& gather = GatherOfThree.gathers[lengths];
  Store(target, _mm_shuffle_epi8(lanes, Load(gather.shuffle.bytes)));
  return target + gather.bytes;
}

QILSYS_AVX2_PART bool AllZero(__m128i units, int mask) {
  return _mm_testz_si128(units, _mm_set1_epi16(static_cast<short>(mask))) != 0;
}

/// Eight units with surrogates among them, and a ninth that belongs to the last one; null if a surrogate is alone.
char* WriteWithPairs(const TCodeUnit* source, char* target, size_t& taken) {
  size_t i = 0;
  while (i < 8) {
    const std::uint32_t unit = source[i++];
    if (unit < 0x80) {
      *target++ = static_cast<char>(unit);
    } else if (unit < 0x800) {
      target = units::WriteUtf8<2>(unit, target);
    } else if (!units::IsSurrogate(unit)) {
      target = units::WriteUtf8<3>(unit, target);
    } else if (CodePoint::IsHighSurrogate(unit) && CodePoint::IsLowSurrogate(source[i])) {
      target = units::WriteUtf8<4>(CodePoint::JoinSurrogates(unit, source[i++]), target);
    } else {
      return nullptr;
    }
  }
  taken = i;
  return target;
}

}  // namespace

QILSYS_AVX2 Progress FromUtf16Avx2(const TCodeUnit* source, size_t length, char* target, size_t room) {
  // Behind a step, enough has to be left to fill the 16 bytes that a store may write too many.
  constexpr size_t Behind = 32;
  constexpr size_t MostBytes = 3 * 16 + 16;
  const TCodeUnit* const begin = source;
  char* const targetBegin = target;
  while (length - static_cast<size_t>(source - begin) >= 16 + Behind &&
         room - static_cast<size_t>(target - targetBegin) >= MostBytes) {
    const __m128i low = Load(source);
    const __m128i high = Load(source + 8);
    if (AllZero(_mm_or_si128(low, high), 0xFF80)) {
      Store(target, _mm_packus_epi16(low, high));
      source += 16;
      target += 16;
      continue;
    }
    if (AllZero(low, 0xF800)) {
      target = WriteUpToTwo(low, target);
      source += 8;
      continue;
    }
    const __m128i isSurrogate = _mm_cmpeq_epi16(_mm_and_si128(low, _mm_set1_epi16(static_cast<short>(0xF800))),
                                                _mm_set1_epi16(static_cast<short>(0xD800)));
    if (_mm_testz_si128(isSurrogate, isSurrogate)) {
      target = WriteUpToThree(_mm_unpacklo_epi16(low, _mm_setzero_si128()), target);
      target = WriteUpToThree(_mm_unpackhi_epi16(low, _mm_setzero_si128()), target);
      source += 8;
      continue;
    }
    size_t taken = 0;
    char* const end = WriteWithPairs(source, target, taken);
    if (!end) break;
    source += taken;
    target = end;
  }
  return {static_cast<size_t>(source - begin), static_cast<size_t>(target - targetBegin)};
}

}  // namespace qilsys::transcode
