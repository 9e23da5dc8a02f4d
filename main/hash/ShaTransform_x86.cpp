// For x86-64: the SHA extensions, and BMI2's rotations that leave their source alone. Other processors take
// ShaTransform_generic.cpp.
#include "hash/ShaTransform_cpu.h"

#include <utility>

#include "cpu/CpuFeatures.h"
#include "cpu/Vectors_x86.h"
#include "hash/Sha512Quad_x86.h"
#include "hash/ShaRounds.h"

#define QILSYS_WITH_SHA QILSYS_TARGET("sha,sse4.1,ssse3")

namespace qilsys::hash {

namespace {

using cpu::Load;
using cpu::Store;

// SHA-256. The instructions want the eight values in two registers as (a b e f) and (c d g h), high word first, and do
// two rounds at a time.

struct Pair256 {
  __m128i abef;
  __m128i cdgh;
};

QILSYS_WITH_SHA QILSYS_ALWAYS_INLINE Pair256 Load256(const uint32_t* state) {
  const __m128i cdab = _mm_shuffle_epi32(Load(state), 0xB1);
  const __m128i efgh = _mm_shuffle_epi32(Load(state + 4), 0x1B);
  return {_mm_alignr_epi8(cdab, efgh, 8), _mm_blend_epi16(efgh, cdab, 0xF0)};
}

QILSYS_WITH_SHA QILSYS_ALWAYS_INLINE void Store256(uint32_t* state, Pair256 v) {
  const __m128i feba = _mm_shuffle_epi32(v.abef, 0x1B);
  const __m128i dchg = _mm_shuffle_epi32(v.cdgh, 0xB1);
  Store(state, _mm_blend_epi16(feba, dchg, 0xF0));
  Store(state + 4, _mm_alignr_epi8(dchg, feba, 8));
}

/// Four rounds. `w` is a ring of the last sixteen words, four a register.
template <size_t Group>
QILSYS_WITH_SHA QILSYS_ALWAYS_INLINE void Rounds256(Pair256& v, __m128i* w) {
  __m128i& now = w[Group % 4];
  if constexpr (Group >= 4) {
    const __m128i before = w[(Group + 3) % 4];
    const __m128i shifted = _mm_alignr_epi8(before, w[(Group + 2) % 4], 4);
    now = _mm_sha256msg2_epu32(_mm_add_epi32(_mm_sha256msg1_epu32(now, w[(Group + 1) % 4]), shifted), before);
  }
  const __m128i sum = _mm_add_epi32(now, Load(Sha256Constants + 4 * Group));
  v.cdgh = _mm_sha256rnds2_epu32(v.cdgh, v.abef, sum);
  v.abef = _mm_sha256rnds2_epu32(v.abef, v.cdgh, _mm_shuffle_epi32(sum, 0x0E));
}

template <size_t... Groups>
QILSYS_WITH_SHA QILSYS_ALWAYS_INLINE void AllRounds256(Pair256& v, __m128i* w, std::index_sequence<Groups...>) {
  (Rounds256<Groups>(v, w), ...);
}

QILSYS_WITH_SHA void Sha256Extension(uint32_t* state, const unsigned char* blocks, size_t count) {
  const __m128i swap = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
  Pair256 v = Load256(state);
  for (; count > 0; --count, blocks += 64) {
    __m128i w[4];
    for (size_t i = 0; i < 4; ++i) w[i] = _mm_shuffle_epi8(Load(blocks + 16 * i), swap);
    const Pair256 before = v;
    AllRounds256(v, w, std::make_index_sequence<16>());
    v.abef = _mm_add_epi32(v.abef, before.abef);
    v.cdgh = _mm_add_epi32(v.cdgh, before.cdgh);
  }
  Store256(state, v);
}

// SHA-1. The instructions want (a b c d), high word first, and e in the highest word of a register of its own, and do
// four rounds at a time.

/// Four rounds. `e` holds (a b c d) of four rounds ago, of which the next e is made.
template <size_t Group>
QILSYS_WITH_SHA QILSYS_ALWAYS_INLINE void Rounds1(__m128i& abcd, __m128i& e, __m128i* w) {
  __m128i& now = w[Group % 4];
  if constexpr (Group >= 4) {
    const __m128i part = _mm_xor_si128(_mm_sha1msg1_epu32(now, w[(Group + 1) % 4]), w[(Group + 2) % 4]);
    now = _mm_sha1msg2_epu32(part, w[(Group + 3) % 4]);
  }
  const __m128i sum = Group == 0 ? _mm_add_epi32(e, now) : _mm_sha1nexte_epu32(e, now);
  e = abcd;
  abcd = _mm_sha1rnds4_epu32(abcd, sum, Group / 5);
}

template <size_t... Groups>
QILSYS_WITH_SHA QILSYS_ALWAYS_INLINE void AllRounds1(__m128i& abcd, __m128i& e, __m128i* w,
                                                     std::index_sequence<Groups...>) {
  (Rounds1<Groups>(abcd, e, w), ...);
}

QILSYS_WITH_SHA void Sha1Extension(uint32_t* state, const unsigned char* blocks, size_t count) {
  const __m128i reverse = _mm_set_epi64x(0x0001020304050607, 0x08090a0b0c0d0e0f);
  __m128i abcd = _mm_shuffle_epi32(Load(state), 0x1B);
  __m128i e = _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0);
  for (; count > 0; --count, blocks += 64) {
    __m128i w[4];
    for (size_t i = 0; i < 4; ++i) w[i] = _mm_shuffle_epi8(Load(blocks + 16 * i), reverse);
    const __m128i abcdBefore = abcd;
    const __m128i eBefore = e;
    AllRounds1(abcd, e, w, std::make_index_sequence<20>());
    e = _mm_sha1nexte_epu32(e, eBefore);
    abcd = _mm_add_epi32(abcd, abcdBefore);
  }
  Store(state, _mm_shuffle_epi32(abcd, 0x1B));
  state[4] = static_cast<uint32_t>(_mm_extract_epi32(e, 3));
}

// BMI2.

QILSYS_TARGET("bmi,bmi2")
void Sha1Bmi2(uint32_t* state, const unsigned char* blocks, size_t count) {
  ShaRounds::Sha1Transform(state, blocks, count);
}

QILSYS_TARGET("bmi,bmi2")
void Sha256Bmi2(uint32_t* state, const unsigned char* blocks, size_t count) {
  ShaRounds::Transform<ShaRounds::Words256>(state, blocks, count);
}

QILSYS_TARGET("bmi,bmi2")
void Sha512Bmi2(uint64_t* state, const unsigned char* blocks, size_t count) {
  ShaRounds::Transform<ShaRounds::Words512>(state, blocks, count);
}

// Four schedules at a time.

QILSYS_TARGET("avx2,bmi,bmi2")
QILSYS_NOINLINE void FeedFourAvx2(uint64_t* state, const Sha512Quad::Schedule& now, Sha512Quad::Schedule& next,
                                  const unsigned char* nextBlocks) {
  Sha512Quad::Feed(state, now, next, nextBlocks);
}

QILSYS_TARGET("avx2,bmi,bmi2")
void Sha512Avx2(uint64_t* state, const unsigned char* blocks, size_t count) {
  const size_t left = Sha512Quad::Transform<FeedFourAvx2>(state, blocks, count);
  cpu::LeaveWideRegisters();
  ShaRounds::Transform<ShaRounds::Words512>(state, blocks, left);
}

QILSYS_TARGET("avx512vl,avx2,bmi,bmi2")
QILSYS_NOINLINE void FeedFourAvx512(uint64_t* state, const Sha512Quad::Schedule& now, Sha512Quad::Schedule& next,
                                    const unsigned char* nextBlocks) {
  Sha512Quad::Feed(state, now, next, nextBlocks);
}

QILSYS_TARGET("avx512vl,avx2,bmi,bmi2")
void Sha512Avx512(uint64_t* state, const unsigned char* blocks, size_t count) {
  const size_t left = Sha512Quad::Transform<FeedFourAvx512>(state, blocks, count);
  cpu::LeaveWideRegisters();
  ShaRounds::Transform<ShaRounds::Words512>(state, blocks, left);
}

constexpr cpu::CpuFeatures BmiAndAvx2 = cpu::Bmi2 | cpu::Avx2;

constexpr ShaTransforms Forms[] = {
    {"bmi2", cpu::Bmi2, Sha1Bmi2, Sha256Bmi2, Sha512Bmi2},
    {"avx2", BmiAndAvx2, Sha1Bmi2, Sha256Bmi2, Sha512Avx2},
    {"avx512", BmiAndAvx2 | cpu::Avx512vl, Sha1Bmi2, Sha256Bmi2, Sha512Avx512},
    {"sha", cpu::Sha, Sha1Extension, Sha256Extension, nullptr},
};

}  // namespace

std::span<const ShaTransforms> CpuShaTransforms() { return Forms; }

}  // namespace qilsys::hash
