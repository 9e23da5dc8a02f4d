#include "units/Folding.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace qilsys::units {
namespace {

char32_t ByIcu(char32_t c) { return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT)); }

// First in this file: the table is built while several threads ask for it.
TEST(Folding, TableIsBuiltOnceForAllThreads) {
  std::vector<const FoldingTable*> seen(8);
  std::vector<std::thread> threads;
  for (const FoldingTable*& table : seen) {
    threads.emplace_back([&table] {
      table = &FoldingTable::instance();
      EXPECT_EQ(foldCodeUnit(u'\u00C4'), u'\u00E4');
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const FoldingTable* table : seen) EXPECT_EQ(table, seen.front());
}

TEST(Folding, EveryUnitFoldsAsByIcu) {
  for (char32_t c = 0; c <= 0xFFFF; ++c) {
    ASSERT_EQ(foldCodeUnit(static_cast<TCodeUnit>(c)), static_cast<TCodeUnit>(ByIcu(c)))
        << std::hex << std::uint32_t{c};
  }
}

TEST(Folding, EveryCodePointFoldsAsByIcu) {
  for (char32_t c = 0; c <= 0x10FFFF; ++c) ASSERT_EQ(foldCodePoint(c), ByIcu(c)) << std::hex << std::uint32_t{c};
}

// Folded text has the units of the text, one for one.
TEST(Folding, NoCodePointFoldsToOneOfAnotherLength) {
  for (char32_t c = 0; c <= 0x10FFFF; ++c) {
    ASSERT_EQ(foldCodePoint(c) < 0x10000, c < 0x10000) << std::hex << std::uint32_t{c};
  }
}

TEST(Folding, ValueAboveTheLastCodePointStands) {
  EXPECT_EQ(foldCodePoint(0x110000), 0x110000U);
  EXPECT_EQ(foldCodePoint(0xFFFFFFFF), 0xFFFFFFFFU);
}

TEST(Folding, SurrogatesStand) {
  for (char32_t c = 0xD800; c <= 0xDFFF; ++c) ASSERT_EQ(foldCodeUnit(static_cast<TCodeUnit>(c)), c);
}

TEST(Folding, OriginalsAreAllUnitsThatFoldToOne) {
  std::vector<std::vector<TCodeUnit>> wanted(0x10000);
  for (char32_t c = 0; c <= 0xFFFF; ++c) wanted[static_cast<TCodeUnit>(ByIcu(c))].push_back(static_cast<TCodeUnit>(c));
  std::size_t most = 0;
  for (char32_t c = 0; c <= 0xFFFF; ++c) {
    const std::vector<TCodeUnit>& units = wanted[c];
    if (units.empty()) continue;
    const FoldingTable::Originals found = FoldingTable::instance().originals(static_cast<TCodeUnit>(c));
    if (units.size() > FoldingTable::Originals::MaxUnits) {
      ASSERT_EQ(found.count, 0);
    } else {
      ASSERT_EQ(std::vector<TCodeUnit>(found.units, found.units + found.count), units) << std::hex << std::uint32_t{c};
    }
    most = std::max(most, units.size());
  }
  EXPECT_GE(most, 3U);  // k, K and the Kelvin sign, say
}

}  // namespace
}  // namespace qilsys::units
