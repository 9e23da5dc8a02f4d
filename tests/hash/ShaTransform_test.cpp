#include "hash/ShaTransform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "hash/TransformRow.h"
#include "support/PeerDigest.h"
#include "support/Random.h"
#include "support/RowName.h"

namespace {

using qilsys::test::PeerDigest;
using qilsys::test::TransformRow;
using qilsys::test::TransformRows;

class ShaTransform : public qilsys::test::TransformTest {
 protected:
  static std::string Raw(const sha2& digest) {
    int length = 0;
    const char* raw = digest.RawHash(length);
    return {raw, raw + length};
  }

  std::string Ours(const unsigned char* data, std::size_t length) {
    sha2 digest;
    digest.GetHash(m_type, data, length);
    return Raw(digest);
  }

  /// The digest of the bytes fed in parts, whose lengths `next` gives.
  template <class NextLength>
  std::string OursInParts(const std::vector<unsigned char>& bytes, const NextLength& next) {
    sha2 digest;
    digest.Init(m_type);
    for (std::size_t at = 0; at < bytes.size();) {
      const std::size_t length = std::min<std::size_t>(next(), bytes.size() - at);
      digest.Update(bytes.data() + at, length);
      at += length;
    }
    digest.End();
    return Raw(digest);
  }
};

INSTANTIATE_TEST_SUITE_P(, ShaTransform, testing::ValuesIn(TransformRows()), qilsys::test::RowName<TransformRow>);

std::vector<unsigned char> Bytes(std::size_t count) {
  std::vector<unsigned char> bytes(count);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(i * 131 + (i >> 7));
  return bytes;
}

// Past every residue of eight and nine blocks, so that forms that take four or eight at a time show their edges.
TEST_P(ShaTransform, EveryLength) {
  const auto bytes = Bytes(1300);
  for (std::size_t n = 0; n <= bytes.size(); ++n) {
    ASSERT_EQ(Ours(bytes.data(), n), PeerDigest(m_type, bytes.data(), n)) << n << " bytes";
  }
}

TEST_P(ShaTransform, EveryOffset) {
  alignas(64) unsigned char room[64 + 1200];
  for (const std::size_t length : {3u, 64u, 127u, 128u, 512u, 1200u}) {
    const auto bytes = Bytes(length);
    const std::string wanted = PeerDigest(m_type, bytes.data(), length);
    for (std::size_t offset = 0; offset < 64; ++offset) {
      std::memcpy(room + offset, bytes.data(), length);
      ASSERT_EQ(Ours(room + offset, length), wanted) << length << " bytes at offset " << offset;
    }
  }
}

TEST_P(ShaTransform, EqualPartsOfEverySize) {
  const auto bytes = Bytes(700);
  const std::string wanted = PeerDigest(m_type, bytes.data(), bytes.size());
  for (std::size_t part = 1; part <= 300; ++part) {
    ASSERT_EQ(OursInParts(bytes, [&] { return part; }), wanted) << "parts of " << part;
  }
}

TEST_P(ShaTransform, RandomParts) {
  qilsys::test::SeededRandom random;
  for (int round = qilsys::test::Rounds(200); round > 0; --round) {
    std::vector<unsigned char> bytes(random.Between<std::size_t>(0, 5000));
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random.Engine()());
    const int most = random.OneIn(2) ? 150 : 1500;
    const auto next = [&] { return static_cast<std::size_t>(random.Between(0, most)); };
    ASSERT_EQ(OursInParts(bytes, next), PeerDigest(m_type, bytes.data(), bytes.size()));
  }
}

TEST_P(ShaTransform, BytesAroundTheMessageDoNotCount) {
  for (const std::size_t length : {0u, 1u, 55u, 64u, 111u, 128u, 511u, 512u, 640u}) {
    auto bytes = Bytes(length + 600);
    const std::string before = Ours(bytes.data() + 300, length);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (i < 300 || i >= 300 + length) bytes[i] ^= 0xFF;
    }
    EXPECT_EQ(Ours(bytes.data() + 300, length), before) << length;
  }
}

TEST_P(ShaTransform, CopiesInTheMiddleGoOnByThemselves) {
  const auto bytes = Bytes(600);
  sha2 source;
  source.Init(m_type);
  for (std::size_t n = 0; n < bytes.size(); ++n) {
    sha2 copy(source);
    copy.End();
    ASSERT_EQ(Raw(copy), PeerDigest(m_type, bytes.data(), n)) << "copied after " << n;
    source.Update(bytes.data() + n, 1);
  }
}

TEST(ShaTransforms, PortableFormsStandFirst) {
  const auto available = qilsys::hash::AvailableShaTransforms();
  ASSERT_GE(available.size(), 1u);
  EXPECT_STREQ(available.front().name, "portable");
  for (const auto& transforms : available) {
    EXPECT_NE(transforms.sha1, nullptr);
    EXPECT_NE(transforms.sha256, nullptr);
    EXPECT_NE(transforms.sha512, nullptr);
  }
}

TEST(ShaTransforms, FastestIsInUseUnlessATestHasChosen) {
  const auto available = qilsys::hash::AvailableShaTransforms();
  EXPECT_EQ(&qilsys::hash::ActiveShaTransforms(), &available.back());
  qilsys::hash::ChooseShaTransformsForTest(&available.front());
  EXPECT_EQ(&qilsys::hash::ActiveShaTransforms(), &available.front());
  qilsys::hash::ChooseShaTransformsForTest(nullptr);
  EXPECT_EQ(&qilsys::hash::ActiveShaTransforms(), &available.back());
  RecordProperty("in_use", available.back().name);
}

}  // namespace
