#include "units/UnitScan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Random.h"

namespace qilsys::units {
namespace {

// Exact allocations, so that a sanitizer sees a read behind the text.
std::vector<TCodeUnit> RandomUnits(test::SeededRandom& random, int length) {
  constexpr TCodeUnit Alphabet[] = {0, 'A', 'a', 'Z', 'z', '@', '[', 0x7F, 0x80, 0xC1, 0x7FFF, 0x8000, 0x8041, 0xFFFF};
  std::vector<TCodeUnit> units(static_cast<std::size_t>(length));
  for (TCodeUnit& unit : units) unit = Alphabet[random.Between<std::size_t>(0, std::size(Alphabet) - 1)];
  return units;
}

// What every scan gives, by looking at one unit after the other.
template <class Test>
void ExpectScans(const Test& test, int from, int to) {
  std::vector<int> hits;
  for (int i = 0; i < to; ++i) {
    if (test.unit(i)) hits.push_back(i);
  }
  int first = -1;
  for (const int hit : hits) {
    if (hit >= from && first < 0) first = hit;
  }
  EXPECT_EQ(scanForward(from, to, test), first);
  EXPECT_EQ(scanBackward(to, test), hits.empty() ? -1 : hits.back());
  if constexpr (requires { test.lanes(0); }) {
    EXPECT_EQ(scanCount(to, test), static_cast<int>(hits.size()));
  }
  std::vector<int> seen;
  scanEach(to, test, [&](int i) { seen.push_back(i); });
  EXPECT_EQ(seen, hits);
}

template <class Lanes>
class UnitScan : public testing::Test {};

#if QILSYS_LANES_SSE2
using AllLanes = testing::Types<PortableLanes, Sse2Lanes>;
#else
using AllLanes = testing::Types<PortableLanes>;
#endif
TYPED_TEST_SUITE(UnitScan, AllLanes);

TYPED_TEST(UnitScan, BitsStandInTheOrderOfTheUnits) {
  for (int hit = 0; hit < TypeParam::Count; ++hit) {
    TCodeUnit units[TypeParam::Count] = {};
    units[hit] = 0x8041;
    EXPECT_EQ((TypeParam::load(units) == TypeParam::all(0x8041)).bits(), 1U << hit);
  }
}

TYPED_TEST(UnitScan, FoldsExactlyTheLettersOfAscii) {
  for (std::uint32_t c = 0; c <= 0xFFFF; ++c) {
    const auto unit = static_cast<TCodeUnit>(c);
    const TCodeUnit folded = c >= 'A' && c <= 'Z' ? static_cast<TCodeUnit>(c + 32) : unit;
    ASSERT_EQ((TypeParam::all(unit).foldAscii() == TypeParam::all(folded)).bits(), 0xFFFFU) << std::hex << c;
  }
}

TYPED_TEST(UnitScan, FindsOneUnitAnywhere) {
  for (int length = 0; length <= 70; ++length) {
    for (int hit = 0; hit < length; ++hit) {
      std::vector<TCodeUnit> text(static_cast<std::size_t>(length), 'x');
      text[static_cast<std::size_t>(hit)] = 'y';
      ExpectScans(IsUnit<TypeParam>(text.data(), 'y'), 0, length);
      ExpectScans(IsNot(IsUnit<TypeParam>(text.data(), 'x')), hit, length);
    }
  }
}

// More than the lanes can count at once.
TYPED_TEST(UnitScan, CountsALongText) {
  const int length = 0xFFFF * TypeParam::Count * 2 + 21;
  std::vector<TCodeUnit> text(static_cast<std::size_t>(length), 'x');
  EXPECT_EQ(scanCount(length, IsUnit<TypeParam>(text.data(), 'x')), length);
  text[1000] = text.back() = 'y';
  EXPECT_EQ(scanCount(length, IsUnit<TypeParam>(text.data(), 'x')), length - 2);
}

TYPED_TEST(UnitScan, AgreesWithTheWalkOverUnits) {
  test::SeededRandom random;
  for (int round = test::Rounds(2000); round > 0; --round) {
    const int length = random.Between(0, 80);
    const int from = random.Between(0, length);
    const std::vector<TCodeUnit> a = RandomUnits(random, length);
    std::vector<TCodeUnit> b = a;
    for (TCodeUnit& unit : b) {
      if (random.OneIn(20)) unit = RandomUnits(random, 1)[0];
    }
    const std::vector<TCodeUnit> set = RandomUnits(random, 5);
    ExpectScans(IsOneOf<TypeParam, 5>(a.data(), set.data()), from, length);
    ExpectScans(IsNot(IsOneOf<TypeParam, 5>(a.data(), set.data())), from, length);
    ExpectScans(IsDifferent<TypeParam, false, false>(a.data(), b.data()), from, length);
    ExpectScans(IsDifferent<TypeParam, true, false>(a.data(), b.data()), from, length);
    ExpectScans(IsDifferent<TypeParam, false, true>(a.data(), b.data()), from, length);
    ExpectScans(IsDifferent<TypeParam, true, true>(a.data(), b.data()), from, length);
    using Is = IsUnit<TypeParam>;
    ExpectScans(AreBoth<Is, Is>(Is(a.data(), set[0]), Is(b.data(), set[1])), from, length);
  }
}

}  // namespace
}  // namespace qilsys::units
