/// Fast hashes, not cryptographic ones, of byte ranges and of integers.
///
/// Every result depends on the arguments alone, so it is the same in every run, process and program. The 32-bit hashes
/// are Bob Jenkins's lookup2 (1996) and do not depend on the machine's byte order; the 64-bit and 128-bit ones are Bob
/// Jenkins's SpookyHash, version 2 (2012), read in the machine's order. Lengths are bytes; with a length of 0 the data
/// is not read and may be null. Nothing here fails or keeps state: any thread may call at any time.
#pragma once

#include <utility>

#include "qilsys/Export.h"

/// lookup2 of the range, with `seed` as its initial value. The length counts modulo 2^32.
QILSYS_API unsigned int THash32(const void* data, unsigned long long length, unsigned int seed);

/// The first half of SpookyHash of the range, with `seed` as both of its seeds.
QILSYS_API unsigned long long THash64(const void* data, unsigned long long length, unsigned long long seed);

/// THash64 with the seed 0xdeadbeef.
QILSYS_API unsigned long long THash(const void* data, unsigned long long length);

/// Both halves of SpookyHash of the range.
QILSYS_API std::pair<unsigned long long, unsigned long long> THash128(const void* data, unsigned long long length,
                                                                      unsigned long long seed1,
                                                                      unsigned long long seed2);

/// Folds one more value into the running hash `seed`: THash32 of its four bytes. The order of folding matters.
QILSYS_API unsigned int THashCombine32(unsigned int value, unsigned int seed);

/// Folds one more value into the running hash `seed`: THash64 of its eight bytes. The order of folding matters.
QILSYS_API unsigned long long THashCombine(unsigned long long value, unsigned long long seed);
