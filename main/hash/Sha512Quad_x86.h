/// SHA-512 for many blocks: the message schedules of four blocks are made at once in vectors, one block a lane, in
/// between the rounds of the four blocks before, which leave the vector units idle.
#pragma once

#include <immintrin.h>

#include "hash/Compiler.h"
#include "hash/ShaRounds.h"

namespace qilsys::hash {

/// To be compiled for AVX2 at least, and better for what follows it.
#define QILSYS_WITH_QUAD QILSYS_WITH_INSTRUCTIONS("avx2,bmi,bmi2")

struct Sha512Quad {
  using Words = ShaRounds::Words512;
  using Vector = uint64_t __attribute__((vector_size(32)));

  static constexpr size_t Lanes = 4;
  static constexpr size_t BlockBytes = 128;

  /// The words of four blocks, and the same with the constants of their rounds added.
  struct Schedule {
    Vector words[Words::Rounds];
    Vector sums[Words::Rounds];
  };

  template <int Bits>
  static QILSYS_WITH_QUAD QILSYS_PART_OF_CALLER Vector Turn(const Vector& x) {
    return (x >> Bits) | (x << (64 - Bits));
  }

  /// Words `k` to `k` + 3 of four blocks, the first word of all of them first.
  static QILSYS_WITH_QUAD QILSYS_PART_OF_CALLER void LoadWords(Vector* w, const unsigned char* blocks, size_t k) {
    const __m256i swap =
        _mm256_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607, 0x08090a0b0c0d0e0f, 0x0001020304050607);
    const auto load = [&](size_t block) QILSYS_WITH_QUAD {
      const void* source = blocks + block * BlockBytes + k * sizeof(uint64_t);
      return _mm256_shuffle_epi8(_mm256_loadu_si256(static_cast<const __m256i*>(source)), swap);
    };
    const __m256i a = load(0), b = load(1), c = load(2), d = load(3);
    const __m256i ab02 = _mm256_unpacklo_epi64(a, b), ab13 = _mm256_unpackhi_epi64(a, b);
    const __m256i cd02 = _mm256_unpacklo_epi64(c, d), cd13 = _mm256_unpackhi_epi64(c, d);
    w[k] = reinterpret_cast<Vector>(_mm256_permute2x128_si256(ab02, cd02, 0x20));
    w[k + 1] = reinterpret_cast<Vector>(_mm256_permute2x128_si256(ab13, cd13, 0x20));
    w[k + 2] = reinterpret_cast<Vector>(_mm256_permute2x128_si256(ab02, cd02, 0x31));
    w[k + 3] = reinterpret_cast<Vector>(_mm256_permute2x128_si256(ab13, cd13, 0x31));
  }

  static QILSYS_WITH_QUAD QILSYS_PART_OF_CALLER void Add(Schedule& schedule, size_t k) {
    schedule.sums[k] = schedule.words[k] + Words::Constants[k];
  }

  /// Makes the words `k` to `k` + 3 of four blocks from their bytes, for `k` below 16.
  static QILSYS_WITH_QUAD QILSYS_PART_OF_CALLER void Begin(Schedule& schedule, const unsigned char* blocks, size_t k) {
    LoadWords(schedule.words, blocks, k);
    for (size_t i = 0; i < Lanes; ++i) Add(schedule, k + i);
  }

  /// Makes word `k` of four blocks from those before, for `k` from 16 on.
  static QILSYS_WITH_QUAD QILSYS_PART_OF_CALLER void Extend(Schedule& schedule, size_t k) {
    Vector* w = schedule.words + k;
    const Vector x = w[-15], y = w[-2];
    w[0] = w[-16] + (Turn<1>(x) ^ Turn<8>(x) ^ (x >> 7)) + w[-7] + (Turn<19>(y) ^ Turn<61>(y) ^ (y >> 6));
    Add(schedule, k);
  }

  /// The 80 rounds of one block, by its lane, with a quarter of the schedule to come in between: four words after each
  /// sixteen rounds' start.
  static QILSYS_WITH_QUAD QILSYS_PART_OF_CALLER void Rounds(uint64_t* state, const Schedule& now, size_t lane,
                                                            Schedule& next, const unsigned char* nextBlocks) {
    ShaRounds::Values<Words> v(state);
    for (size_t base = 0; base < Words::Rounds; base += 16) {
      const size_t k = lane * 20 + base / 4;
      if (k < ShaRounds::BlockWords) Begin(next, nextBlocks, k);
      QILSYS_UNROLL(16)
      for (size_t i = 0; i < 16; ++i) {
        ShaRounds::Round<Words>(v, i, now.sums[base + i][lane]);
        if (i % 4 == 3 && k >= ShaRounds::BlockWords) Extend(next, k + i / 4);
      }
    }
    v.AddTo(state);
  }

  /// Feeds the blocks by fours and returns how many are left over.
  static QILSYS_WITH_QUAD QILSYS_PART_OF_CALLER size_t Transform(uint64_t* state, const unsigned char*& blocks,
                                                                 size_t count) {
    if (count < Lanes) return count;
    Schedule schedules[2];
    for (size_t k = 0; k < ShaRounds::BlockWords; k += Lanes) Begin(schedules[0], blocks, k);
    for (size_t k = ShaRounds::BlockWords; k < Words::Rounds; ++k) Extend(schedules[0], k);
    for (size_t turn = 0;; turn ^= 1) {
      // The last four have none behind them: their own are read again, to no effect.
      const unsigned char* next = count >= 2 * Lanes ? blocks + Lanes * BlockBytes : blocks;
      for (size_t lane = 0; lane < Lanes; ++lane) Rounds(state, schedules[turn], lane, schedules[turn ^ 1], next);
      blocks += Lanes * BlockBytes;
      count -= Lanes;
      if (count < Lanes) return count;
    }
  }
};

}  // namespace qilsys::hash
