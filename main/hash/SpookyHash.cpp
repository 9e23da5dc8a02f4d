#include "hash/SpookyHash.h"

#include <bit>
#include <cstring>

#include "cpu/Compiler.h"
#include "hash/ReadWord.h"

namespace qilsys::hash {

namespace {

// Odd, not symmetric in its bits, and of about as many ones as zeros.
constexpr uint64_t Constant = 0xdeadbeefdeadbeef;

constexpr size_t StateWords = 12;
constexpr size_t BlockBytes = StateWords * sizeof(uint64_t);
constexpr size_t ShortLimit = 2 * BlockBytes;

// Where the last of a word's bytes in memory stands in its value.
constexpr int LastByteShift = std::endian::native == std::endian::little ? 56 : 0;

uint64_t Word(const unsigned char* bytes) { return ReadNative<uint64_t>(bytes); }

/// The four words of the form for short messages.
struct ShortState {
  uint64_t a;
  uint64_t b;
  uint64_t c;
  uint64_t d;

  /// Every bit of a word reaches every other word; reversible.
  void Mix() {
    Turn(c, d, a, 50), Turn(d, a, b, 52), Turn(a, b, c, 30), Turn(b, c, d, 41);
    Turn(c, d, a, 54), Turn(d, a, b, 48), Turn(a, b, c, 38), Turn(b, c, d, 37);
    Turn(c, d, a, 62), Turn(d, a, b, 34), Turn(a, b, c, 5), Turn(b, c, d, 36);
  }

  /// Every bit of the four words reaches the two that are the result.
  void End() {
    Close(d, c, 15), Close(a, d, 52), Close(b, a, 26), Close(c, b, 51);
    Close(d, c, 28), Close(a, d, 9), Close(b, a, 47), Close(c, b, 54);
    Close(d, c, 32), Close(a, d, 25), Close(b, a, 63);
  }

 private:
  static void Turn(uint64_t& x, uint64_t& y, uint64_t& z, int by) {
    x = std::rotl(x, by);
    x += y;
    z ^= x;
  }

  static void Close(uint64_t& x, uint64_t& y, int by) {
    x ^= y;
    y = std::rotl(y, by);
    x += y;
  }
};

/// Up to seven bytes as a word, the first the lowest.
uint64_t PartialWord(const unsigned char* bytes, size_t count) {
  uint64_t word = 0;
  std::memcpy(&word, bytes, count);
  return word;
}

/// The last 0 to 15 bytes; the length is in the highest byte of the fourth word already.
void AddTail(ShortState& s, const unsigned char* data, size_t left) {
  if (left == 0) {
    s.c += Constant;
    s.d += Constant;
  } else if (left < 8) {
    s.c += PartialWord(data, left);
  } else {
    s.c += Word(data);
    s.d += PartialWord(data + 8, left - 8);
  }
}

Hash128 HashShort(const unsigned char* data, size_t length, uint64_t seed1, uint64_t seed2) {
  ShortState s{seed1, seed2, Constant, Constant};
  size_t left = length;
  for (; left >= 32; left -= 32, data += 32) {
    s.c += Word(data);
    s.d += Word(data + 8);
    s.Mix();
    s.a += Word(data + 16);
    s.b += Word(data + 24);
  }
  if (left >= 16) {
    s.c += Word(data);
    s.d += Word(data + 8);
    s.Mix();
    left -= 16;
    data += 16;
  }
  s.d += uint64_t{length} << 56;
  AddTail(s, data, left);
  s.End();
  return {s.a, s.b};
}

/// The twelve words of the form for long messages.
class LongState {
 public:
  LongState(uint64_t seed1, uint64_t seed2) {
    for (size_t i = 0; i < StateWords; i += 3) {
      m_words[i] = seed1;
      m_words[i + 1] = seed2;
      m_words[i + 2] = Constant;
    }
  }

  void Mix(const unsigned char* block) {
    constexpr int Turns[StateWords] = {11, 32, 43, 31, 17, 28, 39, 57, 55, 54, 22, 46};
    QILSYS_UNROLL(12)
    for (size_t i = 0; i < StateWords; ++i) {
      At(i) += Word(block + 8 * i);
      At(i + 2) ^= At(i + 10);
      At(i + 11) ^= At(i);
      At(i) = std::rotl(At(i), Turns[i]);
      At(i + 11) += At(i + 1);
    }
  }

  /// Takes in what is less than a block, as if zeros filled it up, but for the last byte, which is its length.
  Hash128 End(const unsigned char* data, size_t length) {
    // Words chosen at run time stand in memory, so they are not the state's own, which is to stand in registers.
    uint64_t words[StateWords];
    QILSYS_UNROLL(12)
    for (size_t i = 0; i < StateWords; ++i) words[i] = m_words[i];
    const size_t whole = length / sizeof(uint64_t);
    for (size_t i = 0; i < whole; ++i) words[i] += Word(data + 8 * i);
    if (length % 8 != 0) words[whole] += PartialWord(data + 8 * whole, length % 8);
    QILSYS_UNROLL(12)
    for (size_t i = 0; i < StateWords; ++i) m_words[i] = words[i];
    m_words[StateWords - 1] += uint64_t{length} << LastByteShift;
    for (int round = 0; round < 3; ++round) EndRound();
    return {m_words[0], m_words[1]};
  }

 private:
  uint64_t& At(size_t i) { return m_words[i % StateWords]; }

  void EndRound() {
    constexpr int Turns[StateWords] = {44, 15, 34, 21, 38, 33, 10, 13, 38, 53, 42, 54};
    QILSYS_UNROLL(12)
    for (size_t i = 0; i < StateWords; ++i) {
      At(i + 11) += At(i + 1);
      At(i + 2) ^= At(i + 11);
      At(i + 1) = std::rotl(At(i + 1), Turns[i]);
    }
  }

  uint64_t m_words[StateWords];
};

Hash128 HashLong(const unsigned char* data, size_t length, uint64_t seed1, uint64_t seed2) {
  LongState state(seed1, seed2);
  for (; length >= BlockBytes; length -= BlockBytes, data += BlockBytes) state.Mix(data);
  return state.End(data, length);
}

}  // namespace

Hash128 SpookyHash(const unsigned char* data, size_t length, uint64_t seed1, uint64_t seed2) {
  return length < ShortLimit ? HashShort(data, length, seed1, seed2) : HashLong(data, length, seed1, seed2);
}

}  // namespace qilsys::hash
