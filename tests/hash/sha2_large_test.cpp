#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "qilsys/sha2.h"
#include "support/PeerDigest.h"
#include "support/SparseMemory.h"

namespace {

constexpr std::size_t GiB = std::size_t{1} << 30;

class Sha2Large : public testing::TestWithParam<sha2::SHA_TYPE> {};

INSTANTIATE_TEST_SUITE_P(, Sha2Large,
                         testing::Values(sha2::SHA160, sha2::SHA224, sha2::SHA256, sha2::SHA384, sha2::SHA512),
                         [](const auto& row) {
                           sha2 digest;
                           digest.Init(row.param);
                           return std::string(digest.GetTypeString());
                         });

// More bits than 32 bits count, in one call after another that was no whole block.
TEST_P(Sha2Large, OneGiB) {
  qilsys::test::SparseMemory memory(GiB + 7);
  std::memcpy(memory.Data(), "first", 5);
  std::memcpy(memory.Data() + GiB, "behind", 6);
  sha2 digest;
  digest.Init(GetParam());
  digest.Update(memory.Data(), 77);
  digest.Update(memory.Data() + 77, GiB + 7 - 77);
  digest.End();
  int length = 0;
  const char* raw = digest.RawHash(length);
  EXPECT_EQ(std::string(raw, raw + length), qilsys::test::PeerDigest(GetParam(), memory.Data(), GiB + 7));
}

}  // namespace
