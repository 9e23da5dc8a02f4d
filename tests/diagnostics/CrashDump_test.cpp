#include "qilsys/CrashDump.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "diagnostics/DumpFolder.h"
#include "support/RowName.h"
#include "support/System.h"

namespace qilsys::test {
namespace {

/// What the system's dumps begin with.
bool LooksWhole(const std::filesystem::path& path) {
  const std::string bytes = BytesOfFile(path);
  return bytes.starts_with("MDMP") || bytes.starts_with(
                                          "\x7F"
                                          "ELF");
}

struct TypeRow {
  const char* name;
  _MINIDUMP_TYPE type;
  int value;
};

class CrashDumpType : public testing::TestWithParam<TypeRow> {};

TEST_P(CrashDumpType, HasTheValueOfItsHomePlatform) { EXPECT_EQ(GetParam().type, GetParam().value); }

constexpr TypeRow Types[] = {
    {"Normal", MiniDumpNormal, 0},
    {"WithDataSegs", MiniDumpWithDataSegs, 1},
    {"WithFullMemory", MiniDumpWithFullMemory, 2},
    {"WithHandleData", MiniDumpWithHandleData, 4},
    {"FilterMemory", MiniDumpFilterMemory, 8},
    {"ScanMemory", MiniDumpScanMemory, 0x10},
    {"WithUnloadedModules", MiniDumpWithUnloadedModules, 0x20},
    {"WithIndirectlyReferencedMemory", MiniDumpWithIndirectlyReferencedMemory, 0x40},
    {"FilterModulePaths", MiniDumpFilterModulePaths, 0x80},
    {"WithProcessThreadData", MiniDumpWithProcessThreadData, 0x100},
    {"WithPrivateReadWriteMemory", MiniDumpWithPrivateReadWriteMemory, 0x200},
    {"WithoutOptionalData", MiniDumpWithoutOptionalData, 0x400},
    {"WithFullMemoryInfo", MiniDumpWithFullMemoryInfo, 0x800},
    {"WithThreadInfo", MiniDumpWithThreadInfo, 0x1000},
    {"WithCodeSegs", MiniDumpWithCodeSegs, 0x2000},
    {"WithoutAuxiliaryState", MiniDumpWithoutAuxiliaryState, 0x4000},
    {"WithFullAuxiliaryState", MiniDumpWithFullAuxiliaryState, 0x8000},
    {"WithPrivateWriteCopyMemory", MiniDumpWithPrivateWriteCopyMemory, 0x10000},
    {"IgnoreInaccessibleMemory", MiniDumpIgnoreInaccessibleMemory, 0x20000},
    {"WithTokenInformation", MiniDumpWithTokenInformation, 0x40000},
    {"WithModuleHeaders", MiniDumpWithModuleHeaders, 0x80000},
    {"FilterTriage", MiniDumpFilterTriage, 0x100000},
    {"WithAvxXStateContext", MiniDumpWithAvxXStateContext, 0x200000},
    {"WithIptTrace", MiniDumpWithIptTrace, 0x400000},
    {"ScanInaccessiblePartialPages", MiniDumpScanInaccessiblePartialPages, 0x800000},
    {"ValidTypeFlags", MiniDumpValidTypeFlags, 0xFFFFFF},
};

INSTANTIATE_TEST_SUITE_P(Values, CrashDumpType, testing::ValuesIn(Types), RowName<TypeRow>);

TEST(CrashDump, OfTheOwnProcess) {
  const DumpFolder folder;
  EXPECT_NE(WriteCrashDump(nullptr, TSystem::ProcessID(), (folder / "own.dmp").u16string().c_str(), MiniDumpNormal), 0);
  EXPECT_TRUE(LooksWhole(folder / "own.dmp"));
}

TEST(CrashDump, OfAnotherProcessByItsHandleAndByItsId) {
  const DumpFolder folder;
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  EXPECT_NE(WriteCrashDump(target.Process().Handle(), target.Process().Pid(),
                           (folder / "handle.dmp").u16string().c_str(), MiniDumpNormal),
            0);
  EXPECT_NE(WriteCrashDump(nullptr, target.Process().Pid(), (folder / "id.dmp").u16string().c_str(), MiniDumpNormal),
            0);
  EXPECT_TRUE(LooksWhole(folder / "handle.dmp"));
  EXPECT_TRUE(LooksWhole(folder / "id.dmp"));
}

TEST(CrashDump, TakesThePathInEitherUnitAndBeyondAscii) {
  const DumpFolder folder;
  const std::filesystem::path path = folder / "" / std::filesystem::path(u8"\u00E4\u6F22\U0001F600.dmp");
  const std::u16string sixteen = (folder / "").u16string() + u"\u00E4\u6F22\U0001F600.dmp";
  const std::wstring wide = (folder / "").wstring() + L"\u00E4\u6F22\U0001F600.dmp";
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  EXPECT_NE(WriteCrashDump(nullptr, target.Process().Pid(), sixteen.c_str(), MiniDumpNormal), 0);
  EXPECT_TRUE(std::filesystem::remove(path));
  EXPECT_NE(WriteCrashDump(nullptr, target.Process().Pid(), wide.c_str(), MiniDumpNormal), 0);
  EXPECT_TRUE(std::filesystem::remove(path));
}

TEST(CrashDump, InAFolderThatIsMissingFails) {
  QILSYS_SKIP_UNDER_WINE("a dump to no file succeeds");
  const DumpFolder folder;
  EXPECT_EQ(WriteCrashDump(nullptr, TSystem::ProcessID(), (folder / "no/own.dmp").u16string().c_str(), MiniDumpNormal),
            0);
  EXPECT_EQ(folder.Names(), std::vector<std::string>());
}

TEST(CrashDump, WithoutAPathFails) {
  QILSYS_SKIP_UNDER_WINE("a dump to no file succeeds");
  EXPECT_EQ(WriteCrashDump(nullptr, TSystem::ProcessID(), static_cast<const char16_t*>(nullptr), MiniDumpNormal), 0);
  EXPECT_EQ(WriteCrashDump(nullptr, TSystem::ProcessID(), static_cast<const wchar_t*>(nullptr), MiniDumpNormal), 0);
}

TEST(CrashDump, ReplacesAFileThatIsLonger) {
  const DumpFolder folder;
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  const std::filesystem::path path = folder / "long.dmp";
  const std::string mark = "what stood there";
  std::ofstream(path, std::ios::binary) << std::string(50'000'000, ' ') << mark;
  EXPECT_NE(WriteCrashDump(nullptr, target.Process().Pid(), path.u16string().c_str(), MiniDumpNormal), 0);
  EXPECT_TRUE(LooksWhole(path));
  EXPECT_FALSE(BytesOfFile(path).ends_with(mark));
}

TEST(CrashDump, OfAProcessThatHasEndedFails) {
  const DumpFolder folder;
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  const unsigned int pid = target.Process().Pid();
  target.Process().Kill();
  target.Process().Wait();
  EXPECT_EQ(WriteCrashDump(nullptr, pid, (folder / "gone.dmp").u16string().c_str(), MiniDumpNormal), 0);
  EXPECT_FALSE(LooksWhole(folder / "gone.dmp"));
}

TEST(CrashDump, TheProcessGoesOnAfterwards) {
  const DumpFolder folder;
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  ASSERT_NE(WriteCrashDump(nullptr, target.Process().Pid(), (folder / "one.dmp").u16string().c_str(), MiniDumpNormal),
            0);
  EXPECT_TRUE(target.Process().Write("\n"));
  EXPECT_EQ(target.Process().Wait(), 0);
}

}  // namespace
}  // namespace qilsys::test
