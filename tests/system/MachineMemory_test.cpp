#include "system/MachineMemory.h"

#include <gtest/gtest.h>

#include <string>

#include "support/RowName.h"

using qilsys::system::CgroupFolders;
using qilsys::system::CgroupMemory;
using qilsys::system::CgroupMount;
using qilsys::system::CgroupVersion;
using qilsys::system::MachineMemory;

namespace {

constexpr std::uint64_t Gibibyte = 1024 * 1024 * 1024;

// ---- The machine

TEST(ParseMemInfo, ReadsTotalAndAvailable) {
  EXPECT_EQ(qilsys::system::ParseMemInfo("MemTotal:       24684084 kB\n"
                                         "MemFree:        24181460 kB\n"
                                         "MemAvailable:   24317864 kB\n"),
            (MachineMemory{24684084ULL * 1024, 24317864ULL * 1024}));
}

TEST(ParseMemInfo, OldKernelsTellOnlyWhatIsFree) {
  EXPECT_EQ(qilsys::system::ParseMemInfo("MemTotal: 100 kB\nMemFree: 40 kB\nBuffers: 5 kB\n"),
            (MachineMemory{100 * 1024, 40 * 1024}));
}

TEST(ParseMemInfo, AvailableIsNeverMoreThanTotal) {
  EXPECT_EQ(qilsys::system::ParseMemInfo("MemTotal: 100 kB\nMemAvailable: 140 kB\n"),
            (MachineMemory{100 * 1024, 100 * 1024}));
}

TEST(ParseMemInfo, NeedsNoLineFeedAtTheEnd) {
  EXPECT_EQ(qilsys::system::ParseMemInfo("MemTotal: 100 kB\nMemAvailable: 40 kB"),
            (MachineMemory{100 * 1024, 40 * 1024}));
}

struct RefusedRow {
  const char* name;
  const char* text;
};
void PrintTo(const RefusedRow& row, std::ostream* out) { *out << row.name; }

class ParseMemInfoRefuses : public testing::TestWithParam<RefusedRow> {};

TEST_P(ParseMemInfoRefuses, ThisText) { EXPECT_EQ(qilsys::system::ParseMemInfo(GetParam().text), std::nullopt); }

INSTANTIATE_TEST_SUITE_P(
    Table, ParseMemInfoRefuses,
    testing::Values(RefusedRow{"Empty", ""}, RefusedRow{"NoTotal", "MemAvailable: 1 kB\n"},
                    RefusedRow{"NoAvailable", "MemTotal: 1 kB\n"},
                    RefusedRow{"OtherUnit", "MemTotal: 1 MB\nMemAvailable: 1 kB\n"},
                    RefusedRow{"NoUnit", "MemTotal: 1\nMemAvailable: 1 kB\n"},
                    RefusedRow{"NoNumber", "MemTotal: kB\nMemAvailable: 1 kB\n"},
                    RefusedRow{"Negative", "MemTotal: -1 kB\nMemAvailable: 1 kB\n"},
                    RefusedRow{"TooLarge", "MemTotal: 18446744073709551615 kB\nMemAvailable: 1 kB\n"},
                    RefusedRow{"BeyondRange", "MemTotal: 99999999999999999999 kB\nMemAvailable: 1 kB\n"},
                    RefusedRow{"OtherKey", "MemTotalX: 1 kB\nMemAvailable: 1 kB\n"}),
    qilsys::test::RowName<RefusedRow>);

// ---- Which group

constexpr std::string_view Hybrid =
    "9:name=systemd:/\n"
    "4:memory:/jobs/a:b\n"
    "2:cpu,cpuacct:/cpu\n"
    "0::/unified\n";

TEST(ParseCgroupPath, FindsTheMemoryControllerOfVersion1) {
  EXPECT_EQ(qilsys::system::ParseCgroupPath(Hybrid, CgroupVersion::V1), "/jobs/a:b");
  EXPECT_EQ(qilsys::system::ParseCgroupPath("4:cpu,memory:/x\n", CgroupVersion::V1), "/x");
  EXPECT_EQ(qilsys::system::ParseCgroupPath("4:memory2,hugememory:/x\n", CgroupVersion::V1), std::nullopt);
}

TEST(ParseCgroupPath, FindsTheOneHierarchyOfVersion2) {
  EXPECT_EQ(qilsys::system::ParseCgroupPath(Hybrid, CgroupVersion::V2), "/unified");
  EXPECT_EQ(qilsys::system::ParseCgroupPath("4:memory:/x\n", CgroupVersion::V2), std::nullopt);
}

TEST(ParseCgroupPath, RefusesTextOfAnotherForm) {
  EXPECT_EQ(qilsys::system::ParseCgroupPath("", CgroupVersion::V2), std::nullopt);
  EXPECT_EQ(qilsys::system::ParseCgroupPath("0::", CgroupVersion::V2), std::nullopt);
  EXPECT_EQ(qilsys::system::ParseCgroupPath("0::relative\n", CgroupVersion::V2), std::nullopt);
  EXPECT_EQ(qilsys::system::ParseCgroupPath("memory", CgroupVersion::V1), std::nullopt);
}

constexpr std::string_view Mounts =
    "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
    "33 31 0:30 / /sys/fs/cgroup/cpuacct rw,relatime - cgroup cgroup rw,cpuacct\n"
    "35 31 0:32 / /sys/fs/cgroup/memory rw,relatime shared:12 - cgroup cgroup rw,memory\n"
    "41 31 0:38 /a\\040b /sys/fs/unified\\134x rw,relatime - cgroup2 cgroup2 rw\n";

TEST(ParseCgroupMount, FindsVersion1ByItsController) {
  EXPECT_EQ(qilsys::system::ParseCgroupMount(Mounts, CgroupVersion::V1), (CgroupMount{"/sys/fs/cgroup/memory", "/"}));
}

TEST(ParseCgroupMount, FindsVersion2ByItsTypeAndUndoesEscapes) {
  EXPECT_EQ(qilsys::system::ParseCgroupMount(Mounts, CgroupVersion::V2), (CgroupMount{"/sys/fs/unified\\x", "/a b"}));
}

TEST(ParseCgroupMount, FindsNothingElsewhere) {
  EXPECT_EQ(qilsys::system::ParseCgroupMount("", CgroupVersion::V1), std::nullopt);
  EXPECT_EQ(qilsys::system::ParseCgroupMount("22 27 0:21 / /proc rw\n", CgroupVersion::V2), std::nullopt);
  EXPECT_EQ(qilsys::system::ParseCgroupMount("1 2 3 / /x rw - cgroup cgroup rw,cpu\n", CgroupVersion::V1),
            std::nullopt);
}

TEST(ParseCgroupMount, KeepsAnEscapeThatIsNone) {
  EXPECT_EQ(qilsys::system::ParseCgroupMount("1 2 3 / /x\\09 rw - cgroup2 cgroup2 rw\n", CgroupVersion::V2),
            (CgroupMount{"/x\\09", "/"}));
}

using Folders = std::vector<std::string>;

TEST(CgroupFoldersTest, WalkUpToTheMount) {
  EXPECT_EQ(CgroupFolders({"/sys", "/"}, "/a/b/c"), (Folders{"/sys/a/b/c", "/sys/a/b", "/sys/a", "/sys"}));
  EXPECT_EQ(CgroupFolders({"/sys", "/"}, "/"), Folders{"/sys"});
}

TEST(CgroupFoldersTest, LeaveOutWhatLiesAboveTheMountsRoot) {
  EXPECT_EQ(CgroupFolders({"/sys", "/docker/x"}, "/docker/x/job"), (Folders{"/sys/job", "/sys"}));
  EXPECT_EQ(CgroupFolders({"/sys", "/docker/x"}, "/docker/x"), Folders{"/sys"});
}

TEST(CgroupFoldersTest, FallBackToTheMountForAGroupThatItDoesNotShow) {
  EXPECT_EQ(CgroupFolders({"/sys", "/docker/x"}, "/docker/xy/job"), Folders{"/sys"});
  EXPECT_EQ(CgroupFolders({"/sys", "/docker/x"}, "/"), Folders{"/sys"});
}

// ---- Its figures

TEST(ParseStatRow, FindsTheWholeKey) {
  EXPECT_EQ(qilsys::system::ParseStatRow("total_inactive_file 1\ninactive_file 22\n", "inactive_file"), 22u);
  EXPECT_EQ(qilsys::system::ParseStatRow("inactive_file_x 1\n", "inactive_file"), std::nullopt);
  EXPECT_EQ(qilsys::system::ParseStatRow("inactive_file\n", "inactive_file"), std::nullopt);
  EXPECT_EQ(qilsys::system::ParseStatRow("", "inactive_file"), std::nullopt);
}

struct BoundRow {
  const char* name;
  CgroupMemory group;
  MachineMemory result;
};
void PrintTo(const BoundRow& row, std::ostream* out) { *out << row.name; }

class BoundByGroup : public testing::TestWithParam<BoundRow> {};

TEST_P(BoundByGroup, Gives) {
  EXPECT_EQ(Bound(MachineMemory{16 * Gibibyte, 10 * Gibibyte}, GetParam().group), GetParam().result);
}

constexpr MachineMemory Machine{16 * Gibibyte, 10 * Gibibyte};

INSTANTIATE_TEST_SUITE_P(
    Table, BoundByGroup,
    testing::Values(BoundRow{"NoLimit", {std::nullopt, 9 * Gibibyte, 0}, Machine},
                    BoundRow{"LimitThatVersion1CallsNone", {9223372036854771712ULL, Gibibyte, 0}, Machine},
                    BoundRow{"Limit", {4 * Gibibyte, Gibibyte, 0}, {4 * Gibibyte, 3 * Gibibyte}},
                    BoundRow{"ReclaimableIsRoom", {4 * Gibibyte, 3 * Gibibyte, Gibibyte}, {4 * Gibibyte, 2 * Gibibyte}},
                    BoundRow{"MoreReclaimableThanUsed", {4 * Gibibyte, 1, 2}, {4 * Gibibyte, 4 * Gibibyte}},
                    BoundRow{"UsedUp", {4 * Gibibyte, 5 * Gibibyte, 0}, {4 * Gibibyte, 0}},
                    BoundRow{"MachineHasLessRoom", {12 * Gibibyte, 0, 0}, {12 * Gibibyte, 10 * Gibibyte}},
                    BoundRow{
                        "RoomIsBoundWhereTheLimitIsNot", {16 * Gibibyte, 15 * Gibibyte, 0}, {16 * Gibibyte, Gibibyte}}),
    qilsys::test::RowName<BoundRow>);

TEST(BoundByGroups, AParentsUsageCountsBesideTheSmallestLimit) {
  const MachineMemory child = Bound(Machine, {4 * Gibibyte, Gibibyte, 0});
  EXPECT_EQ(Bound(child, {8 * Gibibyte, 7 * Gibibyte, 0}), (MachineMemory{4 * Gibibyte, Gibibyte}));
}

}  // namespace
