// Forms for x86-64: ASCII with SSE2, which is always there, and all of Unicode with AVX2.
//
// UTF-8 is validated by three lookups on nibbles, as J. Keiser and D. Lemire describe in "Validating UTF-8 in less than
// one instruction per byte" (2020), and then spread over lanes by the tables of UnicodeTables_x86.h.

#if !defined(__x86_64__) && !defined(_M_X64)
#error "This file is for x86-64; UnicodeKernel_generic.cpp is for the others."
#endif

#include <immintrin.h>

#include <bit>
#include <cstring>

#include "qilsys/CodePoint.h"
#include "qilsys/UnicodeKernel.h"
#include "qilsys/UnicodeTables_x86.h"

// Lets one function use instructions that not every x86-64 processor has.
#if defined(__GNUC__)
#define QILSYS_AVX2 __attribute__((target("avx2")))
#define QILSYS_AVX2_PART __attribute__((target("avx2"), always_inline)) inline
#else
#define QILSYS_AVX2
#define QILSYS_AVX2_PART __forceinline
#endif

namespace Unicode {

namespace {

constexpr SpreadTable Spreads;
constexpr auto GatherOfTwo = MakeGatherOfTwo();
constexpr auto GatherOfThree = MakeGatherOfThree();

__m128i Load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
void Store(void* p, __m128i value) { _mm_storeu_si128(static_cast<__m128i*>(p), value); }

void StoreWidened(__m128i bytes, TCodeUnit* target) {
  const __m128i zero = _mm_setzero_si128();
  Store(target, _mm_unpacklo_epi8(bytes, zero));
  Store(target + 8, _mm_unpackhi_epi8(bytes, zero));
}

/// True if any of the units is not ASCII.
bool HasOther(__m128i units) {
  const __m128i high = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
  return _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) != 0xFFFF;
}

// ---- SSE2

Progress AsciiFromUtf8(const char* source, size_t length, TCodeUnit* target, size_t room) {
  const size_t most = length < room ? length : room;
  size_t done = 0;
  for (; done + 32 <= most; done += 32) {
    const __m128i low = Load(source + done);
    const __m128i high = Load(source + done + 16);
    if (_mm_movemask_epi8(_mm_or_si128(low, high)) != 0) break;
    StoreWidened(low, target + done);
    StoreWidened(high, target + done + 16);
  }
  for (; done + 16 <= most; done += 16) {
    const __m128i bytes = Load(source + done);
    if (_mm_movemask_epi8(bytes) != 0) break;
    StoreWidened(bytes, target + done);
  }
  return {done, done};
}

Progress AsciiFromUtf16(const TCodeUnit* source, size_t length, char* target, size_t room) {
  const size_t most = length < room ? length : room;
  size_t done = 0;
  for (; done + 16 <= most; done += 16) {
    const __m128i low = Load(source + done);
    const __m128i high = Load(source + done + 8);
    if (HasOther(_mm_or_si128(low, high))) break;
    Store(target + done, _mm_packus_epi16(low, high));
  }
  return {done, done};
}

/// One for each lane in which `units`, shifted right, is not zero; as minus one.
__m128i CountAtLeast(__m128i units, int shift) {
  const __m128i zeros = _mm_cmpeq_epi16(_mm_srli_epi16(units, shift), _mm_setzero_si128());
  return _mm_xor_si128(zeros, _mm_set1_epi16(-1));
}

__m128i IsSurrogate(__m128i units, int kind) {
  return _mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFC00))),
                         _mm_set1_epi16(static_cast<short>(kind)));
}

std::int64_t CountUtf8Tail(const TCodeUnit* source, size_t from, size_t length) {
  std::int64_t bytes = 0;
  for (size_t i = from; i < length; ++i) {
    bytes += 1 + (source[i] >= 0x80) + (source[i] >= 0x800);
    if (i > 0 && CodePoint::IsLowSurrogate(source[i]) && CodePoint::IsHighSurrogate(source[i - 1])) bytes -= 2;
  }
  return bytes;
}

/// The sum of eight signed lanes, each small.
std::int64_t Sum(__m128i lanes) {
  const __m128i pairs = _mm_madd_epi16(lanes, _mm_set1_epi16(1));
  alignas(16) std::int32_t sums[4];
  _mm_store_si128(reinterpret_cast<__m128i*>(sums), pairs);
  return std::int64_t{sums[0]} + sums[1] + sums[2] + sums[3];
}

