// What a set is to each operation that takes one. The searches themselves are compared with a model in Search_test.cpp.
#include "search/UnitSet.h"

#include <gtest/gtest.h>

#include "support/Literals.h"

namespace qilsys::search {
namespace {

constexpr TCodeUnit High = 0xD83D;
constexpr TCodeUnit Low = 0xDE00;
constexpr TCodeUnit Replacement = 0xFFFD;

TEST(UnitSet, SearchTakesALoneSurrogateForTheReplacementCharacter) {
  const TCodeUnit set[] = {High, 0};
  const TCodeUnit text[] = {'a', Replacement, High, 0};
  EXPECT_EQ(UnitSet::forAnyOf(set, 1).findAnyOf(text, 3, 0), 1);
  EXPECT_EQ(UnitSet::forAnyOf(set, 1).findAnyOf(text, 3, 2), 2);
}

TEST(UnitSet, TrimmingTakesALoneSurrogateForItself) {
  const TCodeUnit set[] = {High, Low, Low, 0};
  const UnitSet trimmed = UnitSet::forTrimming(set);
  const TCodeUnit pair[] = {High, Low};
  const TCodeUnit other[] = {High, 0xDE01};
  EXPECT_TRUE(trimmed.holds(pair, 2));
  EXPECT_FALSE(trimmed.holds(pair, 1));
  EXPECT_TRUE(trimmed.holds(pair + 1, 1));
  EXPECT_FALSE(trimmed.holds(other, 2));
  EXPECT_FALSE(trimmed.holds(&Replacement, 1));
}

TEST(UnitSet, TrimmingHoldsNoUnitWithLowSurrogatesBehindIt) {
  const TCodeUnit set[] = {'a', 0xDE00, 0};
  const TCodeUnit run[] = {'a', 0xDE00, 0xDE00};
  const UnitSet trimmed = UnitSet::forTrimming(set);
  EXPECT_TRUE(trimmed.holds(run, 1));
  EXPECT_FALSE(trimmed.holds(run, 2));
  EXPECT_FALSE(trimmed.holds(run, 3));
}

TEST(UnitSet, TrimmingEndsAtTheNulOfTheSet) {
  const TCodeUnit set[] = {'a', 0, 'b', 0};
  EXPECT_TRUE(UnitSet::forTrimming(set).holds(U'a'));
  EXPECT_FALSE(UnitSet::forTrimming(set).holds(U'b'));
}

TEST(UnitSet, RemovingIsByUnitUnlessTheSetHasASurrogate) {
  const TCodeUnit replacement[] = {Replacement, 0};
  const TCodeUnit withSurrogate[] = {Replacement, High, 0};
  const TCodeUnit text[] = {'a', Low, Replacement, 0};
  EXPECT_EQ(UnitSet::forRemoving(replacement, 1).findAnyOf(text, 3, 0), 2);
  EXPECT_TRUE(UnitSet::forRemoving(replacement, 1).isOfUnits());
  EXPECT_EQ(UnitSet::forRemoving(withSurrogate, 2).findAnyOf(text, 3, 0), 1);
  EXPECT_FALSE(UnitSet::forRemoving(withSurrogate, 2).isOfUnits());
}

// One unit, a few, ASCII, and more than vectors look for at once: each kind of set tells its units.
TEST(UnitSet, TestOfUnitsFitsEveryKind) {
  const TCodeUnit* const sets[] = {QILSYS_UNITS("b"), QILSYS_UNITS("b\u00E4"), QILSYS_UNITS("bcdefghijk"),
                                   QILSYS_UNITS("bcdefghijk\u00E4")};
  const int lengths[] = {1, 2, 10, 11};
  for (int i = 0; i < 4; ++i) {
    const UnitSet set = UnitSet::forRemoving(sets[i], lengths[i]);
    EXPECT_TRUE(set.withUnitTest([](const auto& test) { return test('b'); })) << i;
    EXPECT_FALSE(set.withUnitTest([](const auto& test) { return test('a'); })) << i;
    EXPECT_EQ(set.withUnitTest([](const auto& test) { return test(0xE4); }), i % 2 == 1) << i;
    EXPECT_EQ(set.findAnyOf(QILSYS_UNITS("aab"), 3, 0), 2) << i;
  }
}

TEST(UnitSet, NullIsTheEmptySet) {
  EXPECT_EQ(UnitSet::forAnyOf(nullptr, 0).findAnyOf(QILSYS_UNITS("a"), 1, 0), -1);
  EXPECT_EQ(UnitSet::forNotOf(nullptr, 3).findNotOf(QILSYS_UNITS("a"), 1, 0), 0);
  EXPECT_EQ(UnitSet::forRemoving(nullptr, 3).findAnyOf(QILSYS_UNITS("a"), 1, 0), -1);
  EXPECT_FALSE(UnitSet::forTrimming(nullptr).holds(U'a'));
}

}  // namespace
}  // namespace qilsys::search
