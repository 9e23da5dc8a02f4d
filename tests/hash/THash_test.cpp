#include "qilsys/THash.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <vector>

#include "support/Random.h"
#include "support/ReferenceHashes.h"

namespace {

using qilsys::test::ReferenceLookup2;
using qilsys::test::ReferenceSpooky;
using Pair = std::pair<unsigned long long, unsigned long long>;

constexpr unsigned long long Seed1 = 0x0123456789abcdef;
constexpr unsigned long long Seed2 = 0xfedcba9876543210;
constexpr unsigned int Seed32 = 0x89abcdef;

std::vector<std::uint8_t> Bytes(std::size_t count, std::uint8_t first = 1) {
  std::vector<std::uint8_t> bytes(count);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(first + i * 37 + (i >> 8));
  return bytes;
}

/// All that is hashed, against the plain references.
void ExpectReference(const void* data, const std::vector<std::uint8_t>& bytes) {
  const Pair wanted = ReferenceSpooky::Hash(bytes, Seed1, Seed2);
  EXPECT_EQ(THash128(data, bytes.size(), Seed1, Seed2), wanted);
  EXPECT_EQ(THash64(data, bytes.size(), Seed1), ReferenceSpooky::Hash(bytes, Seed1, Seed1).first);
  EXPECT_EQ(THash(data, bytes.size()), ReferenceSpooky::Hash(bytes, 0xdeadbeef, 0xdeadbeef).first);
  EXPECT_EQ(THash32(data, bytes.size(), Seed32), ReferenceLookup2::Hash(bytes, Seed32));
}

// The first values of SpookyHash's published self-test: the low half of the first result with seeds of 0, for messages
// of 0, 1, 2, ... bytes that count up from 128.
TEST(THash, PublishedValuesOfSpookyHash) {
  constexpr std::uint32_t Published[] = {0x6bf50919, 0x70de1d26, 0xa2b37298, 0x35bc5fbf, 0x8223b279,
                                         0x5bcb315e, 0x53fe88a1, 0xf9f1a233, 0xee193982, 0x54f86f29,
                                         0xc8772d36, 0x9ed60886, 0x5f23d1da, 0x1ed9f474};
  std::vector<std::uint8_t> bytes(std::size(Published));
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{128});
  for (std::size_t n = 0; n < std::size(Published); ++n) {
    EXPECT_EQ(static_cast<std::uint32_t>(THash128(bytes.data(), n, 0, 0).first), Published[n]) << n << " bytes";
  }
}

// Both sides of the split between the two forms, of each whole block and of each rest.
TEST(THash, EveryLengthHashesAsTheReference) {
  const auto all = Bytes(600);
  for (std::size_t n = 0; n <= all.size(); ++n) {
    SCOPED_TRACE(n);
    ExpectReference(all.data(), {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(n)});
  }
}

TEST(THash, EveryOffsetHashesAlike) {
  alignas(16) std::uint8_t room[16 + 400];
  for (const std::size_t length : {0u, 3u, 8u, 15u, 16u, 31u, 96u, 191u, 192u, 193u, 287u, 288u, 400u}) {
    const auto bytes = Bytes(length);
    for (std::size_t offset = 0; offset < 16; ++offset) {
      SCOPED_TRACE(testing::Message() << length << " bytes at offset " << offset);
      if (length > 0) std::memcpy(room + offset, bytes.data(), length);
      ExpectReference(room + offset, bytes);
    }
  }
}

TEST(THash, RandomBytesHashAsTheReference) {
  qilsys::test::SeededRandom random;
  for (int round = qilsys::test::Rounds(300); round > 0; --round) {
    std::vector<std::uint8_t> bytes(random.Between<std::size_t>(0, 2000));
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random.Engine()());
    const auto seed1 = random.Engine()(), seed2 = random.Engine()();
    const auto seed32 = static_cast<std::uint32_t>(seed1);
    const Pair wanted = ReferenceSpooky::Hash(bytes, seed1, seed2);
    ASSERT_EQ(THash128(bytes.data(), bytes.size(), seed1, seed2), wanted);
    ASSERT_EQ(THash32(bytes.data(), bytes.size(), seed32), ReferenceLookup2::Hash(bytes, seed32));
  }
}

