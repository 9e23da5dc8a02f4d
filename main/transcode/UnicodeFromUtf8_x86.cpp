// UTF-8 is validated by three lookups on nibbles, as J. Keiser and D. Lemire describe in "Validating UTF-8 in less than
// one instruction per byte" (2020), and then spread over lanes by the tables of UnicodeTables_x86.h.

#include "qilsys/Unicode.h"

#include "transcode/UnicodeKernel_x86.h"

#include "transcode/UnicodeTables_x86.h"
#include "units/Utf.h"

namespace qilsys::transcode {

namespace {

constexpr SpreadTable Spreads;

constexpr size_t Block = 64;

/// Looks the low nibble of each byte up in 16 bytes.
QILSYS_AVX2_PART __m256i LookUp(__m256i nibbles, const std::uint8_t (&table)[16]) {
  return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(Load(table)), nibbles);
}

QILSYS_AVX2_PART __m256i HighNibbles(__m256i bytes) {
  return _mm256_and_si256(_mm256_srli_epi16(bytes, 4), _mm256_set1_epi8(0x0F));
}

// What two bytes in a row may be a part of. An error stands where all three lookups agree on it.
enum PairError : std::uint8_t {
  TooShort = 1 << 0,      // A lead byte, then no continuation.
  TooLong = 1 << 1,       // ASCII, then a continuation.
  Overlong3 = 1 << 2,     // E0, then below A0.
  TooLarge = 1 << 3,      // F4, then 90 or above; F5 or above.
  Surrogate = 1 << 4,     // ED, then A0 or above.
  Overlong2 = 1 << 5,     // C0 or C1.
  TooLarge1000 = 1 << 6,  // F5 or above, then 80 to 8F.
  Overlong4 = 1 << 6,     // F0, then below 90.
  TwoConts = 1 << 7,      // Two continuations: an error unless a longer lead byte stands before.
  AnyLow = TooShort | TooLong | TwoConts,
};

constexpr std::uint8_t ByHighOfFirst[16] = {TooLong,
                                            TooLong,
                                            TooLong,
                                            TooLong,
                                            TooLong,
                                            TooLong,
                                            TooLong,
                                            TooLong,
                                            TwoConts,
                                            TwoConts,
                                            TwoConts,
                                            TwoConts,
                                            TooShort | Overlong2,
                                            TooShort,
                                            TooShort | Overlong3 | Surrogate,
                                            TooShort | TooLarge | TooLarge1000 | Overlong4};

constexpr std::uint8_t Large = AnyLow | TooLarge | TooLarge1000;
constexpr std::uint8_t ByLowOfFirst[16] = {AnyLow | Overlong3 | Overlong2 | Overlong4,
                                           AnyLow | Overlong2,
                                           AnyLow,
                                           AnyLow,
                                           AnyLow | TooLarge,
                                           Large,
                                           Large,
                                           Large,
                                           Large,
                                           Large,
                                           Large,
                                           Large,
                                           Large,
                                           Large | Surrogate,
                                           Large,
                                           Large};

constexpr std::uint8_t AnyCont = TooLong | Overlong2 | TwoConts;
constexpr std::uint8_t ByHighOfSecond[16] = {TooShort,
                                             TooShort,
                                             TooShort,
                                             TooShort,
                                             TooShort,
                                             TooShort,
                                             TooShort,
                                             TooShort,
                                             AnyCont | Overlong3 | TooLarge1000 | Overlong4,
                                             AnyCont | Overlong3 | TooLarge,
                                             AnyCont | Surrogate | TooLarge,
                                             AnyCont | Surrogate | TooLarge,
                                             TooShort,
                                             TooShort,
                                             TooShort,
                                             TooShort};

/// The bytes that stand `N` before those of `bytes`; `before` ends where `bytes` begins.
template <int N>
QILSYS_AVX2_PART __m256i Previous(__m256i bytes, __m256i before) {
  return _mm256_alignr_epi8(bytes, _mm256_permute2x128_si256(before, bytes, 0x21), 16 - N);
}

/// Not zero where the bytes, with those before them, are not UTF-8. A sequence that is cut by the end is no error.
QILSYS_AVX2_PART __m256i Errors(__m256i bytes, __m256i before) {
  const __m256i previous1 = Previous<1>(bytes, before);
  const __m256i low = _mm256_and_si256(previous1, _mm256_set1_epi8(0x0F));
  const __m256i byFirst = _mm256_and_si256(LookUp(HighNibbles(previous1), ByHighOfFirst), LookUp(low, ByLowOfFirst));
  const __m256i pairs = _mm256_and_si256(byFirst, LookUp(HighNibbles(bytes), ByHighOfSecond));
  const __m256i third = _mm256_subs_epu8(Previous<2>(bytes, before), _mm256_set1_epi8(0xE0 - 0x80));
  const __m256i fourth = _mm256_subs_epu8(Previous<3>(bytes, before), _mm256_set1_epi8(0xF0 - 0x80));
  const __m256i continued = _mm256_and_si256(_mm256_or_si256(third, fourth), _mm256_set1_epi8(static_cast<char>(0x80)));
  return _mm256_xor_si256(continued, pairs);
}

QILSYS_AVX2_PART std::uint64_t ContinuationBits(__m256i low, __m256i high) {
  const __m256i firstLead = _mm256_set1_epi8(-64);
  const auto lowBits = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpgt_epi8(firstLead, low)));
  const auto highBits = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpgt_epi8(firstLead, high)));
  return lowBits | std::uint64_t{highBits} << 32;
}

