// Files of modules as Linux alone has them: removed while they run, and asked for from the folder that was current.
#ifndef __linux__
#error "This file is for Linux."
#endif

#include <gtest/gtest.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "qilsys/TSystem.h"
#include "support/LoadedModule.h"
#include "support/NoDescriptors.h"
#include "support/SpawnedProcess.h"
#include "support/Utf8.h"
#include "system/ModuleFile_platform.h"

using namespace qilsys::test;
namespace fs = std::filesystem;

namespace {

/// A folder of this test's own, which is the current one at first.
class ModuleFileLinuxTest : public testing::Test {
 protected:
  ModuleFileLinuxTest() {
    fs::remove_all(m_folder);
    fs::create_directory(m_folder);
    fs::current_path(m_folder);
  }
  ~ModuleFileLinuxTest() override {
    fs::current_path(m_before);
    fs::remove_all(m_folder);
  }

  std::string InFolder(const char* name) const { return (m_folder / name).string(); }

  const fs::path m_before = fs::current_path();
  const fs::path m_folder =
      fs::canonical(fs::temp_directory_path()) / ("qilsys_linux_modules_" + std::to_string(getpid()));
};

std::string FileOf(const void* address) { return Utf8(TSystem::ModuleFilename(address).GenericString()); }
std::string FileOf(const LoadedModule& module) { return FileOf(module.AddressOf("PlaceInModule")); }

/// The file that a copy of the small program, started and then removed, says that it is.
std::string FileOfRemoved(const std::string& program) {
  fs::copy_file(QILSYS_MODULES_PROGRAM, program);
  SpawnedProcess process({program, "wait"});
  std::string text = process.Read(std::chrono::seconds(60)).value_or("");
  EXPECT_EQ(text, "ready\n");
  fs::remove(program);
  EXPECT_TRUE(process.Write("\n"));
  text.clear();
  while (const std::optional<std::string> more = process.Read(std::chrono::seconds(60))) text += *more;
  return text.substr(0, text.find('\n'));
}

TEST_F(ModuleFileLinuxTest, OfARemovedProgramIsTheNameThatItHad) {
  EXPECT_EQ(FileOfRemoved(InFolder("program")), InFolder("program"));
}

TEST_F(ModuleFileLinuxTest, OfARemovedProgramMayEndInTheMark) {
  EXPECT_EQ(FileOfRemoved(InFolder("program (deleted)")), InFolder("program (deleted)"));
}

TEST_F(ModuleFileLinuxTest, OfAProgramMayEndInTheMark) {
  const std::string program = InFolder("program (deleted)");
  fs::copy_file(QILSYS_MODULES_PROGRAM, program);
  SpawnedProcess process({program});
  EXPECT_EQ(process.Read(std::chrono::seconds(60)).value_or("").find(program + "\n"), 0u);
}

TEST_F(ModuleFileLinuxTest, IsWholeForALibraryOfTheCurrentFolder) {
  fs::copy_file(QILSYS_PLAIN_MODULE, "near.so");
  const LoadedModule module("./near.so");
  fs::current_path("/");
  EXPECT_EQ(FileOf(module), InFolder("near.so"));
  EXPECT_EQ(Utf8(TSystem::ModulePath(TPathCore(u"near.so")).GenericString()), InFolder("near.so"));
  EXPECT_EQ(Utf8(TSystem::ModuleDirectory(module.AddressOf("PlaceInModule")).GenericString()), m_folder.string());
}

TEST_F(ModuleFileLinuxTest, OfARemovedLibraryIsTheNameThatItHad) {
  fs::copy_file(QILSYS_PLAIN_MODULE, "near.so");
  const LoadedModule near("./near.so");
  fs::remove("near.so");
  EXPECT_EQ(FileOf(near), InFolder("near.so"));
}

TEST_F(ModuleFileLinuxTest, IsNoneOfALibraryOfTheCurrentFolderWhereNoneCanBeOpened) {
  fs::copy_file(QILSYS_PLAIN_MODULE, "near.so");
  const LoadedModule module("./near.so");
  const NoDescriptors none;
  EXPECT_EQ(FileOf(module), "");
}

TEST_F(ModuleFileLinuxTest, IsNoneForTheKernelsOwnModule) {
  const unsigned long kernels = getauxval(AT_SYSINFO_EHDR);
  if (kernels == 0) GTEST_SKIP() << "left out: this kernel has none";
  EXPECT_EQ(FileOf(reinterpret_cast<const void*>(kernels)), "");
}

TEST_F(ModuleFileLinuxTest, IsFoundByTheVeryName) {
  const LoadedModule library("libc.so.6");
  EXPECT_EQ(Utf8(TSystem::ModulePath(TPathCore(u"libc.so.6")).Filename().GenericString()), "libc.so.6");
  EXPECT_TRUE(TSystem::ModulePath(TPathCore(u"libc.so")).IsEmpty());
  EXPECT_TRUE(TSystem::ModulePath(TPathCore(u"LIBC.SO.6")).IsEmpty());
}

}  // namespace
