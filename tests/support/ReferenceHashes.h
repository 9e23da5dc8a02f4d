/// The published hashes of bytes as their descriptions tell them, one byte at a time: slow, plain, and written apart
/// from the library's own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace qilsys::test {

/// Bob Jenkins's lookup2 of 1996.
class ReferenceLookup2 {
 public:
  static std::uint32_t Hash(const std::vector<std::uint8_t>& bytes, std::uint32_t initial) {
    ReferenceLookup2 h(initial);
    const std::size_t whole = bytes.size() / 12 * 12;
    for (std::size_t i = 0; i < whole; ++i) {
      h.m_abc[i % 12 / 4] += std::uint32_t{bytes[i]} << (8 * (i % 4));
      if (i % 12 == 11) h.Mix();
    }
    h.m_abc[2] += static_cast<std::uint32_t>(bytes.size());
    for (std::size_t i = whole; i < bytes.size(); ++i) {
      // The lowest byte of the third word is left to the length.
      const std::size_t place = i - whole < 8 ? i - whole : i - whole + 1;
      h.m_abc[place / 4] += std::uint32_t{bytes[i]} << (8 * (place % 4));
    }
    h.Mix();
    return h.m_abc[2];
  }

 private:
  explicit ReferenceLookup2(std::uint32_t initial) : m_abc{0x9e3779b9, 0x9e3779b9, initial} {}

  void Mix() {
    auto& [a, b, c] = m_abc;
    a -= b, a -= c, a ^= c >> 13;
    b -= c, b -= a, b ^= a << 8;
    c -= a, c -= b, c ^= b >> 13;
    a -= b, a -= c, a ^= c >> 12;
    b -= c, b -= a, b ^= a << 16;
    c -= a, c -= b, c ^= b >> 5;
    a -= b, a -= c, a ^= c >> 3;
    b -= c, b -= a, b ^= a << 10;
    c -= a, c -= b, c ^= b >> 15;
  }

  std::array<std::uint32_t, 3> m_abc;
};

/// Bob Jenkins's SpookyHash, version 2, of 2012, for machines of either byte order as a little-endian one computes it.
class ReferenceSpooky {
 public:
  using Hash128 = std::pair<std::uint64_t, std::uint64_t>;

  static Hash128 Hash(const std::vector<std::uint8_t>& bytes, std::uint64_t seed1, std::uint64_t seed2) {
    return bytes.size() < 192 ? Short(bytes, seed1, seed2) : Long(bytes, seed1, seed2);
  }

 private:
  static constexpr std::uint64_t Constant = 0xdeadbeefdeadbeef;

  /// Adds `count` bytes from `from` on into the words, the first into the lowest byte.
  template <std::size_t Size>
  static void AddBytes(std::array<std::uint64_t, Size>& words, std::size_t firstWord,
                       const std::vector<std::uint8_t>& bytes, std::size_t from, std::size_t count) {
    std::array<std::uint64_t, Size> sums{};
    for (std::size_t i = 0; i < count; ++i) {
      sums[firstWord + i / 8] |= std::uint64_t{bytes[from + i]} << (8 * (i % 8));
    }
    for (std::size_t i = 0; i < Size; ++i) words[i] += sums[i];
  }

  static std::uint64_t Left(std::uint64_t x, int by) { return (x << by) | (x >> (64 - by)); }

  static Hash128 Short(const std::vector<std::uint8_t>& bytes, std::uint64_t seed1, std::uint64_t seed2) {
    // a, b, c and d.
    std::array<std::uint64_t, 4> s{seed1, seed2, Constant, Constant};
    std::size_t at = 0;
    while (bytes.size() - at >= 16) {
      AddBytes(s, 2, bytes, at, 16);
      ShortMix(s);
      at += 16;
      if (bytes.size() - at < 16) break;
      AddBytes(s, 0, bytes, at, 16);
      at += 16;
    }
    s[3] += std::uint64_t{bytes.size()} << 56;
    AddBytes(s, 2, bytes, at, bytes.size() - at);
    if (at == bytes.size()) s[2] += Constant, s[3] += Constant;
    ShortEnd(s);
    return {s[0], s[1]};
  }

  static void ShortMix(std::array<std::uint64_t, 4>& s) {
    constexpr int Turns[] = {50, 52, 30, 41, 54, 48, 38, 37, 62, 34, 5, 36};
    for (std::size_t i = 0; i < 12; ++i) {
      std::uint64_t& x = s[(i + 2) % 4];
      x = Left(x, Turns[i]) + s[(i + 3) % 4];
      s[i % 4] ^= x;
    }
  }

  static void ShortEnd(std::array<std::uint64_t, 4>& s) {
    constexpr int Turns[] = {15, 52, 26, 51, 28, 9, 47, 54, 32, 25, 63};
    for (std::size_t i = 0; i < 11; ++i) {
      std::uint64_t& x = s[(i + 3) % 4];
      std::uint64_t& y = s[(i + 2) % 4];
      x ^= y;
      y = Left(y, Turns[i]);
      x += y;
    }
  }

  static Hash128 Long(std::vector<std::uint8_t> bytes, std::uint64_t seed1, std::uint64_t seed2) {
    std::array<std::uint64_t, 12> s{};
    for (std::size_t i = 0; i < 12; ++i) s[i] = i % 3 == 0 ? seed1 : i % 3 == 1 ? seed2 : Constant;
    const std::size_t remainder = bytes.size() % 96;
    bytes.resize(bytes.size() - remainder + 96);
    bytes.back() = static_cast<std::uint8_t>(remainder);
    std::size_t at = 0;
    for (; bytes.size() - at > 96; at += 96) LongMix(s, bytes, at);
    AddBytes(s, 0, bytes, at, 96);
    for (int round = 0; round < 3; ++round) LongEnd(s);
    return {s[0], s[1]};
  }

  static void LongMix(std::array<std::uint64_t, 12>& s, const std::vector<std::uint8_t>& bytes, std::size_t at) {
    constexpr int Turns[] = {11, 32, 43, 31, 17, 28, 39, 57, 55, 54, 22, 46};
    for (std::size_t i = 0; i < 12; ++i) {
      AddBytes(s, i, bytes, at + 8 * i, 8);
      s[(i + 2) % 12] ^= s[(i + 10) % 12];
      s[(i + 11) % 12] ^= s[i];
      s[i] = Left(s[i], Turns[i]);
      s[(i + 11) % 12] += s[(i + 1) % 12];
    }
  }

  static void LongEnd(std::array<std::uint64_t, 12>& s) {
    constexpr int Turns[] = {44, 15, 34, 21, 38, 33, 10, 13, 38, 53, 42, 54};
    for (std::size_t i = 0; i < 12; ++i) {
      s[(i + 11) % 12] += s[(i + 1) % 12];
      s[(i + 2) % 12] ^= s[(i + 11) % 12];
      s[(i + 1) % 12] = Left(s[(i + 1) % 12], Turns[i]);
    }
  }
};

}  // namespace qilsys::test
