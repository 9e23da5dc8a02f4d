#include "monitor/ProcParse.h"

#include <gtest/gtest.h>

#include <string>

#include "support/RowName.h"

namespace qilsys::monitor {
namespace {

TEST(MemoryOfStatusTest, TakesEachCounterFromItsLine) {
  const auto info = MemoryOfStatus(
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
  EXPECT_FALSE(MemoryOfStatus("Name:\tx\nState:\tZ (zombie)\nThreads:\t1\n"));
}

TEST(MemoryOfStatusTest, NeedsBothPartsOfThePrivateBytes) {
  EXPECT_FALSE(MemoryOfStatus("RssAnon:\t1 kB\n"));
  EXPECT_FALSE(MemoryOfStatus("VmSwap:\t1 kB\n"));
}

TEST(MemoryOfStatusTest, RefusesASumThatPasses64Bits) {
  EXPECT_EQ(PrivateBytesOfStatus("RssAnon:\t18014398509481983 kB\nVmSwap:\t0 kB\n"), 0xFFFFFFFFFFFFFC00U);
  EXPECT_FALSE(PrivateBytesOfStatus("RssAnon:\t18014398509481983 kB\nVmSwap:\t1 kB\n"));
}

TEST(MemoryOfStatusTest, ThePrivateBytesAreWhatTheMonitorReadsAlone) {
  const std::string_view status = "VmRSS:\t  30 kB\nRssAnon:\t  20 kB\nVmSwap:\t  5 kB\n";
  EXPECT_EQ(PrivateBytesOfStatus(status), 25U * 1024);
  EXPECT_FALSE(PrivateBytesOfStatus("Name:\tx\nState:\tZ (zombie)\nThreads:\t1\n"));
}

TEST(MemoryOfStatusTest, ReadsTheOthersAsZeroWhenMissing) {
  const auto info = MemoryOfStatus("RssAnon:\t1 kB\nVmSwap:\t1 kB\nVmRSS:\tmuch kB\n");
  ASSERT_TRUE(info);
  EXPECT_EQ(info->WorkingSetSize, 0U);
}

struct StatRow {
  const char* name;
  std::string_view text;
  std::optional<std::uint32_t> faults;
};

class PageFaultsOfStatTest : public testing::TestWithParam<StatRow> {};

TEST_P(PageFaultsOfStatTest, AddsMinorAndMajor) { EXPECT_EQ(PageFaultsOfStat(GetParam().text), GetParam().faults); }

INSTANTIATE_TEST_SUITE_P(
    Rows, PageFaultsOfStatTest,
    testing::Values(StatRow{"Plain", "12 (cat) S 1 12 12 0 -1 4194304 100 7 3 0 0 0\n", 103},
                    StatRow{"NameWithParentheses", "12 (a) R 9) (b) S 1 12 12 0 -1 4194304 100 7 3 0\n", 103},
                    StatRow{"LowThirtyTwoBits", "12 (cat) S 1 12 12 0 -1 4194304 4294967295 7 3 0\n", 2},
                    StatRow{"Empty", "", std::nullopt}, StatRow{"NoName", "12 cat S 1 12", std::nullopt},
                    StatRow{"CutBeforeMinor", "12 (cat) S 1 12 12 0 -1 4194304", std::nullopt},
                    StatRow{"CutBeforeMajor", "12 (cat) S 1 12 12 0 -1 4194304 100 7", std::nullopt},
                    StatRow{"NoNumber", "12 (cat) S 1 12 12 0 -1 4194304 x 7 3 0", std::nullopt}),
    test::RowName<StatRow>);

}  // namespace
}  // namespace qilsys::monitor
