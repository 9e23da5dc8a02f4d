/// The functions and rounds of FIPS 180-4, to be compiled into each form of the digests' inner loops.
#pragma once

#include <bit>
#include <cstring>

#include "cpu/Compiler.h"
#include "hash/ReadWord.h"
#include "qilsys/sha2.h"

template <class Word>
constexpr Word sha2::Ch(Word x, Word y, Word z) {
  // The standard's (x & y) ^ (~x & z) with one operation less.
  return z ^ (x & (y ^ z));
}

template <class Word>
constexpr Word sha2::Maj(Word x, Word y, Word z) {
  return (x & y) ^ (x & z) ^ (y & z);
}

constexpr uint32_t sha2::Parity(uint32_t x, uint32_t y, uint32_t z) { return x ^ y ^ z; }
constexpr uint32_t sha2::ROTL32(uint32_t x, int n) { return std::rotl(x, n); }
constexpr uint32_t sha2::ROTR32(uint32_t x, int n) { return std::rotr(x, n); }
constexpr uint64_t sha2::ROTR64(uint64_t x, int n) { return std::rotr(x, n); }

template <class Word>
constexpr Word sha2::SHR(Word x, int n) {
  return x >> n;
}

constexpr uint32_t sha2::Sigma0_256(uint32_t x) { return ROTR32(x, 2) ^ ROTR32(x, 13) ^ ROTR32(x, 22); }
constexpr uint32_t sha2::Sigma1_256(uint32_t x) { return ROTR32(x, 6) ^ ROTR32(x, 11) ^ ROTR32(x, 25); }
constexpr uint32_t sha2::sigma0_256(uint32_t x) { return ROTR32(x, 7) ^ ROTR32(x, 18) ^ SHR(x, 3); }
constexpr uint32_t sha2::sigma1_256(uint32_t x) { return ROTR32(x, 17) ^ ROTR32(x, 19) ^ SHR(x, 10); }
constexpr uint64_t sha2::Sigma0_512(uint64_t x) { return ROTR64(x, 28) ^ ROTR64(x, 34) ^ ROTR64(x, 39); }
constexpr uint64_t sha2::Sigma1_512(uint64_t x) { return ROTR64(x, 14) ^ ROTR64(x, 18) ^ ROTR64(x, 41); }
constexpr uint64_t sha2::sigma0_512(uint64_t x) { return ROTR64(x, 1) ^ ROTR64(x, 8) ^ SHR(x, 7); }
constexpr uint64_t sha2::sigma1_512(uint64_t x) { return ROTR64(x, 19) ^ ROTR64(x, 61) ^ SHR(x, 6); }

namespace qilsys::hash {

/// The constants of the rounds: of SHA-1 (one for twenty rounds), SHA-256 and SHA-512.
extern const uint32_t Sha1Constants[4];
alignas(64) extern const uint32_t Sha256Constants[64];
alignas(64) extern const uint64_t Sha512Constants[80];

struct ShaRounds {
  /// The words of 32 bits by which SHA-256 works, and of 64 bits by which SHA-512 does.
  struct Words256 {
    using Word = uint32_t;
    static constexpr size_t Rounds = 64;
    static constexpr const Word* Constants = Sha256Constants;
    static constexpr Word Sigma0(Word x) { return sha2::Sigma0_256(x); }
    static constexpr Word Sigma1(Word x) { return sha2::Sigma1_256(x); }
    static constexpr Word sigma0(Word x) { return sha2::sigma0_256(x); }
    static constexpr Word sigma1(Word x) { return sha2::sigma1_256(x); }
  };
  struct Words512 {
    using Word = uint64_t;
    static constexpr size_t Rounds = 80;
    static constexpr const Word* Constants = Sha512Constants;
    static constexpr Word Sigma0(Word x) { return sha2::Sigma0_512(x); }
    static constexpr Word Sigma1(Word x) { return sha2::Sigma1_512(x); }
    static constexpr Word sigma0(Word x) { return sha2::sigma0_512(x); }
    static constexpr Word sigma1(Word x) { return sha2::sigma1_512(x); }
  };

  static constexpr size_t BlockWords = 16;

  /// The values that one round hands to the next. They stand in a ring that turns by one a round, so none has to be
  /// moved.
  template <class Words>
  struct Values {
    typename Words::Word v[8];
    // The second value xor the third, which the round before had as the first xor the second.
    typename Words::Word differing;

    QILSYS_ALWAYS_INLINE explicit Values(const typename Words::Word* state) {
      std::memcpy(v, state, sizeof(v));
      differing = v[1] ^ v[2];
    }

