#include "diagnostics/CrashDumpProc.h"

#include <gtest/gtest.h>

#include <string>

#include "support/RowName.h"

namespace qilsys::diagnostics {
namespace {

std::vector<Mapping> Parse(std::string_view text) {
  const auto mappings = ParseMappings(text, *std::pmr::new_delete_resource());
  return {mappings.begin(), mappings.end()};
}

TEST(ParseMappings, ReadsTheRowsOfMaps) {
  const auto mappings = Parse(
      "55e0a000-55e0b000 r-xp 00002000 08:01 1234      /usr/bin/name\n"
      "7f0000000000-7f0000021000 rw-p 00000000 00:00 0 \n"
      "7f0000100000-7f0000200000 rw-s 00010000 00:01 99   /memfd:a b (deleted)\n");
  ASSERT_EQ(mappings.size(), 3u);
  EXPECT_EQ(mappings[0], (Mapping{.start = 0x55e0a000,
                                  .end = 0x55e0b000,
                                  .offset = 0x2000,
                                  .name = "/usr/bin/name",
                                  .isReadable = true,
                                  .isExecutable = true}));
  EXPECT_EQ(mappings[1],
            (Mapping{.start = 0x7f0000000000, .end = 0x7f0000021000, .isReadable = true, .isWritable = true}));
  EXPECT_EQ(mappings[2], (Mapping{.start = 0x7f0000100000,
                                  .end = 0x7f0000200000,
                                  .offset = 0x10000,
                                  .name = "/memfd:a b (deleted)",
                                  .isReadable = true,
                                  .isWritable = true,
                                  .isShared = true}));
}

TEST(ParseMappings, ReadsTheFurtherRowsOfSmaps) {
  const auto mappings = Parse(
      "1000-2000 rw-p 00000000 00:00 0 [heap]\nSize:   4 kB\nRss:    4 kB\nSwap:   0 kB\nVmFlags: rd wr mr mw me ac \n"
      "2000-3000 rw-p 00000000 00:00 0 \nRss:    0 kB\nSwap:   0 kB\nVmFlags: rd wr\n"
      "3000-4000 rw-p 00000000 00:00 0 \nRss:    0 kB\nSwap:   4 kB\nVmFlags: rd wr\n");
  ASSERT_EQ(mappings.size(), 3u);
  EXPECT_TRUE(mappings[0].isInUse);
  EXPECT_FALSE(mappings[1].isInUse);
  EXPECT_TRUE(mappings[2].isInUse);
  for (const Mapping& mapping : mappings) EXPECT_FALSE(mapping.staysOut);
}

struct FlagsRow {
  const char* name;
  const char* flags;
  bool staysOut;
};

class ParseMappingsFlags : public testing::TestWithParam<FlagsRow> {};

TEST_P(ParseMappingsFlags, SayWhatStaysOut) {
  const auto mappings = Parse(std::string("1000-2000 rw-p 00000000 00:00 0 \nVmFlags: ") + GetParam().flags + "\n");
  ASSERT_EQ(mappings.size(), 1u);
  EXPECT_EQ(mappings[0].staysOut, GetParam().staysOut);
}

constexpr FlagsRow Flags[] = {
    {"None", "", false},
    {"UsualMemory", "rd wr mr mw me ac sd ", false},
    {"NotToBeDumped", "rd wr mr mw me nr dd nh ", true},
    {"Device", "rd mr me io", true},
    {"NoPagesOfMemory", "rd pf", true},
    {"OnlyWholeWordsCount", "ddx iopf", false},
};

INSTANTIATE_TEST_SUITE_P(Rows, ParseMappingsFlags, testing::ValuesIn(Flags), test::RowName<FlagsRow>);

TEST(ParseMappings, TheKernelsOwnPagesStayOut) {
  for (const Mapping& mapping : Parse("1000-2000 r--p 00000000 00:00 0 [vvar]\n"
                                      "2000-3000 r--p 00000000 00:00 0 [vvar_vclock]\n"
                                      "ffffffffff600000-ffffffffff601000 --xp 00000000 00:00 0 [vsyscall]\n")) {
    EXPECT_TRUE(mapping.staysOut) << mapping.name;
  }
}

TEST(ParseMappings, PassesOverWhatIsWrittenInAnotherWay) {
  EXPECT_TRUE(Parse("").empty());
  EXPECT_TRUE(Parse("\n\n").empty());
  EXPECT_TRUE(Parse("Rss: 4 kB\n").empty());
  EXPECT_TRUE(Parse("2000-1000 rw-p 00000000 00:00 0\n").empty());
  EXPECT_TRUE(Parse("1000-1000 rw-p 00000000 00:00 0\n").empty());
  EXPECT_TRUE(Parse("1000-2000 rw 00000000 00:00 0\n").empty());
  EXPECT_TRUE(Parse("1000-2000 rw-p x 00:00 0\n").empty());
  EXPECT_TRUE(Parse("1000-2000 rw-p 0 00:00\n").empty());
  EXPECT_TRUE(Parse("1000-20000000000000000 rw-p 0 00:00 0\n").empty());
}

struct StatRow {
  const char* name;
  const char* text;
  std::optional<ProcessStat> wanted;
};

class ParseProcessStatRow : public testing::TestWithParam<StatRow> {};

TEST_P(ParseProcessStatRow, IsReadOrRefused) { EXPECT_EQ(ParseProcessStat(GetParam().text), GetParam().wanted); }

const StatRow Stats[] = {
    {"Usual", "17 (cat) S 12 17 9 34816 17\n", ProcessStat{"cat", 'S', 12, 17, 9}},
    {"NameOfBlanksAndBrackets", "17 (a) (b c) R 1 2 3 4\n", ProcessStat{"a) (b c", 'R', 1, 2, 3}},
    {"EmptyName", "17 () T 1 2 3\n", ProcessStat{"", 'T', 1, 2, 3}},
    {"Empty", "", std::nullopt},
    {"NoBrackets", "17 cat S 12 17 9", std::nullopt},
    {"BracketsTheWrongWay", "17 )cat( S 12 17 9", std::nullopt},
    {"LongState", "17 (cat) SS 12 17 9", std::nullopt},
    {"NoSession", "17 (cat) S 12 17", std::nullopt},
    {"NumberTooLarge", "17 (cat) S 4294967296 17 9", std::nullopt},
};

INSTANTIATE_TEST_SUITE_P(Rows, ParseProcessStatRow, testing::ValuesIn(Stats), test::RowName<StatRow>);

}  // namespace
}  // namespace qilsys::diagnostics
