/// Bob Jenkins's SpookyHash, version 2, published in 2012.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qilsys::hash {

struct Hash128 {
  uint64_t first;
  uint64_t second;
};

/// The hash of `length` bytes with two seeds, read in 64-bit words of the machine's order.
Hash128 SpookyHash(const unsigned char* data, size_t length, uint64_t seed1, uint64_t seed2);

}  // namespace qilsys::hash