/// Eight sequences of two bytes.
QILSYS_AVX2_PART __m128i JoinTwo(__m128i leadThenContinuation) {
  const __m128i high = _mm_slli_epi16(_mm_and_si128(leadThenContinuation, _mm_set1_epi16(0x1F)), 6);
  return _mm_or_si128(high, _mm_and_si128(_mm_srli_epi16(leadThenContinuation, 8), _mm_set1_epi16(0x3F)));
}

/// 16-bit lanes of one or two bytes, the last one first.
QILSYS_AVX2_PART __m128i JoinUpToTwo(__m128i lanes) {
  const __m128i high = _mm_srli_epi16(_mm_and_si128(lanes, _mm_set1_epi16(0x1F00)), 2);
  return _mm_or_si128(_mm_and_si128(lanes, _mm_set1_epi16(0x7F)), high);
}

/// 32-bit lanes of one to three bytes, the last one first.
QILSYS_AVX2_PART __m128i JoinUpToThree(__m128i lanes) {
  const __m128i low = _mm_and_si128(lanes, _mm_set1_epi32(0x7F));
  const __m128i middle = _mm_srli_epi32(_mm_and_si128(lanes, _mm_set1_epi32(0x3F00)), 2);
  const __m128i high = _mm_srli_epi32(_mm_and_si128(lanes, _mm_set1_epi32(0x0F0000)), 4);
  return _mm_or_si128(low, _mm_or_si128(middle, high));
}

/// Three 32-bit lanes of one to four bytes, the last one first.
QILSYS_AVX2_PART TCodeUnit* WriteUpToFour(__m128i lanes, TCodeUnit* target) {
  alignas(16) std::uint32_t values[4];
  _mm_store_si128(reinterpret_cast<__m128i*>(values), lanes);
  for (int i = 0; i < 3; ++i) {
    const std::uint32_t v = values[i];
    const std::uint32_t low = (v & 0x7F) | (v & 0x3F00) >> 2;
    if (v < 0x1000000) {
      *target++ = static_cast<TCodeUnit>(low | (v & 0x0F0000) >> 4);
      continue;
    }
    const std::uint32_t codePoint = low | (v & 0x3F0000) >> 4 | (v & 0x07000000) >> 6;
    *target++ = static_cast<TCodeUnit>(units::HighSurrogateOf(codePoint));
    *target++ = static_cast<TCodeUnit>(units::LowSurrogateOf(codePoint));
  }
  return target;
}

/// Converts the code points within the next 12 to 16 bytes, by the bits of those that end one; the bytes consumed.
QILSYS_AVX2_PART unsigned ConvertWindow(const char* source, std::uint64_t ends, TCodeUnit*& target) {
  const __m128i bytes = Load(source);
  if ((ends & 0xFFFF) == 0xFFFF) {
    StoreWidened(bytes, target);
    target += 16;
    return 16;
  }
  if ((ends & 0xFFFF) == 0xAAAA) {
    Store(target, JoinTwo(bytes));
    target += 8;
    return 16;
  }
  const Spread spread = Spreads.spreads[ends & 0xFFF];
  const __m128i lanes = _mm_shuffle_epi8(bytes, Load(Spreads.shuffles[spread.shuffle].bytes));
  if (spread.shuffle < SpreadTable::FirstOfThreeBytes) {
    Store(target, JoinUpToTwo(lanes));
    target += 6;
  } else if (spread.shuffle < SpreadTable::FirstOfFourBytes) {
    const __m128i units = JoinUpToThree(lanes);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(target), _mm_packus_epi32(units, units));
    target += 4;
  } else {
    target = WriteUpToFour(lanes, target);
  }
  return spread.consumed;
}

}  // namespace

QILSYS_AVX2 Progress FromUtf8Avx2(const char* source, size_t length, TCodeUnit* target, size_t room) {
  // Behind a block, enough has to be left to fill the 16 units that a store may write too many.
  constexpr size_t Behind = 64;
  constexpr size_t MostUnits = Block + 16;
  const char* const begin = source;
  TCodeUnit* const targetBegin = target;
  while (length - static_cast<size_t>(source - begin) >= Block + Behind &&
         room - static_cast<size_t>(target - targetBegin) >= MostUnits) {
    const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source));
    const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source + 32));
    if (_mm256_movemask_epi8(_mm256_or_si256(low, high)) == 0) {
      for (size_t i = 0; i < Block; i += 16) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target + i), _mm256_cvtepu8_epi16(Load(source + i)));
      }
      source += Block;
      target += Block;
      continue;
    }
    const __m256i errors = _mm256_or_si256(Errors(low, _mm256_setzero_si256()), Errors(high, low));
    if (!_mm256_testz_si256(errors, errors)) break;
    std::uint64_t ends = ~ContinuationBits(low, high) >> 1;
    for (unsigned done = 0; done < Block - 12;) {
      const unsigned consumed = ConvertWindow(source, ends, target);
      source += consumed;
      done += consumed;
      ends >>= consumed;
    }
  }
  cpu::LeaveWideRegisters();
  return {static_cast<size_t>(source - begin), static_cast<size_t>(target - targetBegin)};
}

}  // namespace qilsys::transcode
