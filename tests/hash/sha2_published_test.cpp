// Digests published by NIST: the examples of the standard, and the validation program's messages of tests/data/sha.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "hash/TransformRow.h"
#include "qilsys/sha2.h"
#include "support/RowName.h"

namespace {

using qilsys::test::TransformRow;
using qilsys::test::TransformRows;

std::string FromHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

/// The lines of the type's file, by their first word.
struct Published {
  std::vector<std::pair<std::string, std::string>> shortMessages;
  std::vector<std::pair<std::string, std::string>> longMessages;
  std::string seed;
  std::vector<std::string> monteCarlo;
};

Published Read(const std::string& type) {
  std::ifstream file(std::string(QILSYS_TEST_DATA) + "/sha/" + type + ".txt");
  Published published;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string kind, first, second;
    words >> kind >> first >> second;
    if (kind == "short") published.shortMessages.emplace_back(FromHex(first == "-" ? "" : first), second);
    if (kind == "long") published.longMessages.emplace_back(FromHex(first), second);
    if (kind == "seed") published.seed = FromHex(first);
    if (kind == "monte") published.monteCarlo.push_back(first);
  }
  return published;
}

class Sha2Published : public qilsys::test::TransformTest {
 protected:
  bool IsWide() const { return m_type == sha2::SHA384 || m_type == sha2::SHA512; }

  static std::string TypeString(sha2::SHA_TYPE type) {
    sha2 digest;
    digest.Init(type);
    return digest.GetTypeString();
  }

  void ExpectEach(const std::vector<std::pair<std::string, std::string>>& messages, std::size_t count) {
    ASSERT_EQ(messages.size(), count);
    for (const auto& [message, wanted] : messages) EXPECT_EQ(Hex(message), wanted) << message.size() << " bytes";
  }

  const Published m_published = Read(TypeString(m_type));
};

INSTANTIATE_TEST_SUITE_P(, Sha2Published, testing::ValuesIn(TransformRows()), qilsys::test::RowName<TransformRow>);

TEST_P(Sha2Published, ShortMessages) { ExpectEach(m_published.shortMessages, IsWide() ? 129 : 65); }
TEST_P(Sha2Published, LongMessages) { ExpectEach(m_published.longMessages, IsWide() ? 16 : 8); }

TEST_P(Sha2Published, MonteCarlo) {
  ASSERT_EQ(m_published.monteCarlo.size(), 100u);
  std::string seed = m_published.seed;
  sha2 digest;
  for (const std::string& wanted : m_published.monteCarlo) {
    std::string message = seed + seed + seed;
    for (int i = 0; i < 1000; ++i) {
      digest.GetHash(m_type, reinterpret_cast<const unsigned char*>(message.data()), message.size());
      int length = 0;
      const char* raw = digest.RawHash(length);
      message = message.substr(seed.size()).append(raw, static_cast<std::size_t>(length));
    }
    seed = message.substr(2 * seed.size());
    ASSERT_EQ(digest.StringHash(), wanted);
  }
}

// The example messages that FIPS 180-4 refers to: of one block and of two, for words of 32 and of 64 bits.
constexpr const char* OneBlock = "abc";
constexpr const char* TwoBlocks32 = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
constexpr const char* TwoBlocks64 =
    "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu";

struct Examples {
  const char* oneBlock;
  const char* twoBlocks;
  const char* millionA;
};

const std::map<sha2::SHA_TYPE, Examples> Standard = {
    {sha2::SHA160,
     {"a9993e364706816aba3e25717850c26c9cd0d89d", "84983e441c3bd26ebaae4aa1f95129e5e54670f1",
      "34aa973cd4c4daa4f61eeb2bdbad27316534016f"}},
    {sha2::SHA224,
     {"23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7",
      "75388b16512776cc5dba5da1fd890150b0c6455cb4f58b1952522525",
      "20794655980c91d8bbb4c1ea97618a4bf03f42581948b2ee4ee7ad67"}},
    {sha2::SHA256,
     {"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad",
      "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1",
      "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"}},
    {sha2::SHA384,
     {"cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7",
      "09330c33f71147e83d192fc782cd1b4753111b173b3b05d22fa08086e3b0f712fcc7c71a557e2db966c3e9fa91746039",
      "9d0e1809716474cb086e834e310a4a1ced149e9c00f248527972cec5704c2a5b07b8b3dc38ecc4ebae97ddd87f3d8985"}},
    {sha2::SHA512,
     {"ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
      "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f",
      "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018"
      "501d289e4900f7e4331b99dec4b5433ac7d329eeb6dd26545e96e55b874be909",
      "e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973eb"
      "de0ff244877ea60a4cb0432ce577c31beb009c5c2c49aa2e4eadb217ad8cc09b"}},
};

TEST_P(Sha2Published, ExampleOfOneBlock) { EXPECT_EQ(Hex(OneBlock), Standard.at(m_type).oneBlock); }

TEST_P(Sha2Published, ExampleOfTwoBlocks) {
  EXPECT_EQ(Hex(IsWide() ? TwoBlocks64 : TwoBlocks32), Standard.at(m_type).twoBlocks);
}

TEST_P(Sha2Published, ExampleOfAMillionLetters) {
  EXPECT_EQ(Hex(std::string(1000000, 'a')), Standard.at(m_type).millionA);
}

}  // namespace
