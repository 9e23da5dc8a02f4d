// The order of texts inside what others make of them: `<=>` goes by the text, never by where it lies.
#include <gtest/gtest.h>

#include <algorithm>
#include <compare>
#include <concepts>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/RowName.h"
#include "support/SearchTexts.h"

namespace qilsys::test {
namespace {

struct Row {
  const char* name;
  std::u16string a;
  std::u16string b;
  std::weak_ordering order;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

const Row Rows[] = {
    {"BothEmpty", u"", u"", std::weak_ordering::equivalent},
    {"EmptyIsLess", u"", u"a", std::weak_ordering::less},
    {"EqualInline", u"abc", u"abc", std::weak_ordering::equivalent},
    {"EqualInBlocks", u"abcdefghijklmnop", u"abcdefghijklmnop", std::weak_ordering::equivalent},
    {"ShorterIsLess", u"ab", u"abc", std::weak_ordering::less},
    {"CaseCounts", u"B", u"a", std::weak_ordering::less},
    {"ByUnitsAndNotCodePoints", u"\xD83D\xDE00", u"\uE000", std::weak_ordering::less},
    {"BehindNulNothingCounts", {u"a\0b", 3}, {u"a\0c", 3}, std::weak_ordering::equivalent},
    {"NulEndsTheText", {u"a\0b", 3}, u"a", std::weak_ordering::equivalent},
};

class Order : public testing::TestWithParam<Row> {};

// A deduced reference to a value that lies before or behind the other in memory, whichever the caller wants.
template <class A, class B>
void ExpectOrder(const A& a, const B& b, std::weak_ordering order) {
  EXPECT_TRUE((a <=> b) == order);
  EXPECT_TRUE((b <=> a) == (0 <=> order));
  EXPECT_EQ(std::is_lt(a <=> b), std::is_lt(order));
  EXPECT_EQ(std::is_gt(a <=> b), std::is_gt(order));
}

TEST_P(Order, OfTwoStringsWhereverTheyLie) {
  const Row& row = GetParam();
  const TStringCore ascending[] = {String(row.a), String(row.b)};
  const TStringCore descending[] = {String(row.b), String(row.a)};
  ExpectOrder(ascending[0], ascending[1], row.order);
  ExpectOrder(descending[1], descending[0], row.order);
}

TEST_P(Order, OfStringAndRawText) {
  const Row& row = GetParam();
  EachRawForm(row.b, [&](const auto* b) { ExpectOrder(String(row.a), b, row.order); });
}

INSTANTIATE_TEST_SUITE_P(Table, Order, testing::ValuesIn(Rows), RowName<Row>);

TEST(OrderOfNull, CountsAsEmptyText) {
  const TCodeUnit* const null = nullptr;
  const TForeignUnit* const foreignNull = nullptr;
  ExpectOrder(TStringCore(), null, std::weak_ordering::equivalent);
  ExpectOrder(TStringCore(u"a"), null, std::weak_ordering::greater);
  ExpectOrder(TStringCore(u"a"), foreignNull, std::weak_ordering::greater);
  EXPECT_TRUE((TStringCore(u"a") <=> nullptr) > 0);
}

struct UnitRow {
  const char* name;
  std::u16string s;
  std::weak_ordering order;  // Of s and 'b'.
};

void PrintTo(const UnitRow& row, std::ostream* out) { *out << row.name; }

class OrderOfUnit : public testing::TestWithParam<UnitRow> {};

// By `s < c` and `s == c`; the other way round it mirrors, although `c < s` does not.
TEST_P(OrderOfUnit, OnEitherSide) {
  const TStringCore s = String(GetParam().s);
  ExpectOrder(s, u'b', GetParam().order);
  ExpectOrder(s, L'b', GetParam().order);
}

INSTANTIATE_TEST_SUITE_P(Table, OrderOfUnit,
                         testing::Values(UnitRow{"Empty", u"", std::weak_ordering::less},
                                         UnitRow{"Nul", std::u16string(1, u'\0'), std::weak_ordering::less},
                                         UnitRow{"Below", u"a", std::weak_ordering::less},
                                         UnitRow{"ThatUnit", u"b", std::weak_ordering::equivalent},
                                         UnitRow{"ThatUnitAndMore", u"bc", std::weak_ordering::greater},
                                         UnitRow{"Above", u"c", std::weak_ordering::greater}),
                         RowName<UnitRow>);

TEST(OrderOfUnitThatNeedsTwo, GoesByTheText) {
  if (sizeof(wchar_t) == sizeof(TCodeUnit)) GTEST_SKIP() << "no such unit here";
  const auto c = static_cast<TForeignUnit>(0x1F600);
  ExpectOrder(TStringCore(u"\U0001F600"), c, std::weak_ordering::equivalent);
  ExpectOrder(TStringCore(u"\U0001F600a"), c, std::weak_ordering::greater);
  ExpectOrder(TStringCore(u"a"), c, std::weak_ordering::less);
}

TEST(OrderType, IsWeak) {
  static_assert(std::same_as<std::compare_three_way_result_t<TStringCore>, std::weak_ordering>);
  static_assert(std::same_as<decltype(TStringCore() <=> u"a"), std::weak_ordering>);
  static_assert(std::same_as<decltype(L"a" <=> TStringCore()), std::weak_ordering>);
  static_assert(std::same_as<decltype(u'a' <=> TStringCore()), std::weak_ordering>);
}

// Two equal texts, one above the other in memory, in whatever holds them.
template <class Holder>
void ExpectHeldByText(const Holder& low, const Holder& same, const Holder& high) {
  EXPECT_TRUE(low == same);
  EXPECT_TRUE((low <=> same) == 0);
  EXPECT_TRUE((same <=> low) == 0);
  EXPECT_FALSE(low < same || same < low);
  EXPECT_TRUE(low < high && high > same);
  EXPECT_TRUE((low <=> high) < 0);
}

struct User {
  TStringCore name;
  int age;
  auto operator<=>(const User&) const = default;
};

template <class Make>
void ExpectHeld(Make make) {
  // Each twice, so that both orders of addresses come up.
  const auto first = make(TStringCore(u"b, text in a block"));
  const auto high = make(TStringCore(u"c"));
  const auto second = make(TStringCore(u"b, text in a block"));
  ExpectHeldByText(first, second, high);
  ExpectHeldByText(second, first, high);
}

TEST(OrderInside, Pair) {
  ExpectHeld([](const TStringCore& s) { return std::pair(s, 1); });
}

TEST(OrderInside, Tuple) {
  ExpectHeld([](const TStringCore& s) { return std::tuple(1, s, 'x'); });
}

TEST(OrderInside, Vector) {
  ExpectHeld([](const TStringCore& s) { return std::vector<TStringCore>{u"a", s}; });
}

TEST(OrderInside, Optional) {
  ExpectHeld([](const TStringCore& s) { return std::optional(s); });
}

TEST(OrderInside, Variant) {
  ExpectHeld([](const TStringCore& s) { return std::variant<int, TStringCore>(s); });
}

TEST(OrderInside, AStructureOfTheUser) {
  ExpectHeld([](const TStringCore& s) { return User{s, 30}; });
}

TEST(OrderInside, OptionalAgainstItsText) {
  const std::optional<TStringCore> held(TStringCore(u"b"));
  EXPECT_TRUE((held <=> TStringCore(u"b")) == 0);
  EXPECT_TRUE((held <=> TStringCore(u"a")) > 0);
}

TEST(OrderInside, KeysOfAMap) {
  std::map<std::pair<TStringCore, int>, int> counts;
  for (int i = 0; i < 100; ++i) ++counts[{TStringCore(u"a key of some length"), 7}];
  EXPECT_EQ(counts.size(), 1U);
  EXPECT_EQ(counts.begin()->second, 100);
}

TEST(OrderInside, FunctionObjects) {
  const TStringCore texts[] = {u"b", u"a"};
  EXPECT_TRUE(std::less<>{}(texts[1], texts[0]));
  EXPECT_TRUE(std::ranges::less{}(texts[1], texts[0]));
  EXPECT_TRUE(std::compare_three_way{}(texts[1], texts[0]) < 0);
  EXPECT_TRUE(std::less<>{}(u"a", texts[0]) && !std::less<>{}(u"b", texts[0]));
  EXPECT_TRUE(std::less<>{}(L"a", texts[0]) && !std::less<>{}(L"b", texts[0]));
}

TEST(OrderInside, SortedByCopies) {
  std::vector<User> users{{u"c", 1}, {u"a", 2}, {u"b", 3}, {u"a", 1}};
  std::ranges::sort(users);
  const std::vector<User> wanted{{u"a", 1}, {u"a", 2}, {u"b", 3}, {u"c", 1}};
  EXPECT_EQ(users, wanted);
}

}  // namespace
}  // namespace qilsys::test
