/// SHA-512 for many blocks: the message schedules of four blocks are made at once in vectors, one block a lane, in
/// between the rounds of the four blocks before, which leave the vector units idle.
#pragma once

#include <immintrin.h>

#include <algorithm>

#include "cpu/Compiler.h"
#include "hash/ShaRounds.h"

namespace qilsys::hash {

/// To be compiled for AVX2 at least. Where the caller has AVX-512VL, compilers make rotations of the pairs of shifts.
#define QILSYS_WITH_QUAD QILSYS_TARGET("avx2,bmi,bmi2")

struct Sha512Quad {
  using Words = ShaRounds::Words512;

  static constexpr size_t Lanes = 4;
  static constexpr size_t BlockBytes = 128;

  /// For each round a row: the word of each of four blocks, four times the round's constant, and the sums of the two,
  /// which the rounds want. One pointer reaches all of them, since the rounds need nearly every register.
  struct Schedule {
    alignas(64) uint64_t rows[Words::Rounds * 3 * Lanes];

    Schedule() {
      for (size_t k = 0; k < Words::Rounds; ++k) {
        std::fill_n(rows + k * RowWords + ConstantsAt, Lanes, Words::Constants[k]);
      }
    }
  };
  static constexpr size_t ConstantsAt = Lanes;
  static constexpr size_t SumsAt = 2 * Lanes;
  static constexpr size_t RowWords = 3 * Lanes;

  static QILSYS_WITH_QUAD QILSYS_ALWAYS_INLINE __m256i Load(const void* source) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(source));
  }

  static QILSYS_WITH_QUAD QILSYS_ALWAYS_INLINE void Put(uint64_t* row, __m256i words) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(row), words);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(row + SumsAt), _mm256_add_epi64(words, Load(row + ConstantsAt)));
  }

  /// Makes four rows of the first sixteen from the bytes of four blocks.
  static QILSYS_WITH_QUAD QILSYS_ALWAYS_INLINE void Begin(uint64_t* row, const unsigned char* bytes) {
    const __m256i swap =
        _mm256_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607, 0x08090a0b0c0d0e0f, 0x0001020304050607);
    const __m256i a = _mm256_shuffle_epi8(Load(bytes), swap);
    const __m256i b = _mm256_shuffle_epi8(Load(bytes + BlockBytes), swap);
    const __m256i c = _mm256_shuffle_epi8(Load(bytes + 2 * BlockBytes), swap);
    const __m256i d = _mm256_shuffle_epi8(Load(bytes + 3 * BlockBytes), swap);
    const __m256i ab02 = _mm256_unpacklo_epi64(a, b), ab13 = _mm256_unpackhi_epi64(a, b);
    const __m256i cd02 = _mm256_unpacklo_epi64(c, d), cd13 = _mm256_unpackhi_epi64(c, d);
    Put(row, _mm256_permute2x128_si256(ab02, cd02, 0x20));
    Put(row + RowWords, _mm256_permute2x128_si256(ab13, cd13, 0x20));
    Put(row + 2 * RowWords, _mm256_permute2x128_si256(ab02, cd02, 0x31));
    Put(row + 3 * RowWords, _mm256_permute2x128_si256(ab13, cd13, 0x31));
  }

  template <int Bits>
  static QILSYS_WITH_QUAD QILSYS_ALWAYS_INLINE __m256i Turn(__m256i x) {
    if constexpr (Bits == 8) {
      // By whole bytes it is one operation everywhere.
      const __m256i bytes =
          _mm256_set_epi64x(0x080f0e0d0c0b0a09, 0x0007060504030201, 0x080f0e0d0c0b0a09, 0x0007060504030201);
      return _mm256_shuffle_epi8(x, bytes);
    } else {
      return _mm256_or_si256(_mm256_srli_epi64(x, Bits), _mm256_slli_epi64(x, 64 - Bits));
    }
  }

  /// A sigma of the standard: two rotations and a shift.
  template <int First, int Second, int Shift>
  static QILSYS_WITH_QUAD QILSYS_ALWAYS_INLINE __m256i Sigma(__m256i x) {
    return _mm256_xor_si256(_mm256_xor_si256(Turn<First>(x), Turn<Second>(x)), _mm256_srli_epi64(x, Shift));
  }

  /// Makes any later row from those before.
  static QILSYS_WITH_QUAD QILSYS_ALWAYS_INLINE void Extend(uint64_t* row) {
    const __m256i plain = _mm256_add_epi64(Load(row - 16 * RowWords), Load(row - 7 * RowWords));
    const __m256i early = _mm256_add_epi64(plain, Sigma<1, 8, 7>(Load(row - 15 * RowWords)));
    Put(row, _mm256_add_epi64(early, Sigma<19, 61, 6>(Load(row - 2 * RowWords))));
  }

  /// Sixteen rounds of one block, `sums` being those of its lane in the first row, while four more rows are made.
  template <bool Extends>
  static QILSYS_WITH_QUAD QILSYS_ALWAYS_INLINE void Rounds(ShaRounds::Values<Words>& v, const uint64_t* sums,
                                                           uint64_t* next) {
    QILSYS_UNROLL(16)
    for (size_t i = 0; i < 16; ++i) {
      ShaRounds::Round<Words>(v, i, sums[i * RowWords]);
      if (Extends && i % 4 == 3) Extend(next + i / 4 * RowWords);
    }
  }

  /// Feeds four blocks whose schedule is made, and makes that of the next four in between.
  static QILSYS_WITH_QUAD QILSYS_ALWAYS_INLINE void Feed(uint64_t* state, const Schedule& now, Schedule& next,
                                                         const unsigned char* nextBlocks) {
    for (size_t lane = 0, k = 0; lane < Lanes; ++lane) {
      ShaRounds::Values<Words> v(state);
      for (size_t base = 0; base < Words::Rounds; base += 16, k += 4) {
        const uint64_t* sums = now.rows + base * RowWords + SumsAt + lane;
        uint64_t* row = next.rows + k * RowWords;
        if (k < ShaRounds::BlockWords) {
          Begin(row, nextBlocks + k * sizeof(uint64_t));
          Rounds<false>(v, sums, row);
        } else {
          Rounds<true>(v, sums, row);
        }
      }
      v.AddTo(state);
    }
  }

  /// Feeds the blocks by fours and returns how many are left over. `FeedFour` is a form of `Feed` that stays apart: in a
  /// function with vectors in its frame the compiler has one register less.
  template <auto FeedFour>
  static QILSYS_WITH_QUAD QILSYS_ALWAYS_INLINE size_t Transform(uint64_t* state, const unsigned char*& blocks,
                                                                size_t count) {
    if (count < Lanes) return count;
    Schedule schedules[2];
    uint64_t* row = schedules[0].rows;
    for (size_t k = 0; k < ShaRounds::BlockWords; k += 4) Begin(row + k * RowWords, blocks + k * sizeof(uint64_t));
    for (size_t k = ShaRounds::BlockWords; k < Words::Rounds; ++k) Extend(row + k * RowWords);
    for (size_t turn = 0;; turn ^= 1) {
      // The last four have none behind them: their own are read again, to no effect.
      const unsigned char* next = count >= 2 * Lanes ? blocks + Lanes * BlockBytes : blocks;
      FeedFour(state, schedules[turn], schedules[turn ^ 1], next);
      blocks += Lanes * BlockBytes;
      count -= Lanes;
      if (count < Lanes) return count;
    }
  }
};

}  // namespace qilsys::hash
