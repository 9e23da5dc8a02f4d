// What does a hash cost, by its message's length? The two algorithms in the word-wise form in which they were published
// stand beside as the measure.
#include "qilsys/THash.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "SideBySide.h"

namespace {

constexpr std::uint64_t Seed = 0x0123456789abcdef;

std::string Message(const benchmark::State& state) {
  std::string message(static_cast<std::size_t>(state.range(0)), '\0');
  for (std::size_t i = 0; i < message.size(); ++i) message[i] = static_cast<char>(i * 31);
  return message;
}

std::uint64_t Rotated(std::uint64_t x, int by) { return (x << by) | (x >> (64 - by)); }

std::uint64_t Word(const unsigned char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

// lookup2: three words a round, each put together from bytes.
std::uint32_t PublishedLookup2(const unsigned char* k, std::uint32_t length, std::uint32_t initial) {
  std::uint32_t a = 0x9e3779b9, b = 0x9e3779b9, c = initial;
  const auto word = [&k](int i) {
    return k[i] + (std::uint32_t{k[i + 1]} << 8) + (std::uint32_t{k[i + 2]} << 16) + (std::uint32_t{k[i + 3]} << 24);
  };
  const auto mix = [&] {
    a -= b, a -= c, a ^= c >> 13, b -= c, b -= a, b ^= a << 8, c -= a, c -= b, c ^= b >> 13;
    a -= b, a -= c, a ^= c >> 12, b -= c, b -= a, b ^= a << 16, c -= a, c -= b, c ^= b >> 5;
    a -= b, a -= c, a ^= c >> 3, b -= c, b -= a, b ^= a << 10, c -= a, c -= b, c ^= b >> 15;
  };
  std::uint32_t left = length;
  for (; left >= 12; left -= 12, k += 12) a += word(0), b += word(4), c += word(8), mix();
  c += length;
  for (std::uint32_t i = 8; i < left; ++i) c += std::uint32_t{k[i]} << (8 * (i - 7));
  for (std::uint32_t i = 4; i < left && i < 8; ++i) b += std::uint32_t{k[i]} << (8 * (i - 4));
  for (std::uint32_t i = 0; i < left && i < 4; ++i) a += std::uint32_t{k[i]} << (8 * i);
  mix();
  return c;
}

// SpookyHash V2's short form, its steps written out.
std::uint64_t PublishedShort(const unsigned char* p, std::size_t length, std::uint64_t seed) {
  constexpr std::uint64_t Constant = 0xdeadbeefdeadbeef;
  std::uint64_t a = seed, b = seed, c = Constant, d = Constant;
  const auto mix = [&] {
    c = Rotated(c, 50), c += d, a ^= c, d = Rotated(d, 52), d += a, b ^= d;
    a = Rotated(a, 30), a += b, c ^= a, b = Rotated(b, 41), b += c, d ^= b;
    c = Rotated(c, 54), c += d, a ^= c, d = Rotated(d, 48), d += a, b ^= d;
    a = Rotated(a, 38), a += b, c ^= a, b = Rotated(b, 37), b += c, d ^= b;
    c = Rotated(c, 62), c += d, a ^= c, d = Rotated(d, 34), d += a, b ^= d;
    a = Rotated(a, 5), a += b, c ^= a, b = Rotated(b, 36), b += c, d ^= b;
  };
  std::size_t left = length;
  for (; left >= 32; left -= 32, p += 32) c += Word(p), d += Word(p + 8), mix(), a += Word(p + 16), b += Word(p + 24);
  if (left >= 16) c += Word(p), d += Word(p + 8), mix(), left -= 16, p += 16;
  d += std::uint64_t{length} << 56;
  for (std::size_t i = 8; i < left; ++i) d += std::uint64_t{p[i]} << (8 * (i - 8));
  if (left >= 8) {
    c += Word(p);
  } else if (left > 0) {
    for (std::size_t i = 0; i < left; ++i) c += std::uint64_t{p[i]} << (8 * i);
  } else {
    c += Constant, d += Constant;
  }
  d ^= c, c = Rotated(c, 15), d += c, a ^= d, d = Rotated(d, 52), a += d, b ^= a, a = Rotated(a, 26), b += a;
  c ^= b, b = Rotated(b, 51), c += b, d ^= c, c = Rotated(c, 28), d += c, a ^= d, d = Rotated(d, 9), a += d;
  b ^= a, a = Rotated(a, 47), b += a, c ^= b, b = Rotated(b, 54), c += b, d ^= c, c = Rotated(c, 32), d += c;
  a ^= d, d = Rotated(d, 25), a += d, b ^= a, a = Rotated(a, 63), b += a;
  return a;
}

// SpookyHash V2's long form: one step a word, the words in variables of their own.
#define QILSYS_MIX(i, s0, s2, s10, s11, s1, by) \
  s0 += Word(p + 8 * i), s2 ^= s10, s11 ^= s0, s0 = Rotated(s0, by), s11 += s1
#define QILSYS_END(h0, h1, h2, by) h0 += h1, h2 ^= h0, h1 = Rotated(h1, by)

std::uint64_t PublishedLong(const unsigned char* p, std::size_t length, std::uint64_t seed) {
  std::uint64_t a = seed, b = seed, c = 0xdeadbeefdeadbeef, d = a, e = b, f = c, g = a, h = b, i = c, j = a, k = b,
                l = c;
  for (; length >= 96; length -= 96, p += 96) {
    QILSYS_MIX(0, a, c, k, l, b, 11), QILSYS_MIX(1, b, d, l, a, c, 32), QILSYS_MIX(2, c, e, a, b, d, 43);
    QILSYS_MIX(3, d, f, b, c, e, 31), QILSYS_MIX(4, e, g, c, d, f, 17), QILSYS_MIX(5, f, h, d, e, g, 28);
    QILSYS_MIX(6, g, i, e, f, h, 39), QILSYS_MIX(7, h, j, f, g, i, 57), QILSYS_MIX(8, i, k, g, h, j, 55);
    QILSYS_MIX(9, j, l, h, i, k, 54), QILSYS_MIX(10, k, a, i, j, l, 22), QILSYS_MIX(11, l, b, j, k, a, 46);
  }
  unsigned char last[96] = {};
  std::memcpy(last, p, length);
  last[95] = static_cast<unsigned char>(length);
  a += Word(last), b += Word(last + 8), c += Word(last + 16), d += Word(last + 24), e += Word(last + 32);
  f += Word(last + 40), g += Word(last + 48), h += Word(last + 56), i += Word(last + 64), j += Word(last + 72);
  k += Word(last + 80), l += Word(last + 88);
  for (int round = 0; round < 3; ++round) {
    QILSYS_END(l, b, c, 44), QILSYS_END(a, c, d, 15), QILSYS_END(b, d, e, 34), QILSYS_END(c, e, f, 21);
    QILSYS_END(d, f, g, 38), QILSYS_END(e, g, h, 33), QILSYS_END(f, h, i, 10), QILSYS_END(g, i, j, 13);
    QILSYS_END(h, j, k, 38), QILSYS_END(i, k, l, 53), QILSYS_END(j, l, a, 42), QILSYS_END(k, a, b, 54);
  }
  return a;
}

#undef QILSYS_MIX
#undef QILSYS_END

std::uint64_t PublishedSpooky(const void* data, std::size_t length, std::uint64_t seed) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  return length < 192 ? PublishedShort(bytes, length, seed) : PublishedLong(bytes, length, seed);
}

// Through pointers that the compiler can't follow: as a caller of the library calls ours.
template <class Result>
using Hash = Result (*)(const void* data, std::size_t length);

template <class Result>
void Beside(benchmark::State& state, Hash<Result> ours, Hash<Result> published) {
  benchmark::DoNotOptimize(ours);
  benchmark::DoNotOptimize(published);
  const std::string message = Message(state);
  const char* data = message.data();
  if (ours(data, message.size()) != published(data, message.size())) state.SkipWithError("the hash is wrong");
  qilsys::benchmarks::SideBySide(
      state, [&] { benchmark::DoNotOptimize(ours(data, message.size())); },
      [&] { benchmark::DoNotOptimize(published(data, message.size())); });
}

void BM_THash64(benchmark::State& state) {
  Beside<std::uint64_t>(
      state, [](const void* data, std::size_t length) -> std::uint64_t { return THash64(data, length, Seed); },
      [](const void* data, std::size_t length) { return PublishedSpooky(data, length, Seed); });
}

void BM_THash32(benchmark::State& state) {
  Beside<std::uint32_t>(
      state, [](const void* data, std::size_t length) -> std::uint32_t { return THash32(data, length, 7); },
      [](const void* data, std::size_t length) {
        return PublishedLookup2(static_cast<const unsigned char*>(data), static_cast<std::uint32_t>(length), 7);
      });
}

void Sizes(benchmark::internal::Benchmark* b) { b->Arg(16)->Arg(256)->Arg(64 * 1024); }

BENCHMARK(BM_THash64)->Apply(Sizes);
BENCHMARK(BM_THash32)->Apply(Sizes);

}  // namespace
