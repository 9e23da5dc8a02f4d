#include "diagnostics/StackLine.h"

#include <gtest/gtest.h>

#include "support/RowName.h"

namespace qilsys::test {
namespace {

using diagnostics::IsHidden;
using diagnostics::LineParts;
using diagnostics::ShortModuleName;
using diagnostics::StackLine;

constexpr LineParts Everything{true, true, true, true};
constexpr LineParts Nothing{false, false, false, false};
constexpr std::uint64_t Thread = 0xBEEF;

const StackFrameInfo Known{0x7FFE1234ABCD, "Reader::Open(char const*)", "/src/Reader.cpp", "reader", 17};
const StackFrameInfo WithoutFile{0x7FFE1234ABCD, "Reader::Open(char const*)", "", "reader", 0};
const StackFrameInfo Unknown{0xFFFFFFFFFFFFFFFF, "", "", "", 0};

struct LineRow {
  const char* name;
  StackFrameInfo frame;
  LineParts parts;
  const char* line;
};

class StackLineTest : public testing::TestWithParam<LineRow> {};

TEST_P(StackLineTest, Reads) { EXPECT_EQ(StackLine(GetParam().frame, GetParam().parts, Thread), GetParam().line); }

const LineRow Lines[] = {
    {"AllKnown", Known, Everything, "0x000000000000BEEF /src/Reader.cpp(17): reader!Reader::Open(char const*)"},
    {"NoThread", Known, {false, true, true, true}, " /src/Reader.cpp(17): reader!Reader::Open(char const*)"},
    {"NoAddressesIsAsBeforeWithAFile",
     Known,
     {true, false, true, true},
     "0x000000000000BEEF /src/Reader.cpp(17): reader!Reader::Open(char const*)"},
    {"NoFileName", Known, {true, true, false, true}, "0x000000000000BEEF(17): reader!Reader::Open(char const*)"},
    {"NoLineNumberLeavesNothingBetween",
     Known,
     {true, true, true, false},
     "0x000000000000BEEF /src/Reader.cppreader!Reader::Open(char const*)"},
    {"NeitherNameNorNumber", Known, {true, true, false, false}, "0x000000000000BEEFreader!Reader::Open(char const*)"},
    {"NothingAskedFor", Known, Nothing, "reader!Reader::Open(char const*)"},
    {"WithoutFile", WithoutFile, Everything, "0x000000000000BEEF 0x00007FFE1234ABCD reader!Reader::Open(char const*)"},
    {"WithoutFileAndAddress",
     WithoutFile,
     {true, false, true, true},
     "0x000000000000BEEFreader!Reader::Open(char const*)"},
    {"WithoutFileAddressAlone",
     WithoutFile,
     {false, true, false, false},
     " 0x00007FFE1234ABCD reader!Reader::Open(char const*)"},
    {"WithoutFileNothingAskedFor", WithoutFile, Nothing, "reader!Reader::Open(char const*)"},
    {"NothingKnown", Unknown, Everything,
     "0x000000000000BEEF 0xFFFFFFFFFFFFFFFF (module name not available)!(symbol not available)"},
    {"NothingKnownNothingAskedFor", Unknown, Nothing, "(module name not available)!(symbol not available)"},
    {"SymbolAlone", {1, "main", "", "", 0}, Nothing, "(module name not available)!main"},
    {"ModuleAlone", {1, "", "", "reader", 0}, Nothing, "reader!(symbol not available)"},
    {"LargestNumber", {1, "f", "a.c", "m", 4294967295}, {false, false, false, true}, "(4294967295): m!f"},
    {"FileWithoutNumber", {1, "f", "a.c", "m", 0}, {false, false, true, true}, " a.c(0): m!f"},
};

INSTANTIATE_TEST_SUITE_P(Lines, StackLineTest, testing::ValuesIn(Lines), RowName<LineRow>);

struct FileRow {
  const char* name;
  const char* file;
  bool isHidden;
};

class HiddenFileTest : public testing::TestWithParam<FileRow> {};

TEST_P(HiddenFileTest, IsKnownByItsEnd) {
  StackFrameInfo frame = Known;
  frame.m_fileName = GetParam().file;
  EXPECT_EQ(IsHidden(frame), GetParam().isHidden);
}

constexpr FileRow Files[] = {
    {"Walker", "main/diagnostics/TStackWalker.cpp", true},
    {"WalkerOfAnotherName", "C:\\x\\stackwalker.cpp", true},
    {"NameAlone", "stackwalker.cpp", true},
    {"MemoryInCapitals", "D:\\SRC\\TMEMORY.CPP", true},
    {"MemoryInMixedLetters", "/src/tMemory.Cpp", true},
    {"MemoryTracking", "/src/MemoryTrackingCommunication.cpp", true},
    {"Engine", "../main/diagnostics/SymbolEngine.cpp", true},
    {"CaptureOnLinux", "../main/diagnostics/SymbolEngine_linux.cpp", true},
    {"CaptureOnWindows", "..\\main\\diagnostics\\SymbolEngine_win.cpp", true},
    {"MemoryOnLinux", "/src/TMemory_linux.cpp", true},
    {"MemoryOnWindows", "/src/TMemory_win.cpp", true},
    {"Operators", "/src/memory/OperatorNew.cpp", true},
    {"Unknown", "", false},
    {"Host", "/src/Reader.cpp", false},
    {"Header", "/src/TMemory.h", false},
    {"NameInTheMiddle", "/src/TMemory.cpp.orig", false},
    {"FolderOfThatName", "/src/tmemory.cpp/Reader.cpp", false},
    {"ShorterThanEach", "y.cpp", false},
    {"TestOfTheWalker", "/src/TStackWalker_test.cpp", false},
};

INSTANTIATE_TEST_SUITE_P(Files, HiddenFileTest, testing::ValuesIn(Files), RowName<FileRow>);

struct ModuleRow {
  const char* name;
  const char* path;
  const char* shortName;
};

class ShortModuleNameTest : public testing::TestWithParam<ModuleRow> {};

TEST_P(ShortModuleNameTest, LeavesOutFolderAndEnding) {
  EXPECT_EQ(ShortModuleName(GetParam().path), GetParam().shortName);
}

constexpr ModuleRow Modules[] = {
    {"Program", "/usr/bin/reader", "reader"},
    {"SharedObject", "/usr/lib/libreader.so", "libreader"},
    {"SharedObjectWithVersion", "/usr/lib/libreader.so.1.0.2", "libreader"},
    {"Loader", "/lib64/ld-linux-x86-64.so.2", "ld-linux-x86-64"},
    {"EndingInsideAName", "/usr/lib/my.solver.so.3", "my.solver"},
    {"NoEndingButTheLettersOfOne", "/usr/bin/a.sofa", "a.sofa"},
    {"Library", "C:\\Program Files\\qilsys.dll", "qilsys"},
    {"LibraryInCapitals", "C:\\WINDOWS\\KERNEL32.DLL", "KERNEL32"},
    {"WindowsProgram", "reader.exe", "reader"},
    {"DotsInTheName", "C:/x/reader.2.0.exe", "reader.2.0"},
    {"PartOfTheKernel", "[vdso]", "[vdso]"},
    {"FolderAlone", "/usr/lib/", ""},
    {"Empty", "", ""},
    {"EndingAlone", "/x/.so", ""},
};

INSTANTIATE_TEST_SUITE_P(Modules, ShortModuleNameTest, testing::ValuesIn(Modules), RowName<ModuleRow>);

}  // namespace
}  // namespace qilsys::test