// Bytes behind the range take no part, though words are read.
TEST(THash, OnlyTheRangeCounts) {
  auto bytes = Bytes(320);
  for (std::size_t n = 0; n < 300; ++n) {
    const auto wide = THash64(bytes.data(), n, Seed1);
    const auto narrow = THash32(bytes.data(), n, Seed32);
    for (std::size_t i = n; i < bytes.size(); ++i) bytes[i] ^= 0xFF;
    EXPECT_EQ(THash64(bytes.data(), n, Seed1), wide) << n;
    EXPECT_EQ(THash32(bytes.data(), n, Seed32), narrow) << n;
  }
}

TEST(THash, LengthOfZeroReadsNothing) {
  ExpectReference(nullptr, {});
  EXPECT_NE(THash64(nullptr, 0, 1), THash64(nullptr, 0, 2));
  EXPECT_NE(THash32(nullptr, 0, 1), THash32(nullptr, 0, 2));
}

TEST(THash, DefaultSeedHasAnEmptyUpperHalf) {
  for (const std::size_t n : {0u, 1u, 100u, 191u, 192u, 1000u}) {
    const auto bytes = Bytes(n);
    EXPECT_EQ(THash(bytes.data(), n), THash64(bytes.data(), n, 0xdeadbeef));
    EXPECT_NE(THash(bytes.data(), n), THash64(bytes.data(), n, 0xdeadbeefdeadbeef));
  }
}

TEST(THash, EqualSeedsOf128GiveThe64) {
  for (const std::size_t n : {0u, 1u, 100u, 191u, 192u, 1000u}) {
    const auto bytes = Bytes(n);
    EXPECT_EQ(THash128(bytes.data(), n, Seed1, Seed1).first, THash64(bytes.data(), n, Seed1));
  }
}

TEST(THash, EachSeedCountsByItself) {
  for (const std::size_t n : {0u, 100u, 192u}) {
    const auto bytes = Bytes(n);
    EXPECT_NE(THash128(bytes.data(), n, Seed1, Seed2), THash128(bytes.data(), n, Seed2, Seed1));
    EXPECT_NE(THash128(bytes.data(), n, Seed1, Seed2), THash128(bytes.data(), n, Seed1, Seed1));
  }
}

// 191 bytes take the short form and 192 the long one; had the split stood elsewhere, one of the two would differ.
TEST(THash, FormsSplitAt192Bytes) {
  for (const std::size_t n : {190u, 191u, 192u, 193u}) {
    SCOPED_TRACE(n);
    const auto bytes = Bytes(n);
    ExpectReference(bytes.data(), bytes);
  }
}

TEST(THash, Combine32HashesTheBytesOfTheValue) {
  for (const unsigned int value : {0u, 1u, 0x01020304u, 0x80000000u, 0xFFFFFFFFu}) {
    std::vector<std::uint8_t> bytes(sizeof(value));
    std::memcpy(bytes.data(), &value, sizeof(value));
    EXPECT_EQ(THashCombine32(value, Seed32), THash32(&value, 4, Seed32));
    EXPECT_EQ(THashCombine32(value, Seed32), ReferenceLookup2::Hash(bytes, Seed32));
  }
}

TEST(THash, CombineHashesTheBytesOfTheValue) {
  for (const unsigned long long value : {0ull, 1ull, 0x0102030405060708ull, 0x8000000000000000ull, ~0ull}) {
    std::vector<std::uint8_t> bytes(sizeof(value));
    std::memcpy(bytes.data(), &value, sizeof(value));
    EXPECT_EQ(THashCombine(value, Seed1), THash64(&value, 8, Seed1));
    EXPECT_EQ(THashCombine(value, Seed1), ReferenceSpooky::Hash(bytes, Seed1, Seed1).first);
  }
}

TEST(THash, OrderOfFoldingMatters) {
  EXPECT_NE(THashCombine(2, THashCombine(1, 0)), THashCombine(1, THashCombine(2, 0)));
  EXPECT_NE(THashCombine32(2, THashCombine32(1, 0)), THashCombine32(1, THashCombine32(2, 0)));
}

}  // namespace
