// What needs no memory from the heap, and what a search that finds none leaves behind.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>

#include "search/Search.h"
#include "search/SetEdit.h"
#include "search/UnitSet.h"
#include "support/FailingAllocations.h"
#include "support/RowName.h"
#include "support/SearchTexts.h"

namespace qilsys::search {
namespace {

using test::FailingAllocations;

class SearchMemory : public testing::Test {
 protected:
  void SetUp() override {
    if (!FailingAllocations::SeesOperatorNew()) GTEST_SKIP() << "another operator new has won";
  }
};

using Text = std::basic_string<TCodeUnit>;

// 64 code points that are not ASCII, and U+FFFD among them, so that the set has to be decoded.
Text SetOf(int units) {
  Text set;
  for (int i = 0; i + 1 < units; ++i) set += static_cast<TCodeUnit>(0x4E00 + i);
  return set + static_cast<TCodeUnit>(0xFFFD);
}

struct Row {
  const char* name;
  std::function<int(Text& text, const Text& needle)> search;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class SearchWithoutHeap : public SearchMemory, public testing::WithParamInterface<Row> {};

template <auto Search>
int Forward(Text& text, const Text& needle, CaseSensitivity cs) {
  return Search(text.data(), static_cast<int>(text.size()), needle.data(), static_cast<int>(needle.size()), 0, cs);
}

int Count(Text& text, const Text& needle, CaseSensitivity cs) {
  return countStr(text.data(), static_cast<int>(text.size()), needle.data(), static_cast<int>(needle.size()), cs);
}

int Last(Text& text, const Text& needle, CaseSensitivity cs) {
  return findLastStr(text.data(), static_cast<int>(text.size()), needle.data(), static_cast<int>(needle.size()), -1,
                     cs);
}

constexpr CaseSensitivity Fold = TStringOptions::CaseInsensitive;
constexpr CaseSensitivity Exact = TStringOptions::CaseSensitive;

// The text is one long near miss, so that every way to search has its turn; the letters are outside ASCII, so that
// folding asks its table.
TEST_P(SearchWithoutHeap, FindsByFailingHeap) {
  constexpr TCodeUnit Small = 0xE4;
  constexpr TCodeUnit Other = 0xF6;
  const Text needle = Text(128, Small) + Text(1, Other) + Text(127, Small);
  Text text = Text(5000, Small) + needle;
  const FailingAllocations failing(1);
  EXPECT_GE(GetParam().search(text, needle), 1);
  EXPECT_EQ(failing.Requests(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SearchWithoutHeap,
    testing::Values(
        Row{"Find", [](auto& text, auto& needle) { return Forward<findStrCore>(text, needle, Exact); }},
        Row{"FindFolded", [](auto& text, auto& needle) { return Forward<findStrCore>(text, needle, Fold); }},
        Row{"FindUnitsFolded", [](auto& text, auto& needle) { return Forward<findUnits>(text, needle, Fold); }},
        Row{"Count", [](auto& text, auto& needle) { return Count(text, needle, Exact); }},
        Row{"CountFolded", [](auto& text, auto& needle) { return Count(text, needle, Fold); }},
        Row{"Last", [](auto& text, auto& needle) { return Last(text, needle, Exact); }},
        Row{"LastFolded", [](auto& text, auto& needle) { return Last(text, needle, Fold); }}),
    test::RowName<Row>);

struct SetRow {
  const char* name;
  std::function<int(Text& text, const Text& set)> use;
};

void PrintTo(const SetRow& row, std::ostream* out) { *out << row.name; }

class SetMemory : public SearchMemory, public testing::WithParamInterface<SetRow> {};

int Length(const Text& text) { return static_cast<int>(text.size()); }

const Text Sample = Text(3, 'a') + Text(2, 0x4E00) + Text(3, 'b') + Text(1, 0x4E01) + Text(1, 'c');

TEST_P(SetMemory, SetOfSixtyFourUnitsNeedsNoHeap) {
  const Text set = SetOf(64);
  Text text = Sample;
  const FailingAllocations failing(1);
  EXPECT_GE(GetParam().use(text, set), 0);
  EXPECT_EQ(failing.Requests(), 0);
}

TEST_P(SetMemory, LargerSetThatFindsNoMemoryLeavesTheText) {
  const Text set = SetOf(65);
  Text text = Sample;
  {
    const FailingAllocations failing(1);
    EXPECT_THROW(GetParam().use(text, set), std::bad_alloc);
  }
  EXPECT_EQ(text, Sample);
}

// With ASCII in front, which is replaced apart from the rest.
TEST_F(SearchMemory, ReplacingOfAMixedSetThatFindsNoMemoryLeavesTheText) {
  const Text set = Text(1, 'a') + SetOf(65);
  Text text = Sample;
  {
    const FailingAllocations failing(1);
    EXPECT_THROW(replaceSet(text.data(), Length(text), set.data(), Length(set), '_', 0), std::bad_alloc);
  }
  EXPECT_EQ(text, Sample);
  EXPECT_EQ(replaceSet(text.data(), Length(text), set.data(), Length(set), '_', 0), Length(Sample));
  EXPECT_EQ(text, Text(5, '_') + Text(3, 'b') + Text(1, '_') + Text(1, 'c'));
}

INSTANTIATE_TEST_SUITE_P(
    Table, SetMemory,
    testing::Values(
        SetRow{
            "FindAnyOf",
            [](auto& text, auto& set) { return findAnyOfCore(text.data(), Length(text), set.data(), Length(set), 0); }},
        SetRow{
            "FindNotOf",
            [](auto& text, auto& set) { return findNotOfCore(text.data(), Length(text), set.data(), Length(set), 0); }},
        SetRow{
            "FindRemovable",
            [](auto& text, auto& set) { return findRemovable(text.data(), Length(text), set.data(), Length(set), 0); }},
        SetRow{"Remove",
               [](auto& text, auto& set) { return removeSet(text.data(), Length(text), set.data(), Length(set), 0); }},
        SetRow{"Replace",
               [](auto& text, auto& set) {
                 return replaceSet(text.data(), Length(text), set.data(), Length(set), '_', 0);
               }},
        SetRow{"Trim",
               [](auto&, auto& set) { return UnitSet::forTrimming(set.data()).holds(set.data(), 1) ? 1 : -1; }}),
    test::RowName<SetRow>);

}  // namespace
}  // namespace qilsys::search
