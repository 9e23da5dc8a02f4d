#include "qilsys/TStringHash.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "qilsys/THash.h"
#include "support/Random.h"

namespace {

std::size_t Hash(const TStringCore& text) { return std::hash<TStringCore>{}(text); }

TStringCore Units(const std::u16string& units) { return TStringCore::fromStdU16String(units); }

TEST(TStringHash, IsTheHashOfTheUnitsWithTheLengthAsSeed) {
  const std::u16string longText = u"more units than stand inline in the string";
  EXPECT_EQ(Hash(TStringCore()), THash64(nullptr, 0, 0));
  EXPECT_EQ(Hash(u"abc"), THash64(u"abc", 6, 3));
  EXPECT_EQ(Hash(Units(longText)), THash64(longText.data(), 2 * longText.size(), longText.size()));
}

TEST(TStringHash, EmptyStringsHashAlike) {
  TStringCore emptied(u"something that was long enough for a block of its own");
  emptied.clear();
  EXPECT_EQ(Hash(emptied), Hash(TStringCore()));
  EXPECT_EQ(Hash(u""), Hash(TStringCore()));
}

// Inline, shared, and with a block of its own.
TEST(TStringHash, StorageDoesNotCount) {
  const TStringCore shared(u"a text that stands in a block of its own");
  const TStringCore copy(shared);
  TStringCore roomy;
  roomy.reserve(500);
  roomy = u"short";
  EXPECT_EQ(Hash(copy), Hash(shared));
  EXPECT_EQ(Hash(TStringCore(shared.data(), shared.length())), Hash(shared));
  EXPECT_EQ(Hash(roomy), Hash(u"short"));
}

TEST(TStringHash, UnitsBehindANulDoNotCount) {
  const TStringCore one = Units({u'a', 0, u'b'}), two = Units({u'a', 0, u'c'});
  ASSERT_TRUE(one == two);
  EXPECT_EQ(Hash(one), Hash(two));
  const std::u16string tail(40, u'x');
  EXPECT_EQ(Hash(Units(std::u16string({u'a', 0}) + tail)), Hash(Units(std::u16string({u'a', 0, 0}) + tail.substr(1))));
}

TEST(TStringHash, LengthBehindANulCounts) {
  ASSERT_FALSE(Units({u'a', 0}) == Units({u'a', 0, 0}));
  EXPECT_NE(Hash(Units({u'a', 0})), Hash(Units({u'a', 0, 0})));
  EXPECT_NE(Hash(Units({u'a', 0})), Hash(u"a"));
  EXPECT_NE(Hash(Units({0})), Hash(TStringCore()));
}

TEST(TStringHash, CaseAndEveryUnitCount) {
  EXPECT_NE(Hash(u"abc"), Hash(u"Abc"));
  EXPECT_NE(Hash(u"abc"), Hash(u"abd"));
  EXPECT_NE(Hash(u"\u0101"), Hash(u"\u0201"));
}

TEST(TStringHash, EqualStringsHashAlike) {
  qilsys::test::SeededRandom random;
  for (int round = qilsys::test::Rounds(2000); round > 0; --round) {
    std::u16string units(random.Between<std::size_t>(0, 40), u'a');
    for (auto& unit : units) unit = static_cast<char16_t>(random.OneIn(8) ? 0 : random.Between<int>('a', 'b'));
    std::u16string other(units);
    if (!other.empty()) other[random.Between<std::size_t>(0, other.size() - 1)] ^= 1;
    const TStringCore one = Units(units), two = Units(other);
    if (one == two) {
      ASSERT_EQ(Hash(one), Hash(two));
    } else {
      // Equal hashes of unequal strings would be a chance of 1 in 2^64.
      ASSERT_NE(Hash(one), Hash(two));
    }
  }
}

TEST(TStringHash, KeysOfHashedContainers) {
  std::unordered_map<TStringCore, int> ages;
  ages[u"Ada"] = 36;
  ages[u"Emmy"] = 53;
  ages[u"Ada"] = 37;
  EXPECT_EQ(ages.size(), 2u);
  EXPECT_EQ(ages.at(u"Ada"), 37);
  const std::unordered_set<TStringCore> names{u"Ada", u"Ada", u"Emmy"};
  EXPECT_EQ(names.size(), 2u);
  EXPECT_TRUE(names.contains(u"Emmy"));
  EXPECT_FALSE(names.contains(u"emmy"));
}

}  // namespace
