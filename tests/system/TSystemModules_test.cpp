// The paths of the program and its modules, for files that the tests put where they want them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qilsys/TPathFilesystem.h"
#include "qilsys/TSystem.h"
#include "support/LoadedModule.h"
#include "support/SpawnedProcess.h"
#include "support/System.h"
#include "support/Utf8.h"

using namespace qilsys::test;
namespace fs = std::filesystem;

namespace {

/// A folder of this test's own, removed with all that it has made there.
class TestFolder : public testing::Test {
 protected:
  TestFolder() { MakeFolder(m_folder); }
  // One after another, the last first: together they go by shorter paths than the system needs for some of them.
  ~TestFolder() override {
    std::error_code ignored;
    for (; !m_made.empty(); m_made.pop_back()) fs::remove(m_made.back(), ignored);
  }

  /// A copy of a file under a name of its own, which is given back.
  fs::path Copy(const char* file, const fs::path& to) {
    fs::copy_file(file, to);
    m_made.push_back(to);
    return to;
  }

  /// A folder whose path GetModuleFileName would not have room for in the usual buffer.
  fs::path MakeLongFolder() {
    fs::path deep = OfAnyLength(m_folder);
    for (const char letter : {'a', 'b', 'c', 'd', 'e', 'f'}) {
      deep /= std::string(60, letter);
      MakeFolder(deep);
    }
    return deep;
  }

  const fs::path m_folder = fs::temp_directory_path() / ("qilsys_modules_" + std::to_string(TSystem::ProcessID()));

 private:
  void MakeFolder(const fs::path& folder) {
    fs::create_directory(folder);
    m_made.push_back(folder);
  }

  std::vector<fs::path> m_made;
};

testing::AssertionResult Is(const TPathCore& path, const fs::path& file) {
  std::error_code error;
  if (!path.IsEmpty() && fs::equivalent(qilsys::ToFilesystemPath(path), file, error))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << path << " is not " << file << ' ' << error.message();
}

const int HereInProgram = 1;

// ---- The program

TEST(TSystemProgram, IsThisFile) {
  const TPathCore program = TSystem::ExecutableFilename();
  EXPECT_TRUE(program.IsAbsolute() || program.HasRootDirectory()) << program;
  EXPECT_EQ(Utf8(program.Stem().GenericString()), "system_tests");
  EXPECT_TRUE(fs::exists(qilsys::ToFilesystemPath(program)));
  EXPECT_EQ(TSystem::ExecutablePath(), program.Parent());
  EXPECT_EQ(TSystem::ModuleFilename(nullptr), program);
  EXPECT_EQ(TSystem::ModuleDirectory(nullptr), program.Parent());
}

TEST(TSystemProgram, HasItsOwnAddresses) {
  EXPECT_EQ(TSystem::ModuleFilename(&HereInProgram), TSystem::ExecutableFilename());
  EXPECT_EQ(TSystem::ModuleDirectory(&HereInProgram), TSystem::ExecutablePath());
}

TEST(TSystemProgram, IsFoundByItsName) {
  const TPathCore program = TSystem::ExecutableFilename();
  EXPECT_EQ(TSystem::ModulePath(program.Filename()), program);
  EXPECT_EQ(TSystem::ModulePath(TPathCore(u"/elsewhere") / program.Filename()), program);
}

/// What a copy of the small program says of itself: its file, then its folder.
std::vector<std::string> WhatItSays(SpawnedProcess& process) {
  std::string text;
  while (const std::optional<std::string> more = process.Read(std::chrono::seconds(60))) text += *more;
  std::erase(text, '\r');
  std::vector<std::string> lines;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    lines.push_back(text.substr(from, end - from));
    from = end + 1;
  }
  return lines;
}

using ProgramElsewhere = TestFolder;

TEST_F(ProgramElsewhere, IsNamedWhole) {
  const fs::path program = Copy(QILSYS_MODULES_PROGRAM, m_folder / "some program.exe");
  SpawnedProcess process({program.string()});
  const std::vector<std::string> lines = WhatItSays(process);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(Is(TPathCore(TStringCore::fromStdString(lines[0])), program));
  EXPECT_TRUE(Is(TPathCore(TStringCore::fromStdString(lines[1])), m_folder));
}

