#include "monitor/ProcParse.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct StatusRow {
  const char* m_name;
  std::string_view m_text;
  std::optional<std::uint64_t> m_bytes;
};

class StatusBytesTest : public testing::TestWithParam<StatusRow> {};

TEST_P(StatusBytesTest, GivesTheBytesOrRefuses) {
  EXPECT_EQ(proc::StatusBytes(GetParam().m_text, "RssAnon"), GetParam().m_bytes);
}

constexpr std::uint64_t s_largestKilobytes = 0xFFFFFFFFFFFFFFFF / 1024;

INSTANTIATE_TEST_SUITE_P(
    Rows, StatusBytesTest,
    testing::Values(StatusRow{"Plain", "Name:\tcat\nRssAnon:\t     132 kB\nVmSwap:\t       0 kB\n", 132 * 1024},
                    StatusRow{"FirstLine", "RssAnon:\t1 kB\n", 1024},
                    StatusRow{"LastLineWithoutLineFeed", "Name:\tcat\nRssAnon:\t2 kB", 2048},
                    StatusRow{"Zero", "RssAnon:\t0 kB\n", 0}, StatusRow{"NoBlanks", "RssAnon:7 kB\n", 7 * 1024},
                    StatusRow{"LargestThatFits", "RssAnon:\t18014398509481983 kB\n", s_largestKilobytes * 1024},
                    StatusRow{"OneTooLarge", "RssAnon:\t18014398509481984 kB\n", std::nullopt},
                    StatusRow{"Beyond64Bits", "RssAnon:\t99999999999999999999999 kB\n", std::nullopt},
                    StatusRow{"Empty", "", std::nullopt}, StatusRow{"Missing", "Name:\tcat\n", std::nullopt},
                    StatusRow{"LongerName", "RssAnonX:\t1 kB\n", std::nullopt},
                    StatusRow{"InsideAnotherLine", "Name:\tRssAnon:\t1 kB\n", std::nullopt},
                    StatusRow{"NameAlone", "RssAnon", std::nullopt}, StatusRow{"NoValue", "RssAnon:\n", std::nullopt},
                    StatusRow{"NoNumber", "RssAnon:\t kB\n", std::nullopt},
                    StatusRow{"NoUnit", "RssAnon:\t12\n", std::nullopt},
                    StatusRow{"OtherUnit", "RssAnon:\t12 MB\n", std::nullopt},
                    StatusRow{"Negative", "RssAnon:\t-12 kB\n", std::nullopt},
                    StatusRow{"Signed", "RssAnon:\t+12 kB\n", std::nullopt},
                    StatusRow{"Hexadecimal", "RssAnon:\t0x12 kB\n", std::nullopt},
                    StatusRow{"TwoNumbers", "RssAnon:\t1 2 kB\n", std::nullopt},
                    StatusRow{"Trailing", "RssAnon:\t1 kB x\n", std::nullopt},
                    StatusRow{"EmbeddedNul", std::string_view("RssAnon:\t1\0 kB\n", 15), std::nullopt}),
    [](const auto& row) { return row.param.m_name; });

TEST(MemoryOfStatusTest, TakesEachCounterFromItsLine) {
  const auto info = proc::MemoryOfStatus(
      "Name:\tx\nVmHWM:\t  40 kB\nVmRSS:\t  30 kB\nRssAnon:\t  20 kB\nRssFile:\t 10 kB\nVmSwap:\t  5 kB\n");
  ASSERT_TRUE(info);
  EXPECT_EQ(info->PrivateUsage, 25U * 1024);
  EXPECT_EQ(info->PagefileUsage, 25U * 1024);
  EXPECT_EQ(info->PeakPagefileUsage, 25U * 1024);
  EXPECT_EQ(info->WorkingSetSize, 30U * 1024);
  EXPECT_EQ(info->PeakWorkingSetSize, 40U * 1024);
  EXPECT_EQ(info->PageFaultCount, 0U);
  EXPECT_EQ(info->QuotaPagedPoolUsage, 0U);
}

TEST(MemoryOfStatusTest, AProcessThatHasEndedHasNone) {
  EXPECT_FALSE(proc::MemoryOfStatus("Name:\tx\nState:\tZ (zombie)\nThreads:\t1\n"));
}

TEST(MemoryOfStatusTest, NeedsBothPartsOfThePrivateBytes) {
  EXPECT_FALSE(proc::MemoryOfStatus("RssAnon:\t1 kB\n"));
  EXPECT_FALSE(proc::MemoryOfStatus("VmSwap:\t1 kB\n"));
}

TEST(MemoryOfStatusTest, ReadsTheOthersAsZeroWhenMissing) {
  const auto info = proc::MemoryOfStatus("RssAnon:\t1 kB\nVmSwap:\t1 kB\nVmRSS:\tmuch kB\n");
  ASSERT_TRUE(info);
  EXPECT_EQ(info->WorkingSetSize, 0U);
}

struct StatRow {
  const char* m_name;
  std::string_view m_text;
  std::optional<std::uint32_t> m_faults;
};

class PageFaultsOfStatTest : public testing::TestWithParam<StatRow> {};

TEST_P(PageFaultsOfStatTest, AddsMinorAndMajor) {
  EXPECT_EQ(proc::PageFaultsOfStat(GetParam().m_text), GetParam().m_faults);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PageFaultsOfStatTest,
    testing::Values(StatRow{"Plain", "12 (cat) S 1 12 12 0 -1 4194304 100 7 3 0 0 0\n", 103},
                    StatRow{"NameWithParentheses", "12 (a) R 9) (b) S 1 12 12 0 -1 4194304 100 7 3 0\n", 103},
                    StatRow{"LowThirtyTwoBits", "12 (cat) S 1 12 12 0 -1 4194304 4294967295 7 3 0\n", 2},
                    StatRow{"Empty", "", std::nullopt}, StatRow{"NoName", "12 cat S 1 12", std::nullopt},
                    StatRow{"CutBeforeMinor", "12 (cat) S 1 12 12 0 -1 4194304", std::nullopt},
                    StatRow{"CutBeforeMajor", "12 (cat) S 1 12 12 0 -1 4194304 100 7", std::nullopt},
                    StatRow{"NoNumber", "12 (cat) S 1 12 12 0 -1 4194304 x 7 3 0", std::nullopt}),
    [](const auto& row) { return row.param.m_name; });

TEST(SingleNumberTest, TakesANumberAndItsLineFeed) {
  EXPECT_EQ(proc::SingleNumber("2400000\n"), 2400000U);
  EXPECT_EQ(proc::SingleNumber("0"), 0U);
  EXPECT_EQ(proc::SingleNumber("18446744073709551615\n"), 0xFFFFFFFFFFFFFFFFU);
}

TEST(SingleNumberTest, RefusesEverythingElse) {
  for (const char* text : {"", "\n", " 1\n", "1 \n", "1\n\n", "-1\n", "<unknown>\n", "18446744073709551616\n"}) {
    EXPECT_FALSE(proc::SingleNumber(text)) << text;
  }
}

}  // namespace
