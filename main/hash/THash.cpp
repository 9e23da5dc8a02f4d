#include "qilsys/THash.h"

#include "hash/Lookup2.h"
#include "hash/SpookyHash.h"

namespace {

constexpr unsigned long long DefaultSeed = 0xdeadbeef;

const unsigned char* Bytes(const void* data) { return static_cast<const unsigned char*>(data); }

}  // namespace

unsigned int THash32(const void* data, unsigned long long length, unsigned int seed) {
  return qilsys::hash::Lookup2(Bytes(data), static_cast<unsigned int>(length), seed);
}

unsigned long long THash64(const void* data, unsigned long long length, unsigned long long seed) {
  return qilsys::hash::SpookyHash(Bytes(data), length, seed, seed).first;
}

unsigned long long THash(const void* data, unsigned long long length) { return THash64(data, length, DefaultSeed); }

std::pair<unsigned long long, unsigned long long> THash128(const void* data, unsigned long long length,
                                                           unsigned long long seed1, unsigned long long seed2) {
  const auto hash = qilsys::hash::SpookyHash(Bytes(data), length, seed1, seed2);
  return {hash.first, hash.second};
}

unsigned int THashCombine32(unsigned int value, unsigned int seed) { return THash32(&value, sizeof(value), seed); }

unsigned long long THashCombine(unsigned long long value, unsigned long long seed) {
  return THash64(&value, sizeof(value), seed);
}