TEST_F(ProgramElsewhere, MayHaveALongName) {
  QILSYS_SKIP_UNDER_WINE("no program is started by a path of extended length");
  const fs::path program = Copy(QILSYS_MODULES_PROGRAM, MakeLongFolder() / "program.exe");
  SpawnedProcess process({program.string()});
  const std::vector<std::string> lines = WhatItSays(process);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_GT(lines[0].size(), 366u);
  EXPECT_TRUE(lines[0].ends_with("/ffffffffffffffffffffffffffffffffffffffffffffffffffffffffffff/program.exe"));
}

// ---- Libraries

using ModuleTest = TestFolder;

TEST_F(ModuleTest, IsFoundByItsAddressesAndItsName) {
  const fs::path file = Copy(QILSYS_PLAIN_MODULE, m_folder / "first_module.dll");
  const LoadedModule module(file);
  const void* const place = module.AddressOf("PlaceInModule");
  ASSERT_NE(place, nullptr);
  EXPECT_TRUE(Is(TSystem::ModuleFilename(place), file));
  EXPECT_TRUE(Is(TSystem::ModuleDirectory(place), m_folder));
  EXPECT_TRUE(Is(TSystem::ModulePath(TPathCore(u"first_module.dll")), file));
  EXPECT_TRUE(Is(TSystem::ModulePath(TPathCore(u"c:/elsewhere/first_module.dll")), file));
}

TEST_F(ModuleTest, IsFoundAsTheSystemNamesIt) {
  constexpr bool IsWindows = fs::path::preferred_separator == '\\';
  const fs::path file = Copy(QILSYS_PLAIN_MODULE, m_folder / "named_module.dll");
  const LoadedModule module(file);
  for (const TPathCore name : {u"NAMED_MODULE.DLL", u"named_module"}) {
    EXPECT_EQ(!TSystem::ModulePath(name).IsEmpty(), IsWindows) << name;
  }
}

TEST_F(ModuleTest, MayHaveALongName) {
  const fs::path file = Copy(QILSYS_PLAIN_MODULE, MakeLongFolder() / "long_module.dll");
  const LoadedModule module(file);
  const TPathCore found = TSystem::ModuleFilename(module.AddressOf("PlaceInModule"));
  EXPECT_GT(found.GenericString().length(), 366);
  EXPECT_EQ(Utf8(found.Filename().GenericString()), "long_module.dll");
  EXPECT_EQ(Utf8(found.Parent().Filename().GenericString()), std::string(60, 'f'));
  EXPECT_EQ(TSystem::ModulePath(TPathCore(u"long_module.dll")), found);
}

TEST_F(ModuleTest, IsNotKeptLoaded) {
  const fs::path file = Copy(QILSYS_PLAIN_MODULE, m_folder / "kept_module.dll");
  {
    const LoadedModule module(file);
    for (int i = 0; i < 3; ++i) {
      EXPECT_FALSE(TSystem::ModulePath(TPathCore(u"kept_module.dll")).IsEmpty());
      EXPECT_FALSE(TSystem::ModuleFilename(module.AddressOf("PlaceInModule")).IsEmpty());
    }
    EXPECT_TRUE(LoadedModule::IsLoaded(file));
  }
  EXPECT_FALSE(LoadedModule::IsLoaded(file));
  EXPECT_TRUE(TSystem::ModulePath(TPathCore(u"kept_module.dll")).IsEmpty());
}

TEST_F(ModuleTest, IsNoneOutsideOfAllModules) {
  const auto heap = std::make_unique<int>(1);
  const int stack = 1;
  for (const void* const place : {static_cast<const void*>(heap.get()), static_cast<const void*>(&stack),
                                  reinterpret_cast<const void*>(std::uintptr_t{1})}) {
    EXPECT_TRUE(TSystem::ModuleFilename(place).IsEmpty());
    EXPECT_TRUE(TSystem::ModuleDirectory(place).IsEmpty());
  }
}

TEST_F(ModuleTest, IsNoneByAnotherName) {
  EXPECT_TRUE(TSystem::ModulePath(TPathCore(u"no_such_module.dll")).IsEmpty());
  EXPECT_TRUE(TSystem::ModulePath(TPathCore()).IsEmpty());
  EXPECT_TRUE(TSystem::ModulePath(TPathCore(u"c:/")).IsEmpty());
}

}  // namespace