/// Each unit counts by its value alone, a surrogate as 3; a pair counts 2 too many then. Unit 0 is left to the tail,
/// since a low surrogate is judged with the unit before it.
std::int64_t CountUtf8(const TCodeUnit* source, size_t length) {
  constexpr size_t MostBlocks = 4096;  // A lane grows by 2 a block and must stay within 16 bits.
  std::int64_t bytes = CountUtf8Tail(source, 0, length < 1 ? length : 1);
  size_t i = 1;
  while (i + 8 <= length) {
    __m128i more = _mm_setzero_si128();
    const size_t begin = i;
    for (size_t block = 0; block < MostBlocks && i + 8 <= length; ++block, i += 8) {
      const __m128i units = Load(source + i);
      const __m128i pairs = _mm_and_si128(IsSurrogate(units, 0xDC00), IsSurrogate(Load(source + i - 1), 0xD800));
      more = _mm_sub_epi16(more, _mm_add_epi16(CountAtLeast(units, 7), CountAtLeast(units, 11)));
      more = _mm_add_epi16(more, _mm_add_epi16(pairs, pairs));
    }
    bytes += static_cast<std::int64_t>(i - begin) + Sum(more);
  }
  return bytes + CountUtf8Tail(source, i, length);
}

// ---- AVX2, from UTF-8

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
    *target++ = static_cast<TCodeUnit>(0xD7C0 + (codePoint >> 10));
    *target++ = static_cast<TCodeUnit>(0xDC00 + (codePoint & 0x3FF));
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
  const __m128i lanes = _mm_shuffle_epi8(bytes, Load(Spreads.shuffles[spread.shuffle].data()));
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
      for (size_t i = 0; i < Block; i += 16)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target + i), _mm256_cvtepu8_epi16(Load(source + i)));
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
  return {static_cast<size_t>(source - begin), static_cast<size_t>(target - targetBegin)};
}

// ---- AVX2, from UTF-16

/// Eight units below 0x800.
QILSYS_AVX2_PART char* WriteUpToTwo(__m128i units, char* target) {
  const __m128i single = _mm_cmpeq_epi16(_mm_srli_epi16(units, 7), _mm_setzero_si128());
  const __m128i lead = _mm_or_si128(_mm_srli_epi16(units, 6), _mm_set1_epi16(0xC0));
  const __m128i last = _mm_or_si128(_mm_and_si128(units, _mm_set1_epi16(0x3F)), _mm_set1_epi16(0x80));
  const __m128i both = _mm_or_si128(lead, _mm_slli_epi16(last, 8));
  const __m128i lanes = _mm_blendv_epi8(both, units, single);
  const auto singles = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(single, _mm_setzero_si128())));
  const Gather& gather = GatherOfTwo[singles];
  Store(target, _mm_shuffle_epi8(lanes, Load(gather.shuffle.data())));
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
  const Gather& gather = GatherOfThree[lengths];
  Store(target, _mm_shuffle_epi8(lanes, Load(gather.shuffle.data())));
  return target + gather.bytes;
}

QILSYS_AVX2_PART bool AllZero(__m128i units, int mask) {
  return _mm_testz_si128(units, _mm_set1_epi16(static_cast<short>(mask))) != 0;
}

/// Eight units with surrogates among them; null if one is alone. Sets how many units it took: 7 if the last one begins
/// a pair.
char* WriteWithPairs(const TCodeUnit* units, char* target, size_t& taken) {
  size_t i = 0;
  while (i < 8) {
    int count = 0;
    const char32_t value = CodePoint::GetCodePoint(units + i, &count);
    if (i + static_cast<size_t>(count) > 8) break;
    if (count == 1 && value == CodePoint::ReplacementCharacter && units[i] != value) return nullptr;
    int position = 0;
    CodePoint::Utf32ToUtf8(&value, target, position, 5);
    target += position;
    i += static_cast<size_t>(count);
  }
  taken = i;
  return target;
}

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

constexpr Kernel All[] = {{"Sse2", false, AsciiFromUtf8, AsciiFromUtf16, CountUtf8},
                          {"Avx2", true, FromUtf8Avx2, FromUtf16Avx2, CountUtf8}};

bool HasAvx2() {
#if defined(__GNUC__)
  return __builtin_cpu_supports("avx2") != 0;
#else
  return false;
#endif
}

}  // namespace

std::span<const Kernel> Kernels() { return std::span(All).first(HasAvx2() ? 2 : 1); }

}  // namespace Unicode
