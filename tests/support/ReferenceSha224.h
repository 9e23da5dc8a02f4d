/// SHA-224 as FIPS 180-4 tells it, for systems whose library lacks it: plain, and written apart from the library's own.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

namespace qilsys::test {

class ReferenceSha224 {
 public:
  static std::string Digest(const unsigned char* data, std::size_t length) {
    ReferenceSha224 h;
    const std::size_t whole = length / 64 * 64;
    for (std::size_t at = 0; at < whole; at += 64) h.AddBlock(data + at);
    // A one bit, zeros, and the number of bits at the end of a block.
    std::string last(reinterpret_cast<const char*>(data + whole), length - whole);
    last += '\x80';
    while (last.size() % 64 != 56) last += '\0';
    for (int shift = 56; shift >= 0; shift -= 8) last += static_cast<char>((std::uint64_t{length} << 3) >> shift);
    for (std::size_t at = 0; at < last.size(); at += 64) {
      h.AddBlock(reinterpret_cast<const unsigned char*>(last.data()) + at);
    }
    return h.Bytes();
  }

 private:
  using Words = std::array<std::uint32_t, 64>;

  /// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
  static const Words& Constants() {
    static const Words RoundConstants = [] {
      Words constants{};
      std::size_t count = 0;
      for (std::uint32_t n = 2; count < constants.size(); ++n) {
        if (IsPrime(n)) constants[count++] = CubeRootBits(n);
      }
      return constants;
    }();
    return RoundConstants;
  }

  static bool IsPrime(std::uint32_t n) {
    for (std::uint32_t d = 2; d * d <= n; ++d) {
      if (n % d == 0) return false;
    }
    return true;
  }

  static std::uint32_t CubeRootBits(std::uint32_t n) {
    const double root = std::cbrt(static_cast<double>(n));
    return static_cast<std::uint32_t>((root - std::floor(root)) * 4294967296.0);
  }

  void AddBlock(const unsigned char* block) {
    Words w{};
    for (std::size_t i = 0; i < 64; ++i) w[i / 4 % 16] = (w[i / 4 % 16] << 8) | block[i];
    for (std::size_t t = 16; t < 64; ++t) {
      const std::uint32_t s0 = Right(w[t - 15], 7) ^ Right(w[t - 15], 18) ^ (w[t - 15] >> 3);
      const std::uint32_t s1 = Right(w[t - 2], 17) ^ Right(w[t - 2], 19) ^ (w[t - 2] >> 10);
      w[t] = w[t - 16] + s0 + w[t - 7] + s1;
    }
    auto [a, b, c, d, e, f, g, h] = m_state;
    for (std::size_t t = 0; t < 64; ++t) {
      const std::uint32_t t1 =
          h + (Right(e, 6) ^ Right(e, 11) ^ Right(e, 25)) + ((e & f) ^ (~e & g)) + Constants()[t] + w[t];
      const std::uint32_t t2 = (Right(a, 2) ^ Right(a, 13) ^ Right(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
      h = g, g = f, f = e, e = d + t1, d = c, c = b, b = a, a = t1 + t2;
    }
    const std::uint32_t values[] = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < 8; ++i) m_state[i] += values[i];
  }

  static std::uint32_t Right(std::uint32_t x, int by) { return (x >> by) | (x << (32 - by)); }

  /// All words but the last.
  std::string Bytes() const {
    std::string bytes;
    for (std::size_t i = 0; i < 28; ++i) bytes += static_cast<char>(m_state[i / 4] >> (24 - 8 * (i % 4)));
    return bytes;
  }

  std::array<std::uint32_t, 8> m_state{0xc1059ed8, 0x367cd507, 0x3070dd17, 0xf70e5939,
                                       0xffc00b31, 0x68581511, 0x64f98fa7, 0xbefa4fa4};
};

}  // namespace qilsys::test
