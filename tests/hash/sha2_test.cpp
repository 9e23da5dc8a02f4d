#include "qilsys/sha2.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "support/FailingAllocations.h"
#include "support/RowName.h"

using qilsys::test::FailingAllocations;

namespace {

constexpr const char* AbcSha1 = "a9993e364706816aba3e25717850c26c9cd0d89d";
constexpr const char* AbcSha256 = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

const unsigned char* Data(const std::string& text) { return reinterpret_cast<const unsigned char*>(text.data()); }

void Feed(sha2& digest, const std::string& text) { digest.Update(Data(text), text.size()); }

void ExpectInvalidType(const std::function<void()>& operation) {
  EXPECT_THAT(operation, testing::ThrowsMessage<std::runtime_error>("Invalid SHA_TYPE type!"));
}

void ExpectUnfinished(const sha2& digest) {
  const auto unfinished = testing::ThrowsMessage<std::runtime_error>("Unfinished execution!");
  int length = -7;
  EXPECT_THAT([&] { digest.HexHash(); }, unfinished);
  EXPECT_THAT([&] { digest.StringHash(); }, unfinished);
  EXPECT_THAT([&] { digest.RawHash(length); }, unfinished);
  EXPECT_EQ(length, -7);
}

struct TypeRow {
  const char* name;
  int value;
  int bytes;
  const char* empty;
};

const TypeRow Types[] = {
    {"SHA160", 1, 20, "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
    {"SHA224", 2, 28, "d14a028c2a3a2bc9476102bb288234c415a2b01f828ea62ac5b3e42f"},
    {"SHA256", 3, 32, "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
    {"SHA384", 4, 48,
     "38b060a751ac96384cd9327eb1b1e36a21fdb71114be07434c0cc7bf63f6e1da274edebfe76f65fbd51ad2f14898b95b"},
    {"SHA512", 5, 64,
     "cf83e1357eefb8bdf1542850d66d8007d620e4050b5715dc83f4a921d36ce9ce"
     "47d0d13c5d85f2b0ff8318d2877eec2f63b931bd47417a81a538327af927da3e"},
};

class Sha2Type : public testing::TestWithParam<TypeRow> {
 protected:
  const sha2::SHA_TYPE m_type = sha2::SHA_TYPE(GetParam().value);
};

INSTANTIATE_TEST_SUITE_P(, Sha2Type, testing::ValuesIn(Types), qilsys::test::RowName<TypeRow>);

TEST_P(Sha2Type, TypeAndItsString) {
  sha2 digest;
  digest.Init(m_type);
  EXPECT_EQ(digest.GetEnumType(), GetParam().value);
  EXPECT_STREQ(digest.GetTypeString(), GetParam().name);
}

TEST_P(Sha2Type, EmptyMessage) {
  sha2 digest;
  digest.Init(m_type);
  digest.End();
  EXPECT_EQ(digest.StringHash(), GetParam().empty);
  EXPECT_STREQ(digest.HexHash(), GetParam().empty);
  EXPECT_EQ(digest.GetHash(m_type, nullptr, 0), GetParam().empty);
}

TEST_P(Sha2Type, EmptyUpdateChangesNothing) {
  sha2 digest;
  const std::string wanted = digest.GetHash(m_type, Data("abc"), 3);
  digest.Init(m_type);
  digest.Update(nullptr, 0);
  Feed(digest, "abc");
  digest.Update(nullptr, 0);
  digest.End();
  EXPECT_EQ(digest.StringHash(), wanted);
}

TEST_P(Sha2Type, RawDigestIsThatOfTheHexadecimalDigits) {
  sha2 digest;
  const std::string& hex = digest.GetHash(m_type, Data("abc"), 3);
  int length = -1;
  const char* raw = digest.RawHash(length);
  ASSERT_EQ(length, GetParam().bytes);
  ASSERT_EQ(hex.size(), 2 * static_cast<std::size_t>(length));
  for (int i = 0; i < length; ++i) {
    const auto at = 2 * static_cast<std::size_t>(i);
    EXPECT_EQ(static_cast<unsigned char>(raw[i]), std::stoul(hex.substr(at, 2), nullptr, 16)) << "byte " << i;
  }
  EXPECT_EQ(hex.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_EQ(hex, digest.HexHash());
}

TEST_P(Sha2Type, ReadsBeforeTheEndFail) {
  sha2 digest;
  digest.Init(m_type);
  ExpectUnfinished(digest);
  Feed(digest, "abc");
  ExpectUnfinished(digest);
  digest.End();
  EXPECT_NO_THROW(digest.HexHash());
}

TEST_P(Sha2Type, InitStartsAnewAtAnyPoint) {
  sha2 digest;
  const std::string wanted = digest.GetHash(m_type, Data("abc"), 3);
  digest.Init(m_type);
  ExpectUnfinished(digest);
  Feed(digest, std::string(200, 'x'));
  digest.Init(m_type);
  Feed(digest, "abc");
  digest.End();
  EXPECT_EQ(digest.StringHash(), wanted);
}

// From any type to any other nothing is left over.
TEST_P(Sha2Type, InitChangesTheType) {
  for (const TypeRow& other : Types) {
    sha2 digest;
    const auto otherType = sha2::SHA_TYPE(other.value);
    digest.GetHash(otherType, Data("abc"), 3);
    EXPECT_EQ(digest.GetHash(m_type, nullptr, 0), GetParam().empty) << "after " << other.name;
    EXPECT_EQ(std::string(digest.HexHash()), GetParam().empty) << "after " << other.name;
  }
}

TEST_P(Sha2Type, CopyGoesOnByItself) {
  const std::string head(150, 'h'), one(100, '1'), two(77, '2');
  sha2 source;
  source.Init(m_type);
  Feed(source, head);
  sha2 copy(source);
  sha2 assigned;
  assigned.GetHash(sha2::SHA160, Data("abc"), 3);
  assigned = source;
  Feed(source, one);
  Feed(copy, two);
  copy.End();
  ExpectUnfinished(source);
  ExpectUnfinished(assigned);
  source.End();
  assigned.End();
  sha2 plain;
  EXPECT_EQ(source.StringHash(), plain.GetHash(m_type, Data(head + one), head.size() + one.size()));
  EXPECT_EQ(copy.StringHash(), plain.GetHash(m_type, Data(head + two), head.size() + two.size()));
  EXPECT_EQ(assigned.StringHash(), plain.GetHash(m_type, Data(head), head.size()));
}

TEST_P(Sha2Type, MoveTakesTheComputationOver) {
  const std::string head(150, 'h'), tail(100, 't');
  sha2 source;
  source.Init(m_type);
  Feed(source, head);
  sha2 moved(std::move(source));
  sha2 assigned;
  assigned = std::move(moved);
  EXPECT_EQ(assigned.GetEnumType(), m_type);
  Feed(assigned, tail);
  assigned.End();
  sha2 plain;
  EXPECT_EQ(assigned.StringHash(), plain.GetHash(m_type, Data(head + tail), head.size() + tail.size()));
}

TEST_P(Sha2Type, CopyOfAFinishedObjectIsFinished) {
  sha2 source;
  const std::string wanted = source.GetHash(m_type, Data("abc"), 3);
  const sha2 copy(source);
  sha2 moved(std::move(source));
  int length = 0;
  EXPECT_EQ(copy.StringHash(), wanted);
  EXPECT_EQ(copy.HexHash(), wanted);
  EXPECT_EQ(moved.StringHash(), wanted);
  copy.RawHash(length);
  EXPECT_EQ(length, GetParam().bytes);
}

TEST_P(Sha2Type, EndThatFindsNoMemoryCanBeCalledAgain) {
  if (!FailingAllocations::SeesOperatorNew()) GTEST_SKIP() << "another operator new has won";
  sha2 digest;
  digest.Init(m_type);
  Feed(digest, "abc");
  {
    const FailingAllocations failing(1);
    EXPECT_THROW(digest.End(), std::bad_alloc);
  }
  ExpectUnfinished(digest);
  digest.End();
  sha2 plain;
  EXPECT_EQ(digest.StringHash(), plain.GetHash(m_type, Data("abc"), 3));
}

TEST_P(Sha2Type, AssignmentThatFindsNoMemoryChangesNothing) {
  if (!FailingAllocations::SeesOperatorNew()) GTEST_SKIP() << "another operator new has won";
  sha2 source;
  source.GetHash(m_type == sha2::SHA512 ? sha2::SHA256 : sha2::SHA512, Data("other"), 5);
  sha2 digest;
  digest.Init(m_type);
  Feed(digest, "ab");
  {
    const FailingAllocations failing(1);
    EXPECT_THROW(digest = source, std::bad_alloc);
  }
  EXPECT_EQ(digest.GetEnumType(), m_type);
  Feed(digest, "c");
  digest.End();
  sha2 plain;
  EXPECT_EQ(digest.StringHash(), plain.GetHash(m_type, Data("abc"), 3));
}

// Not checked: the flag stays, and the reads go on working.
TEST_P(Sha2Type, UpdateAfterTheEndIsNotChecked) {
  sha2 digest;
  digest.GetHash(m_type, Data("abc"), 3);
  EXPECT_NO_THROW(Feed(digest, std::string(300, 'x')));
  EXPECT_NO_THROW(digest.HexHash());
  EXPECT_NO_THROW(digest.End());
  EXPECT_EQ(digest.StringHash().size(), 2 * static_cast<std::size_t>(GetParam().bytes));
}

TEST(Sha2, FreshObject) {
  sha2 digest;
  EXPECT_EQ(digest.GetEnumType(), 0);
  EXPECT_STREQ(digest.GetTypeString(), "Unknown!");
  EXPECT_FALSE(digest.IsBigEndian());
  ExpectUnfinished(digest);
}

TEST(Sha2, FreshObjectTakesNoBytes) {
  sha2 digest;
  ExpectInvalidType([&] { Feed(digest, "abc"); });
  ExpectInvalidType([&] { digest.Update(nullptr, 0); });
  ExpectInvalidType([&] { digest.End(); });
  ExpectUnfinished(digest);
}

TEST(Sha2, InvalidTypes) {
  for (const int value : {0, 6, 9, -1, 256, 0x7FFFFFFF}) {
    SCOPED_TRACE(value);
    const auto type = sha2::SHA_TYPE(value);
    sha2 digest;
    digest.GetHash(sha2::SHA256, Data("abc"), 3);
    ExpectInvalidType([&] { digest.Init(type); });
    EXPECT_EQ(digest.GetEnumType(), value);
    EXPECT_STREQ(digest.GetTypeString(), "Unknown!");
    ExpectInvalidType([&] { Feed(digest, "abc"); });
    ExpectInvalidType([&] { digest.End(); });
    ExpectInvalidType([&] { digest.GetHash(type, Data("abc"), 3); });
    ExpectUnfinished(digest);
    EXPECT_EQ(digest.GetHash(sha2::SHA256, Data("abc"), 3), AbcSha256);
  }
}

TEST(Sha2, HashOfOneCallIsTheObjectsText) {
  sha2 digest;
  const std::string& first = digest.GetHash(sha2::SHA256, Data("abc"), 3);
  EXPECT_EQ(&first, &digest.StringHash());
  EXPECT_EQ(first, AbcSha256);
  digest.GetHash(sha2::SHA160, Data("abc"), 3);
  EXPECT_EQ(first, AbcSha1);
}

TEST(Sha2, BigEndianIsNeverSet) {
  sha2 digest;
  digest.GetHash(sha2::SHA512, Data("abc"), 3);
  EXPECT_FALSE(digest.IsBigEndian());
  EXPECT_FALSE(sha2(digest).IsBigEndian());
}

TEST(Sha2, AssignmentToItselfChangesNothing) {
  sha2 digest;
  digest.Init(sha2::SHA256);
  Feed(digest, "a");
  const sha2& same = digest;
  digest = same;
  Feed(digest, "bc");
  digest.End();
  EXPECT_EQ(digest.StringHash(), AbcSha256);
}

}  // namespace
