// Growth, the limits of length and capacity, and what is left when the heap gives nothing.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/RowName.h"
#include "support/StringHeaps.h"
#include "support/StringText.h"
#include "support/TStringCoreForTest.h"

using qilsys::test::FailingStringHeap;
using qilsys::test::LazyStringHeap;
using qilsys::test::RepeatedBytes;
using qilsys::test::UnitsOf;
using Inside = qilsys::test::TStringCoreForTest;

namespace {

constexpr int Longest = 0x7FFFFFF7;
constexpr int MaxCapacity = 0x7FFFFFF8;

enum class Raised { Nothing, Plain, Capacity, OutOfMemory };

struct Outcome {
  Raised raised;
  std::string message;
  bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << static_cast<int>(outcome.raised) << " \"" << outcome.message << '"';
}

template <class Step>
Outcome OutcomeOf(Step step) {
  try {
    step();
  } catch (const TStringCore::CapacityException& e) {
    return {Raised::Capacity, e.message.toStdString()};
  } catch (const TStringCore::OutOfMemoryException& e) {
    return {Raised::OutOfMemory, e.message.toStdString()};
  } catch (const TStringCore::Exception& e) {
    return {Raised::Plain, e.message.toStdString()};
  }
  return {Raised::Nothing, ""};
}

const Outcome Overflow{Raised::Capacity, "String capacity overflow."};
const Outcome Negative{Raised::Plain, "Negative allocation size; probable overflow"};
const Outcome NegativePromotion{Raised::Plain, "Allocation size less than zero; probable capacity overflow"};
const Outcome NegativeReallocation{Raised::Plain, "Allocation capacity is less than zero; probable capacity overflow."};
const Outcome NoMemory{Raised::OutOfMemory, "Out of memory"};

struct GrowthRow {
  const char* name;
  TStringCore::GrowthMode mode;
  int textLength;
  int wanted;
  int capacity;
};

class NextCapacity : public testing::TestWithParam<GrowthRow> {};

TEST_P(NextCapacity, IsChosen) {
  const GrowthRow& row = GetParam();
  EXPECT_EQ(Inside::NextCapacity(TStringCore(u'x', row.textLength), row.wanted, row.mode), row.capacity);
}

constexpr auto Geometric = TStringCore::GrowGeometric;
constexpr auto AtLeast = TStringCore::GrowAtLeast;
constexpr auto Exact = TStringCore::GrowExact;

INSTANTIATE_TEST_SUITE_P(
    Modes, NextCapacity,
    testing::Values(
        GrowthRow{"GeometricFits", Geometric, 0, 14, 15}, GrowthRow{"GeometricFifteen", Geometric, 0, 15, 18},
        GrowthRow{"GeometricSixteen", Geometric, 0, 16, 18}, GrowthRow{"GeometricSeventeen", Geometric, 0, 17, 26},
        GrowthRow{"GeometricBeyondHeldBlock", Geometric, 20, 26, 42},
        GrowthRow{"GeometricInHeldBlock", Geometric, 20, 25, 26},
        GrowthRow{"GeometricSmallInHeldBlock", Geometric, 20, 3, 26},
        GrowthRow{"GeometricThousand", Geometric, 0, 1000, 1018},
        GrowthRow{"GeometricNextStep", Geometric, 0, 1017, 1530},
        GrowthRow{"GeometricHuge", Geometric, 0, 0x60000000, MaxCapacity},
        GrowthRow{"GeometricBelowThreeQuarters", Geometric, 0, 0x5FFFFFF8, 0x60000000 - 6},
        GrowthRow{"GeometricAtThreeQuarters", Geometric, 0, 0x5FFFFFF9, MaxCapacity},
        GrowthRow{"GeometricLongest", Geometric, 0, Longest, MaxCapacity},
        GrowthRow{"UnknownModeIsGeometric", static_cast<TStringCore::GrowthMode>(7), 0, 17, 26},
        GrowthRow{"AtLeastFits", AtLeast, 0, 14, 15}, GrowthRow{"AtLeastFifteen", AtLeast, 0, 15, 16},
        GrowthRow{"AtLeastInHeldBlock", AtLeast, 20, 25, 26}, GrowthRow{"AtLeastBeyondHeldBlock", AtLeast, 20, 26, 27},
        GrowthRow{"AtLeastWraps", AtLeast, 0, 0x7FFFFFFF, -0x7FFFFFFF - 1}, GrowthRow{"ExactFits", Exact, 0, 14, 15},
        GrowthRow{"ExactFifteen", Exact, 0, 15, 16}, GrowthRow{"ExactShrinks", Exact, 100, 20, 21},
        GrowthRow{"ExactToInline", Exact, 100, 3, 15}, GrowthRow{"ExactWraps", Exact, 0, 0x7FFFFFFF, -0x7FFFFFFF - 1}),
    qilsys::test::RowName<GrowthRow>);

TEST(TStringCoreLimits, GeometricGrowthEndsAtTheLimit) {
  const TStringCore text;
  EXPECT_EQ(OutcomeOf([&] { Inside::NextCapacity(text, MaxCapacity, Geometric); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { Inside::NextCapacity(text, 0x7FFFFFFF, Geometric); }), Overflow);
}

TEST(TStringCoreLimits, ReserveExactShrinksAndReturnsInline) {
  TStringCore text(u'x', 30);
  Inside::ReserveWithMode(text, 30, Exact);
  EXPECT_EQ(text.capacity(), 31);
  Inside::ReserveWithMode(text, 3, Exact);
  EXPECT_TRUE(Inside::IsInline(text));
  EXPECT_EQ(UnitsOf(text), std::u16string(14, u'x')) << "cut to what fits inline";
}

TEST(TStringCoreLimits, ReserveRefusesNegativeSizes) {
  TStringCore text(u"abc");
  EXPECT_EQ(OutcomeOf([&] { text.reserve(-5); }), Negative);
  EXPECT_EQ(UnitsOf(text), u"abc");
}

TEST(TStringCoreLimits, ReserveOfTheHighestIntDependsOnTheForm) {
  TStringCore text(u"abc");
  EXPECT_EQ(OutcomeOf([&] { text.reserve(0x7FFFFFFF); }), NegativePromotion);
  text = TStringCore(u'x', 20);
  EXPECT_EQ(OutcomeOf([&] { text.reserve(0x7FFFFFFF); }), NegativeReallocation);
  const TStringCore other = text;
  EXPECT_EQ(OutcomeOf([&] { text.reserve(0x7FFFFFFF); }), Overflow);
  EXPECT_EQ(UnitsOf(text), std::u16string(20, u'x'));
  EXPECT_TRUE(text.isShared());
}

TEST(TStringCoreLimits, PromotionAndReallocationTestTheirCapacity) {
  TStringCore text(u"abc");
  EXPECT_EQ(OutcomeOf([&] { Inside::PromoteToBlock(text, -1); }), NegativePromotion);
  Inside::PromoteToBlock(text, 15);
  EXPECT_TRUE(Inside::IsInline(text));
  Inside::PromoteToBlock(text, 16);
  EXPECT_EQ(text.capacity(), 16);
  EXPECT_EQ(UnitsOf(text), u"abc");
  EXPECT_EQ(OutcomeOf([&] { Inside::ReallocateBlock(text, -1); }), NegativeReallocation);
  Inside::ReallocateBlock(text, 15);
  EXPECT_TRUE(Inside::IsInline(text));
  EXPECT_EQ(UnitsOf(text), u"abc");
}

TEST(TStringCoreLimits, ReallocationCutsTheText) {
  TStringCore text(u"abcdefghijklmnopqrstuvwxyz");
  Inside::ReallocateBlock(text, 20);
  EXPECT_EQ(UnitsOf(text), u"abcdefghijklmnopqrs");
  EXPECT_EQ(text.constData()[19], 0);
  Inside::UnshareInto(text, 17);
  EXPECT_EQ(UnitsOf(text), u"abcdefghijklmnop");
  Inside::ReallocateBlock(text, 10);
  EXPECT_EQ(UnitsOf(text), u"abcdefghijklmn");
}

TEST(TStringCoreLimits, BlocksHaveALargestCapacity) {
  const LazyStringHeap heap;
  EXPECT_EQ(OutcomeOf([] { Inside::AllocateBlock(-1); }), Overflow);
  EXPECT_EQ(OutcomeOf([] { Inside::AllocateBlock(MaxCapacity + 1); }), Overflow);
  EXPECT_EQ(OutcomeOf([] { Inside::AllocateBlock(MaxCapacity); }).raised, Raised::Nothing);
  EXPECT_EQ(OutcomeOf([] { Inside::AllocateBlock(0); }).raised, Raised::Nothing);
  TStringCore text(u"abc");
  EXPECT_EQ(OutcomeOf([&] { text.reserve(MaxCapacity); }), Overflow);
  text.reserve(Longest);
  EXPECT_EQ(text.capacity(), MaxCapacity);
  EXPECT_EQ(UnitsOf(text), u"abc");
}

TEST(TStringCoreLimits, TextHasALargestLength) {
  const LazyStringHeap heap;
  TStringCore text(u"abc");
  EXPECT_EQ(OutcomeOf([&] { text.resize(MaxCapacity); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { Inside::ResizeForWrite(text, -1); }), Overflow);
  text.resize(Longest);
  EXPECT_EQ(text.length(), Longest);
  EXPECT_EQ(text.constData()[Longest], 0);
  EXPECT_EQ(text.constData()[2], u'c');
  for (const int n : {MaxCapacity, 0x7FFFFFFF, -1}) {
    EXPECT_EQ(OutcomeOf([&] { Inside::SetBlockLength(text, n); }), Overflow) << n;
  }
  EXPECT_EQ(text.length(), Longest);
}

TEST(TStringCoreLimits, NoEditGrowsTheLongestText) {
  const LazyStringHeap heap;
  TStringCore text(u"abc");
  text.resize(Longest);
  EXPECT_EQ(OutcomeOf([&] { text.append(u'x'); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.append(u"x"); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.append(TStringCore(u"x")); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.append("x"); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.append(text); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.append(text.constData() + 1); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.insert(0, u'x'); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.insert(0, u"xyz", 3); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.replace(0, 1, u"xy", 2); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.fill(u'x', MaxCapacity); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.assign(u'x', MaxCapacity); }), Overflow);
  EXPECT_EQ(OutcomeOf([&] { text.assign(u"x", MaxCapacity); }), Overflow);
  EXPECT_EQ(text.length(), Longest);
  EXPECT_EQ(text.constData()[0], u'a');
}

TEST(TStringCoreLimits, RawTextIsMeasuredUpToTheLimit) {
  const std::size_t terminator = 8;
  const RepeatedBytes longest(std::size_t{Longest} * 2 + terminator, 'a');
  EXPECT_EQ(TStringCore::length(reinterpret_cast<const TCodeUnit*>(longest.data())), Longest);
  const RepeatedBytes tooLong(std::size_t{MaxCapacity} * 2 + terminator, 'a');
  const auto* units = reinterpret_cast<const TCodeUnit*>(tooLong.data());
  TStringCore text(u"abc");
  EXPECT_EQ(OutcomeOf([&] { text.append(units); }), Overflow);
  EXPECT_EQ(UnitsOf(text), u"abc");
}

TEST(TStringCoreLimits, AppendedBytesHaveALimit) {
  const RepeatedBytes bytes(std::size_t{0x80000000} + 8, 'a');
  TStringCore text(u"abc");
  EXPECT_EQ(OutcomeOf([&] { text.append(static_cast<const char*>(bytes.data())); }),
            (Outcome{Raised::Plain, "Appended string is too long"}));
  EXPECT_EQ(UnitsOf(text), u"abc");
}

// ---- The heap gives nothing

struct FailingEdit {
  const char* name;
  std::function<void(TStringCore&)> edit;
};

class EditWithoutMemory : public testing::TestWithParam<FailingEdit> {};

/// Fails the first, second, ... request until the edit succeeds; each failure must leave the text and no block behind.
void ExpectTextSurvives(const TStringCore& before, const std::function<void(TStringCore&)>& edit) {
  const std::u16string units = UnitsOf(before);
  for (int n = 0; n < 50; ++n) {
    TStringCore text = before;
    const FailingStringHeap heap(n);
    const int blocks = FailingStringHeap::Blocks();
    const Outcome outcome = OutcomeOf([&] { edit(text); });
    if (outcome.raised == Raised::Nothing) return;
    EXPECT_EQ(outcome, NoMemory);
    EXPECT_EQ(UnitsOf(text), units) << "request " << n;
    EXPECT_EQ(FailingStringHeap::Blocks(), blocks);
  }
  ADD_FAILURE() << "never succeeds";
}

TEST_P(EditWithoutMemory, LeavesTheText) {
  ExpectTextSurvives(TStringCore(u"abc"), GetParam().edit);
  ExpectTextSurvives(TStringCore(u"abcdefghijabcdefghijabcdefghij"), GetParam().edit);
}

const FailingEdit FailingEdits[] = {
    {"AppendText", [](TStringCore& s) { s.append(TStringCore(u"0123456789").repeated(5)); }},
    {"AppendUnits", [](TStringCore& s) { s.append(u"0123456789012345678901234567890123456789"); }},
    {"AppendUtf8", [](TStringCore& s) { s.append("0123456789012345678901234567890123456789"); }},
    {"AppendOneUnit", [](TStringCore& s) { s.append(u'x'); }},
    {"AppendItself", [](TStringCore& s) { s.append(s); }},
    {"AppendOwnTail", [](TStringCore& s) { s.append(s.constData() + 1); }},
    {"AssignUnits", [](TStringCore& s) { s.assign(u"0123456789012345678901234567890123456789"); }},
    {"AssignUtf8", [](TStringCore& s) { s.assign("0123456789012345678901234567890123456789"); }},
    {"AssignOwnTail", [](TStringCore& s) { s.assign(s.constData() + 1); }},
    {"AssignRepeated", [](TStringCore& s) { s.assign(u'x', 100); }},
    {"Insert", [](TStringCore& s) { s.insert(1, u"0123456789012345678901234567890123456789"); }},
    {"InsertUnit", [](TStringCore& s) { s.insert(1, u'x'); }},
    {"ReplaceRange", [](TStringCore& s) { s.replace(1, 1, u"0123456789012345678901234567890123456789"); }},
    {"ReplaceTail", [](TStringCore& s) { s.replace(1, 100, u"0123456789012345678901234567890123456789"); }},
    {"ReplaceOwn", [](TStringCore& s) { s.replace(1, 1, s.constData(), 3); }},
    {"ReplaceTailByOwn", [](TStringCore& s) { s.replace(s.length() - 1, 100, s.constData(), s.length()); }},
    {"AssignRepeatedForeign", [](TStringCore& s) { s.assign(static_cast<TForeignUnit>(0x1F600), 100); }},
    {"TrimSet", [](TStringCore& s) { s.trim(u"abcj"); }},
    {"ReplaceMatches", [](TStringCore& s) { s.replace(u"b", u"0123456789012345678901234567890123456789"); }},
    {"ReplaceInPlace", [](TStringCore& s) { s.replace(u"b", u"x"); }},
    {"RemoveAll", [](TStringCore& s) { s.removeAll(u"b"); }},
    {"RemoveAnyOf", [](TStringCore& s) { s.removeAnyOf(u"bc"); }},
    {"ReplaceAnyOf", [](TStringCore& s) { s.replaceAnyOf(u"bc", u'x'); }},
    {"TrimLeft", [](TStringCore& s) { s.trimLeft(u'a'); }},
    {"Truncate", [](TStringCore& s) { s.truncate(2); }},
    {"Fill", [](TStringCore& s) { s.fill(u'x', 100); }},
    {"Reverse", [](TStringCore& s) { s.reverse(); }},
    {"UnixToDos", [](TStringCore& s) { s.unixToDos(); }},
    {"Reserve", [](TStringCore& s) { s.reserve(100); }},
    {"Resize", [](TStringCore& s) { s.resize(100); }},
    {"Squeeze", [](TStringCore& s) { s.squeeze(); }},
    {"Data", [](TStringCore& s) { static_cast<void>(s.data()); }},
};

INSTANTIATE_TEST_SUITE_P(Edits, EditWithoutMemory, testing::ValuesIn(FailingEdits), qilsys::test::RowName<FailingEdit>);

TEST(TStringCoreLimits, InlineTextNeedsNoMemory) {
  const FailingStringHeap heap(0);
  TStringCore text(u"12345678901234");
  TStringCore copy = text;
  text = std::move(copy);
  text.truncate(3);
  text.append(u"abc").append(u'x').insert(1, u"y").replace(u'a', u'b').reverse();
  EXPECT_EQ(UnitsOf(text), u"xcbb32y1");
  EXPECT_EQ(FailingStringHeap::Requests(), 0);
}

TEST(TStringCoreLimits, CopiesOfABlockNeedNoMemory) {
  const TStringCore text(u'x', 100);
  const FailingStringHeap heap(0);
  const TStringCore copy = text;
  TStringCore assigned;
  assigned = copy;
  EXPECT_EQ(FailingStringHeap::Requests(), 0);
}

}  // namespace
