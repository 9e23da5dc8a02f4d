#include "diagnostics/CrashDumpRanges.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/Random.h"
#include "support/RowName.h"

namespace qilsys::diagnostics {
namespace {

using Ranges = std::pmr::vector<AddressRange>;

constexpr std::uint64_t Page = 0x1000;
constexpr std::uint64_t Present = std::uint64_t{1} << 63;
constexpr std::uint64_t Swapped = std::uint64_t{1} << 62;
constexpr std::uint64_t OfFile = std::uint64_t{1} << 61;

struct ContentRow {
  const char* name;
  int type;
  DumpContent wanted;
};

class ContentOfType : public testing::TestWithParam<ContentRow> {};

TEST_P(ContentOfType, Is) { EXPECT_EQ(ContentOf(static_cast<_MINIDUMP_TYPE>(GetParam().type)), GetParam().wanted); }

constexpr ContentRow Contents[] = {
    {"Normal", 0, {false, false, false}},
    {"WithDataSegments", 1, {true, false, false}},
    {"WithFullMemory", 2, {true, true, true}},
    {"WithPrivateMemory", 0x200, {false, true, false}},
    {"DataAndPrivate", 0x201, {true, true, false}},
    {"WhatHasNoCounterpart", 0x4 | 0x1000, {false, false, false}},
    {"FullAmongOthers", 0x1002, {true, true, true}},
};

INSTANTIATE_TEST_SUITE_P(Rows, ContentOfType, testing::ValuesIn(Contents), test::RowName<ContentRow>);

constexpr DumpContent Nothing{};
constexpr DumpContent ModuleData{.moduleData = true};
constexpr DumpContent Private{.privateMemory = true};
constexpr DumpContent All{true, true, true};

Mapping Memory(std::string_view name, std::uint64_t offset = 0) {
  return {.start = Page, .end = 2 * Page, .offset = offset, .name = name, .isReadable = true};
}

Mapping SharedMemory(std::string_view name) {
  Mapping mapping = Memory(name);
  mapping.isShared = true;
  return mapping;
}

Mapping Unused(Mapping mapping) {
  mapping.isInUse = false;
  return mapping;
}

Mapping StaysOut(Mapping mapping) {
  mapping.staysOut = true;
  return mapping;
}

Mapping Unreadable(Mapping mapping) {
  mapping.isReadable = false;
  return mapping;
}

struct TakenRow {
  const char* name;
  Mapping mapping;
  DumpContent content;
  Taken wanted;
};

class TakenOfMapping : public testing::TestWithParam<TakenRow> {};

TEST_P(TakenOfMapping, Is) { EXPECT_EQ(TakenOf(GetParam().mapping, GetParam().content), GetParam().wanted); }

const TakenRow Rows[] = {
    {"HeapInSmallDump", Memory("[heap]"), Nothing, Taken::Nothing},
    {"HeapWithModuleData", Memory("[heap]"), ModuleData, Taken::Nothing},
    {"HeapWithPrivate", Memory("[heap]"), Private, Taken::UsedPages},
    {"NamelessInFullDump", Memory(""), All, Taken::UsedPages},
    {"HeadOfModuleInSmallDump", Memory("/lib/a.so"), Nothing, Taken::Head},
    {"CodeOfModuleInSmallDump", Memory("/lib/a.so", 0x1000), Nothing, Taken::Nothing},
    {"CodeOfModuleWithModuleData", Memory("/lib/a.so", 0x1000), ModuleData, Taken::OwnPages},
    {"ModuleInFullDump", Memory("/lib/a.so"), All, Taken::OwnPages},
    {"ModuleThatHasBeenReplaced", Memory("/lib/a.so (deleted)"), All, Taken::UsedPages},
    {"SharedFileInFullDump", SharedMemory("/tmp/data"), All, Taken::Nothing},
    {"SharedMemoryInFullDump", SharedMemory("/dev/zero (deleted)"), All, Taken::UsedPages},
    {"SharedMemoryWithPrivate", SharedMemory("/dev/zero (deleted)"), Private, Taken::Nothing},
    {"KernelsCode", Memory("[vdso]"), Nothing, Taken::Whole},
    {"UnusedInFullDump", Unused(Memory("")), All, Taken::Nothing},
    {"UnusedFileInFullDump", Unused(Memory("/lib/a.so")), All, Taken::OwnPages},
    {"AsksToStayOut", StaysOut(Memory("")), All, Taken::Nothing},
    {"Unreadable", Unreadable(Memory("")), All, Taken::Nothing},
};

INSTANTIATE_TEST_SUITE_P(Rows, TakenOfMapping, testing::ValuesIn(Rows), test::RowName<TakenRow>);

Ranges RunsOf(const std::vector<std::uint64_t>& entries, Taken taken) {
  Ranges ranges;
  AddUsedRuns(entries, 0x10000, Page, taken, ranges);
  return ranges;
}

TEST(AddUsedRuns, TakesPagesInMemoryAndInSwap) {
  EXPECT_EQ(RunsOf({Present, Swapped, Present | OfFile}, Taken::UsedPages), (Ranges{{0x10000, 0x13000}}));
  EXPECT_EQ(RunsOf({0, 0, 0}, Taken::UsedPages), Ranges());
  EXPECT_EQ(RunsOf({}, Taken::UsedPages), Ranges());
}

TEST(AddUsedRuns, LeavesOutPagesOfTheFileWhereOnlyOwnOnesAreTaken) {
  EXPECT_EQ(RunsOf({Present | OfFile, Present, Present | OfFile}, Taken::OwnPages), (Ranges{{0x11000, 0x12000}}));
}

TEST(AddUsedRuns, JoinsRunsWithFewPagesBetweenThem) {
  std::vector<std::uint64_t> entries(40, 0);
  entries[0] = entries[17] = Present;
  EXPECT_EQ(RunsOf(entries, Taken::UsedPages), (Ranges{{0x10000, 0x10000 + 18 * Page}}));
  entries[17] = 0;
  entries[18] = Present;
  EXPECT_EQ(RunsOf(entries, Taken::UsedPages),
            (Ranges{{0x10000, 0x11000}, {0x10000 + 18 * Page, 0x10000 + 19 * Page}}));
}

TEST(AddUsedRuns, DoesNotJoinWithWhatLiesAbove) {
  Ranges ranges{{0x90000, 0x91000}};
  AddUsedRuns(std::vector{Present}, 0x10000, Page, Taken::UsedPages, ranges);
  EXPECT_EQ(ranges, (Ranges{{0x90000, 0x91000}, {0x10000, 0x11000}}));
}

Mapping Stack(std::uint64_t start, std::uint64_t end, std::string_view name = "") {
  return {.start = start, .end = end, .name = name, .isReadable = true, .isWritable = true};
}

Ranges StackRanges(const std::vector<Mapping>& mappings, const StackPlace& place) {
  Ranges ranges;
  AddStack(mappings, place, Page, ranges);
  return ranges;
}

TEST(AddStack, OfTheFirstThreadIsTakenFromTheRedZoneOn) {
  const std::vector mappings{Stack(0x10000, 0x90000, "[heap]"), Stack(0x700000, 0x800000, "[stack]")};
  EXPECT_EQ(StackRanges(mappings, {.stackPointer = 0x7F0000, .threadBlock = 0x20000, .isFirst = true}),
            (Ranges{{0x7F0000 - 128, 0x800000}}));
}

TEST(AddStack, OfAnotherThreadEndsBehindItsBlock) {
  // Other memory has been joined on.
  const std::vector mappings{Stack(0x100000, 0x900000)};
  EXPECT_EQ(StackRanges(mappings, {.stackPointer = 0x180000, .threadBlock = 0x1FF6C0}),
            (Ranges{{0x180000 - 128, 0x1FF6C0 + 2 * Page}}));
}

TEST(AddStack, OnAnotherStackThanTheThreadsOwnBothAreTaken) {
  const std::vector mappings{Stack(0x10000, 0x20000), Stack(0x700000, 0x800000, "[stack]")};
  EXPECT_EQ(StackRanges(mappings, {.stackPointer = 0x18000, .threadBlock = 0x5000, .isFirst = true}),
            (Ranges{{0x700000, 0x800000}, {0x18000 - 128, 0x20000}}));
}

TEST(AddStack, OfAForeignStackOneMegabyteIsTaken) {
  const std::vector mappings{Stack(0x10000000, 0x20000000)};
  EXPECT_EQ(StackRanges(mappings, {.stackPointer = 0x18000000}), (Ranges{{0x18000000 - 128, 0x18100000}}));
}

TEST(AddStack, ThatIsNowhereIsLeftOut) {
  EXPECT_EQ(StackRanges({Stack(0x10000, 0x20000)}, {.stackPointer = 0x40}), Ranges());
}

TEST(AddStack, BeginsNoLowerThanItsMapping) {
  const std::vector mappings{Stack(0x700000, 0x800000, "[stack]")};
  EXPECT_EQ(StackRanges(mappings, {.stackPointer = 0x700010, .isFirst = true}), (Ranges{{0x700000, 0x800000}}));
}

std::vector<Segment> Cut(const std::vector<Mapping>& mappings, Ranges ranges) {
  const auto segments = CutIntoSegments(mappings, std::move(ranges), Page, *std::pmr::new_delete_resource());
  return {segments.begin(), segments.end()};
}

Segment Dumped(std::uint64_t start, std::uint64_t end) { return {start, end - start, end - start, true, true, false}; }
Segment LeftOut(std::uint64_t start, std::uint64_t end) { return {start, end - start, 0, true, true, false}; }

TEST(CutIntoSegments, KeepsTheRights) {
  const Mapping code{.start = 0x1000, .end = 0x2000, .isReadable = true, .isExecutable = true};
  EXPECT_EQ(Cut({code}, {}), (std::vector{Segment{0x1000, 0x1000, 0, true, false, true}}));
}

TEST(CutIntoSegments, PartsWhatIsDumpedFromWhatIsNot) {
  EXPECT_EQ(Cut({Stack(0x1000, 0x9000)}, {{0x3000, 0x5000}}),
            (std::vector{LeftOut(0x1000, 0x3000), Dumped(0x3000, 0x5000), LeftOut(0x5000, 0x9000)}));
}

TEST(CutIntoSegments, WidensRangesToWholePages) {
  EXPECT_EQ(Cut({Stack(0x1000, 0x4000)}, {{0x2FFF, 0x3001}}),
            (std::vector{LeftOut(0x1000, 0x2000), Dumped(0x2000, 0x4000)}));
}

TEST(CutIntoSegments, TakesRangesInAnyOrderAndOverlapping) {
  EXPECT_EQ(Cut({Stack(0x1000, 0x9000)}, {{0x6000, 0x8000}, {0x2000, 0x3000}, {0x2000, 0x7000}}),
            (std::vector{LeftOut(0x1000, 0x2000), Dumped(0x2000, 0x8000), LeftOut(0x8000, 0x9000)}));
}

TEST(CutIntoSegments, ARangeOverSeveralMappingsIsCutAtTheirEnds) {
  EXPECT_EQ(Cut({Stack(0x1000, 0x2000), Stack(0x2000, 0x3000), Stack(0x8000, 0x9000)}, {{0x1000, 0x20000}}),
            (std::vector{Dumped(0x1000, 0x2000), Dumped(0x2000, 0x3000), Dumped(0x8000, 0x9000)}));
}

TEST(CutIntoSegments, NeverDumpsWhatStaysOutOrCannotBeRead) {
  const Mapping guard{.start = 0x2000, .end = 0x3000};
  EXPECT_EQ(Cut({StaysOut(Stack(0x1000, 0x2000)), guard}, {{0x1000, 0x3000}}),
            (std::vector{LeftOut(0x1000, 0x2000), Segment{0x2000, 0x1000, 0, false, false, false}}));
}

TEST(CutIntoSegments, PassesOverRangesThatWrapAround) {
  EXPECT_EQ(Cut({Stack(0x1000, 0x3000)}, {{~std::uint64_t{0} - 10, 20}, {0x2000, 0x2000}}),
            (std::vector{LeftOut(0x1000, 0x3000)}));
}

// Page by page, as the sentence says it.
TEST(CutIntoSegments, AgreesWithASecondWayToTell) {
  test::SeededRandom random;
  const int rounds = test::Rounds(200);
  for (int round = 0; round < rounds; ++round) {
    std::vector<Mapping> mappings;
    for (std::uint64_t page = 0; page < 64;) {
      const std::uint64_t end = page + random.Between<std::uint64_t>(1, 9);
      if (!random.OneIn(3)) mappings.push_back(Stack(page * Page, end * Page));
      page = end;
    }
    Ranges ranges;
    for (int i = random.Between(0, 5); i > 0; --i) {
      const std::uint64_t start = random.Between<std::uint64_t>(0, 70 * Page);
      ranges.push_back({start, start + random.Between<std::uint64_t>(0, 12 * Page)});
    }
    std::vector<std::uint64_t> wanted;
    for (const Mapping& mapping : mappings) {
      for (std::uint64_t page = mapping.start; page < mapping.end; page += Page) {
        const auto meets = [&](const AddressRange& r) {
          return r.start < r.end && r.start < page + Page && page < r.end;
        };
        if (std::ranges::any_of(ranges, meets)) wanted.push_back(page);
      }
    }
    std::vector<std::uint64_t> dumped;
    std::uint64_t covered = 0;
    for (const Segment& segment : Cut(mappings, ranges)) {
      covered += segment.memoryBytes;
      for (std::uint64_t at = 0; at < segment.fileBytes; at += Page) dumped.push_back(segment.address + at);
    }
    std::uint64_t mapped = 0;
    for (const Mapping& mapping : mappings) mapped += mapping.end - mapping.start;
    ASSERT_EQ(dumped, wanted);
    ASSERT_EQ(covered, mapped);
  }
}

}  // namespace
}  // namespace qilsys::diagnostics
