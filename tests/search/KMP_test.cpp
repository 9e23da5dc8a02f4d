#include "qilsys/KMP.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/Literals.h"

namespace {

using KMP::StringTable;

TEST(StringTable, HoldsThePatternByAddress) {
  const TCodeUnit pattern[] = {'a', 'b', 'a', 'b', 0};
  const StringTable table(pattern, 3, TStringCore::CaseInsensitive);
  EXPECT_EQ(table.pattern(), pattern);
  EXPECT_EQ(table.patternLength(), 3);
  EXPECT_EQ(table.sensitivity(), TStringCore::CaseInsensitive);
  EXPECT_EQ(table.failureTable(), (std::vector<int>{-1, -1, 0}));
}

TEST(StringTable, MeasuresANegativeLength) {
  const StringTable table(QILSYS_UNITS("abab"), -1, TStringCore::CaseSensitive);
  EXPECT_EQ(table.patternLength(), 4);
  EXPECT_EQ(table.failureTable(), (std::vector<int>{-1, -1, 0, 1}));
}

TEST(StringTable, OfNullIsEmpty) {
  const StringTable table(nullptr, 5, TStringCore::CaseSensitive);
  EXPECT_EQ(table.patternLength(), 0);
  EXPECT_TRUE(table.failureTable().empty());
}

TEST(StringTable, CopiesAreValues) {
  const StringTable table(QILSYS_UNITS("aa"), 2, TStringCore::CaseSensitive);
  const StringTable copy(table);
  EXPECT_EQ(copy.pattern(), table.pattern());
  EXPECT_EQ(copy.failureTable(), table.failureTable());
  EXPECT_NE(copy.failureTable().data(), table.failureTable().data());
}

TEST(StringTable, AssignmentReplacesEverything) {
  StringTable target(QILSYS_UNITS("abcabc"), 6, TStringCore::CaseSensitive);
  const StringTable source(QILSYS_UNITS("aa"), 2, TStringCore::CaseInsensitive);
  target = source;
  EXPECT_EQ(target.pattern(), source.pattern());
  EXPECT_EQ(target.patternLength(), 2);
  EXPECT_EQ(target.sensitivity(), TStringCore::CaseInsensitive);
  EXPECT_EQ(target.failureTable(), (std::vector<int>{-1, 0}));
}

TEST(StringTable, AssignmentToItselfChangesNothing) {
  StringTable table(QILSYS_UNITS("aab"), 3, TStringCore::CaseSensitive);
  const StringTable& same = table;
  table = same;
  EXPECT_EQ(table.failureTable(), (std::vector<int>{-1, 0, -1}));
}

TEST(StringTable, AssignmentGrowsByHalfAtLeast) {
  const std::u16string text(1000, u'a');
  for (const int longer : {101, 140, 151, 700}) {
    StringTable target(reinterpret_cast<const TCodeUnit*>(text.data()), 100, TStringCore::CaseSensitive);
    const std::size_t before = target.failureTable().capacity();
    target = StringTable(reinterpret_cast<const TCodeUnit*>(text.data()), longer, TStringCore::CaseSensitive);
    EXPECT_EQ(target.failureTable().size(), static_cast<std::size_t>(longer));
    EXPECT_EQ(target.failureTable().capacity(), std::max(before + before / 2, static_cast<std::size_t>(longer)));
  }
}

TEST(StringTable, AssignmentKeepsEnoughRoom) {
  const std::u16string text(1000, u'a');
  StringTable target(reinterpret_cast<const TCodeUnit*>(text.data()), 100, TStringCore::CaseSensitive);
  const int* table = target.failureTable().data();
  target = StringTable(reinterpret_cast<const TCodeUnit*>(text.data()), 50, TStringCore::CaseSensitive);
  EXPECT_EQ(target.failureTable().data(), table);
}

}  // namespace
