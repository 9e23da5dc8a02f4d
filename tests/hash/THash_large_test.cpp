#include <gtest/gtest.h>

#include <cstring>

#include "qilsys/THash.h"
#include "support/OpenHandles.h"
#include "support/SparseMemory.h"

namespace {

constexpr unsigned long long FourGiB = 1ull << 32;
constexpr unsigned int Seed = 0x12345678;

TEST(THashLarge, Hash32TakesTheLengthTo32Bits) {
  qilsys::test::SparseMemory memory(FourGiB + 64);
  std::memcpy(memory.Data(), "fiveX and more", 14);
  EXPECT_EQ(THash32(memory.Data(), FourGiB + 5, Seed), THash32("fiveX", 5, Seed));
  EXPECT_EQ(THash32(memory.Data(), FourGiB, Seed), THash32(nullptr, 0, Seed));
  EXPECT_EQ(THash32(memory.Data(), FourGiB + 14, Seed), THash32("fiveX and more", 14, Seed));
}

TEST(THashLarge, Hash64TakesTheWholeLength) {
  qilsys::test::SparseMemory memory(FourGiB + 64);
  const auto zeros = THash64(memory.Data(), FourGiB + 5, Seed);
  EXPECT_NE(zeros, THash64(memory.Data(), 5, Seed));
  memory.Data()[FourGiB + 4] = 1;
  EXPECT_NE(THash64(memory.Data(), FourGiB + 5, Seed), zeros);
}

TEST(THashLarge, MemoryOfTheseTestsLeavesNothingOpen) {
  const auto use = [] { qilsys::test::SparseMemory(FourGiB).Data()[FourGiB - 1] = 1; };
  use();
  const unsigned int before = qilsys::test::OpenHandles();
  for (int round = 0; round < 10; ++round) use();
  EXPECT_EQ(qilsys::test::OpenHandles(), before);
}

}  // namespace
