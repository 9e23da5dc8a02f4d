#include "system/MachineMemory.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

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

// ---- Whole trees

struct TreeRow {
  const char* name;
  std::map<std::string, std::string> files;
  MachineMemory result;
};
void PrintTo(const TreeRow& row, std::ostream* out) { *out << row.name; }

class MachineMemoryFromTree : public testing::TestWithParam<TreeRow> {};

TEST_P(MachineMemoryFromTree, IsBoundByTheSmallestLimitUpTheTree) {
  const auto textOf = [](const std::string& path) {
    const auto file = GetParam().files.find(path);
    return file != GetParam().files.end() ? file->second : std::string();
  };
  EXPECT_EQ(qilsys::system::MachineMemoryFrom(textOf), GetParam().result);
}

// 1,000 kB in all, 800 kB of them available.
const std::pair<const std::string, std::string> MemInfo{"/proc/meminfo",
                                                        "MemTotal: 1000 kB\nMemFree: 1 kB\nMemAvailable: 800 kB\n"};
constexpr MachineMemory Unbound{1000 * 1024, 800 * 1024};
const std::pair<const std::string, std::string> InV1{"/proc/self/cgroup", "4:memory:/a/b\n1:cpu:/c\n"};
const std::pair<const std::string, std::string> InV2{"/proc/self/cgroup", "0::/a/b\n"};
const std::pair<const std::string, std::string> MountV1{
    "/proc/self/mountinfo", "35 31 0:32 / /cg/memory rw shared:12 - cgroup cgroup rw,memory\n"};
const std::pair<const std::string, std::string> MountV2{"/proc/self/mountinfo",
                                                        "41 31 0:38 / /cg rw,relatime - cgroup2 cgroup2 rw\n"};

const TreeRow TreeRows[] = {
    {"NoFileAtAll", {}, {0, 0}},
    {"MeminfoAlone", {MemInfo}, Unbound},
    {"NoMeminfo", {InV2, MountV2, {"/cg/a/b/memory.max", "4096\n"}}, {0, 0}},
    {"NoMount", {MemInfo, InV2, {"/cg/a/b/memory.max", "4096\n"}}, Unbound},
    {"NoGroup", {MemInfo, MountV2, {"/cg/a/b/memory.max", "4096\n"}}, Unbound},
    {"NoFilesOfTheGroup", {MemInfo, InV2, MountV2}, Unbound},
    {"V2OwnLimit",
     {MemInfo,
      InV2,
      MountV2,
      {"/cg/a/b/memory.max", "409600\n"},
      {"/cg/a/b/memory.current", "204800\n"},
      {"/cg/a/b/memory.stat", "anon 7\ninactive_file 102400\nfile 9\n"}},
     {409600, 307200}},
    {"V2Max",
     {MemInfo,
      InV2,
      MountV2,
      {"/cg/a/b/memory.max", "max\n"},
      {"/cg/a/b/memory.current", "204800\n"},
      {"/cg/a/memory.max", "max\n"}},
     Unbound},
    {"V2ParentsLimitAboveMax",
     {MemInfo,
      InV2,
      MountV2,
      {"/cg/a/b/memory.max", "max\n"},
      {"/cg/a/memory.max", "409600\n"},
      {"/cg/a/memory.current", "9600\n"}},
     {409600, 400000}},
    {"V2ParentsLimitIsSmaller",
     {MemInfo, InV2, MountV2, {"/cg/a/b/memory.max", "409600\n"}, {"/cg/a/memory.max", "102400\n"}},
     {102400, 102400}},
    {"V2ParentsLimitIsLarger",
     {MemInfo, InV2, MountV2, {"/cg/a/b/memory.max", "102400\n"}, {"/cg/a/memory.max", "409600\n"}},
     {102400, 102400}},
    {"V2LimitAtTheMount", {MemInfo, InV2, MountV2, {"/cg/memory.max", "102400\n"}}, {102400, 102400}},
    {"V2LimitAboveTheMachine",
     {MemInfo, InV2, MountV2, {"/cg/a/b/memory.max", "2048000\n"}, {"/cg/a/b/memory.current", "1948000\n"}},
     {1000 * 1024, 100000}},
    {"V2BrokenLimit", {MemInfo, InV2, MountV2, {"/cg/a/b/memory.max", "4096 kB\n"}}, Unbound},
    {"V2BrokenUsage",
     {MemInfo, InV2, MountV2, {"/cg/a/b/memory.max", "409600\n"}, {"/cg/a/b/memory.current", "-1\n"}},
     {409600, 409600}},
    {"V1OwnLimit",
     {MemInfo,
      InV1,
      MountV1,
      {"/cg/memory/a/b/memory.limit_in_bytes", "409600\n"},
      {"/cg/memory/a/b/memory.usage_in_bytes", "204800\n"},
      {"/cg/memory/a/b/memory.stat", "inactive_file 1\ntotal_inactive_file 102400\n"}},
     {409600, 307200}},
    {"V1NoLimit",
     {MemInfo,
      InV1,
      MountV1,
      {"/cg/memory/a/b/memory.limit_in_bytes", "9223372036854771712\n"},
      {"/cg/memory/a/b/memory.usage_in_bytes", "204800\n"}},
     Unbound},
    {"V1ParentsLimit",
     {MemInfo,
      InV1,
      MountV1,
      {"/cg/memory/a/b/memory.limit_in_bytes", "9223372036854771712\n"},
      {"/cg/memory/a/memory.limit_in_bytes", "102400\n"}},
     {102400, 102400}},
    {"V2FilesInAV1Tree", {MemInfo, InV1, MountV1, {"/cg/memory/a/b/memory.max", "4096\n"}}, Unbound},
    {"BothLayoutsAtOnce",
     {MemInfo,
      {"/proc/self/cgroup", InV1.second + InV2.second},
      {"/proc/self/mountinfo", MountV1.second + MountV2.second},
      {"/cg/memory/a/memory.limit_in_bytes", "409600\n"},
      {"/cg/a/memory.max", "204800\n"}},
     {204800, 204800}},
    {"MountThatShowsAPart",
     {MemInfo,
      {"/proc/self/cgroup", "0::/docker/x/job\n"},
      {"/proc/self/mountinfo", "41 31 0:38 /docker/x /cg rw - cgroup2 cgroup2 rw\n"},
      {"/cg/job/memory.max", "409600\n"},
      {"/cg/memory.max", "204800\n"},
      {"/cg/docker/memory.max", "1\n"}},
     {204800, 204800}},
};
INSTANTIATE_TEST_SUITE_P(Table, MachineMemoryFromTree, testing::ValuesIn(TreeRows), qilsys::test::RowName<TreeRow>);

}  // namespace