    QILSYS_ALWAYS_INLINE void AddTo(typename Words::Word* state) const {
      for (size_t i = 0; i < 8; ++i) state[i] += v[i];
    }
  };

  /// One round, of which `input` is the word with the constant added.
  ///
  /// The rounds are a chain, and what counts is how many steps lie between one e and the next, and between one a and the
  /// next: four, since into each sum that comes last which is ready last. So the standard's T1 + d is summed without T1,
  /// which the new a then is given back as the new e less d; and Maj(a, b, c) is the sum of b & c, which the round
  /// before could know, and a & (b ^ c), which has no bit in common with it.
  template <class Words>
  static QILSYS_ALWAYS_INLINE void Round(Values<Words>& values, size_t round, typename Words::Word input) {
    const auto at = [&](size_t i) -> typename Words::Word& { return values.v[(i - round) & 7]; };
    auto e = at(7) + input + at(3);
    auto a = (at(1) & at(2)) - at(3);
    e += sha2::Ch(at(4), at(5), at(6));
    e += Words::Sigma1(at(4));
    a += at(0) & values.differing;
    values.differing = at(0) ^ at(1);
    a += e;
    at(3) = e;
    at(7) = a + Words::Sigma0(at(0));
  }

  /// Turns the word of sixteen rounds ago into the word of this round.
  template <class Words>
  static QILSYS_ALWAYS_INLINE void Extend(typename Words::Word* w, size_t round) {
    const auto at = [&](size_t i) -> typename Words::Word& { return w[(round + i) & 15]; };
    at(0) += Words::sigma0(at(1)) + at(9) + Words::sigma1(at(14));
  }

  template <class Words>
  static QILSYS_ALWAYS_INLINE void Transform(typename Words::Word* state, const unsigned char* blocks, size_t count) {
    using Word = typename Words::Word;
    for (; count > 0; --count, blocks += BlockWords * sizeof(Word)) {
      Word w[BlockWords];
      Values<Words> v(state);
      QILSYS_UNROLL(16)
      for (size_t i = 0; i < BlockWords; ++i) {
        w[i] = ReadBig<Word>(blocks + i * sizeof(Word));
        Round<Words>(v, i, w[i] + Words::Constants[i]);
      }
      for (size_t base = BlockWords; base < Words::Rounds; base += BlockWords) {
        QILSYS_UNROLL(16)
        for (size_t i = 0; i < BlockWords; ++i) {
          Extend<Words>(w, i);
          Round<Words>(v, i, w[i] + Words::Constants[base + i]);
        }
      }
      v.AddTo(state);
    }
  }

  /// The function of SHA-1 for a group of twenty rounds.
  template <size_t Group>
  static constexpr uint32_t Sha1Function(uint32_t x, uint32_t y, uint32_t z) {
    if constexpr (Group == 0) return sha2::Ch(x, y, z);
    if constexpr (Group == 2) return sha2::Maj(x, y, z);
    return sha2::Parity(x, y, z);
  }

  template <size_t Group>
  static QILSYS_ALWAYS_INLINE void Sha1Group(uint32_t* v, uint32_t* w) {
    QILSYS_UNROLL(20)
    for (size_t i = 0; i < 20; ++i) {
      const size_t round = Group * 20 + i;
      const auto at = [&](size_t k) -> uint32_t& { return v[(k + 80 - round) % 5]; };
      const auto word = [&](size_t k) -> uint32_t& { return w[(round + k) & 15]; };
      if (round >= BlockWords) word(0) = sha2::ROTL32(word(13) ^ word(8) ^ word(2) ^ word(0), 1);
      // What the round before has just made comes last into the sum.
      at(4) += word(0) + Sha1Constants[Group];
      at(4) += Sha1Function<Group>(at(1), at(2), at(3));
      at(4) += sha2::ROTL32(at(0), 5);
      at(1) = sha2::ROTL32(at(1), 30);
    }
  }

  static QILSYS_ALWAYS_INLINE void Sha1Transform(uint32_t* state, const unsigned char* blocks, size_t count) {
    for (; count > 0; --count, blocks += BlockWords * sizeof(uint32_t)) {
      uint32_t w[BlockWords];
      uint32_t v[5];
      for (size_t i = 0; i < BlockWords; ++i) w[i] = ReadBig<uint32_t>(blocks + i * sizeof(uint32_t));
      std::memcpy(v, state, sizeof(v));
      Sha1Group<0>(v, w);
      Sha1Group<1>(v, w);
      Sha1Group<2>(v, w);
      Sha1Group<3>(v, w);
      for (size_t i = 0; i < 5; ++i) state[i] += v[i];
    }
  }
};

}  // namespace qilsys::hash
