// What dbghelp and its companions are given, and what is made of their answers. The functions here stand in for them.
#include "diagnostics/DebugHelpSymbols_win.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace qilsys::test {
namespace {

using diagnostics::DebugHelp;
using diagnostics::DebugHelpSymbols;
using diagnostics::SymbolSearchPath;

// The calls, in their order, and what they are to answer.
struct Recorded {
  std::vector<std::string> calls;
  DWORD options = 0x1002;
  int failingStarts = 0;
  bool hasSnapshot = true;
  std::vector<std::wstring> modules{L"reader.exe", L"qilsys.dll"};
  std::size_t at = 0;
  bool knowsDirectory = true;
  std::string program = "C:\\programs\\reader.exe";
  bool knowsFolders = true;
  DWORD64 asked = 0;
  DWORD nameCapacity = 0;
  bool knowsAddress = true;
};
Recorded* s_recorded = nullptr;

void Note(const std::string& call) { s_recorded->calls.push_back(call); }

// Never looked into.
const HANDLE Snapshot = reinterpret_cast<HANDLE>(std::intptr_t{0x51A9});

BOOL FillModule(MODULEENTRY32W* module) {
  if (s_recorded->at == s_recorded->modules.size()) return FALSE;
  const std::wstring& name = s_recorded->modules[s_recorded->at++];
  wcscpy(module->szModule, name.c_str());
  wcscpy(module->szExePath, (L"C:\\modules\\" + name).c_str());
  module->modBaseAddr = reinterpret_cast<BYTE*>(0x10000 * s_recorded->at);
  module->modBaseSize = 0x100;
  return TRUE;
}

DWORD Copy(const std::string& text, char* target, DWORD room) {
  if (text.size() >= room) return room;
  std::strcpy(target, text.c_str());
  return static_cast<DWORD>(text.size());
}

BOOL WINAPI Initialize(HANDLE process, PCSTR path, BOOL invade) {
  Note(std::string("initialize ") + path + (process == GetCurrentProcess() ? " self" : " other") +
       (invade ? " invade" : ""));
  return s_recorded->failingStarts-- <= 0;
}

DWORD64 WINAPI LoadModule(HANDLE, HANDLE file, PCSTR image, PCSTR name, DWORD64 base, DWORD size) {
  Note(std::string("load ") + image + " " + name + " " + std::to_string(base) + " " + std::to_string(size) +
       (file ? " of a file" : ""));
  return base;
}

BOOL WINAPI SymbolOf(HANDLE, DWORD64 address, PDWORD64, PIMAGEHLP_SYMBOL64 symbol) {
  s_recorded->asked = address;
  s_recorded->nameCapacity = symbol->MaxNameLength;
  EXPECT_EQ(symbol->SizeOfStruct, sizeof(IMAGEHLP_SYMBOL64));
  if (!s_recorded->knowsAddress) return FALSE;
  std::memcpy(reinterpret_cast<char*>(symbol) + offsetof(IMAGEHLP_SYMBOL64, Name), "Reader::Open", 13);
  return TRUE;
}

BOOL WINAPI LineOf(HANDLE, DWORD64 address, PDWORD, PIMAGEHLP_LINE64 line) {
  static char s_file[] = "C:\\sources\\Reader.cpp";
  s_recorded->asked = address;
  EXPECT_EQ(line->SizeOfStruct, sizeof(IMAGEHLP_LINE64));
  line->FileName = s_file;
  line->LineNumber = 17;
  return s_recorded->knowsAddress;
}

BOOL WINAPI ModuleOf(HANDLE, DWORD64 address, PIMAGEHLP_MODULE64 module) {
  s_recorded->asked = address;
  EXPECT_EQ(module->SizeOfStruct, sizeof(IMAGEHLP_MODULE64));
  std::strcpy(module->ModuleName, "reader");
  return s_recorded->knowsAddress;
}

BOOL WINAPI FolderPath(HWND, LPSTR path, int folder, BOOL create) {
  EXPECT_FALSE(create);
  Copy("F" + std::to_string(folder), path, MAX_PATH);
  return s_recorded->knowsFolders;
}

constexpr DebugHelp Standing{
    .symGetOptions = []() -> DWORD { return s_recorded->options; },
    .symSetOptions = [](DWORD options) -> DWORD { return s_recorded->options = options; },
    .symInitialize = &Initialize,
    .symCleanup = [](HANDLE) -> BOOL { return Note("cleanup"), TRUE; },
    .symLoadModule64 = &LoadModule,
    .symRefreshModuleList = [](HANDLE) -> BOOL { return Note("refresh"), TRUE; },
    .symGetSymFromAddr64 = &SymbolOf,
    .symGetLineFromAddr64 = &LineOf,
    .symGetModuleInfo64 = &ModuleOf,
    .createToolhelp32Snapshot =
        [](DWORD kind, DWORD process) {
          Note("snapshot " + std::to_string(kind) + (process == GetCurrentProcessId() ? " self" : " other"));
          return s_recorded->hasSnapshot ? Snapshot : INVALID_HANDLE_VALUE;
        },
    .module32FirstW = [](HANDLE, LPMODULEENTRY32W module) { return FillModule(module); },
    .module32NextW = [](HANDLE, LPMODULEENTRY32W module) { return FillModule(module); },
    .closeHandle = [](HANDLE handle) -> BOOL {
      EXPECT_EQ(handle, Snapshot);
      return Note("close"), TRUE;
    },
    .getCurrentDirectoryA = [](DWORD room, LPSTR path) -> DWORD {
      EXPECT_EQ(room, 260u);
      return s_recorded->knowsDirectory ? Copy("C:\\here", path, room) : 0;
    },
    .getModuleFileNameA = [](HMODULE module, LPSTR path, DWORD room) -> DWORD {
      EXPECT_EQ(module, nullptr);
      EXPECT_EQ(room, 260u);
      return Copy(s_recorded->program, path, room);
    },
    .shGetSpecialFolderPathA = &FolderPath,
};

constexpr char WholePath[] = ".;C:\\here;C:\\programs;F36;F37;";

class DebugHelpSymbolsTest : public testing::Test {
 protected:
  DebugHelpSymbolsTest() { s_recorded = &m_recorded; }

  Recorded m_recorded;
};

TEST_F(DebugHelpSymbolsTest, TheSearchPathHasItsFiveFolders) { EXPECT_EQ(SymbolSearchPath(Standing), WholePath); }

TEST_F(DebugHelpSymbolsTest, WhatTheSystemDoesNotTellIsLeftOutOfTheSearchPath) {
  m_recorded.knowsDirectory = false;
  EXPECT_EQ(SymbolSearchPath(Standing), ".;C:\\programs;F36;F37;");
  m_recorded.program = std::string(260, 'p') + "\\x.exe";
  EXPECT_EQ(SymbolSearchPath(Standing), ".;F36;F37;");
  m_recorded.program = "reader.exe";
  EXPECT_EQ(SymbolSearchPath(Standing), ".;F36;F37;");
  m_recorded.knowsFolders = false;
  EXPECT_EQ(SymbolSearchPath(Standing), ".;");
}

TEST_F(DebugHelpSymbolsTest, TheProgramIsCutAtItsLastSeparatorOfEitherKind) {
  m_recorded.program = "C:/programs\\of/reader.exe";
  EXPECT_EQ(SymbolSearchPath(Standing), ".;C:\\here;C:/programs\\of;F36;F37;");
}

TEST_F(DebugHelpSymbolsTest, StartsInTheOrderLaidDown) {
  const DebugHelpSymbols symbols(Standing);
  EXPECT_TRUE(symbols.AreModulesLoaded());
  EXPECT_THAT(m_recorded.calls,
              testing::ElementsAre(std::string("initialize ") + WholePath + " self invade", "snapshot 8 self",
                                   "load C:\\modules\\reader.exe reader.exe 65536 256",
                                   "load C:\\modules\\qilsys.dll qilsys.dll 131072 256", "close", "refresh"));
}

TEST_F(DebugHelpSymbolsTest, AddsItsOptionsToThoseThatThereAre) {
  const DebugHelpSymbols symbols(Standing);
  EXPECT_EQ(m_recorded.options, 0x1002u | 0x80214u);
}

TEST_F(DebugHelpSymbolsTest, AStartThatFailsIsTriedOnceMore) {
  m_recorded.failingStarts = 2;
  m_recorded.hasSnapshot = false;
  const DebugHelpSymbols symbols(Standing);
  const std::string start = std::string("initialize ") + WholePath + " self invade";
  EXPECT_THAT(m_recorded.calls, testing::ElementsAre(start, "cleanup", start, "snapshot 8 self", "refresh"));
}

TEST_F(DebugHelpSymbolsTest, WithoutASnapshotOrItsFirstModuleNoneAreLoaded) {
  m_recorded.hasSnapshot = false;
  EXPECT_FALSE(DebugHelpSymbols(Standing).AreModulesLoaded());
  m_recorded.hasSnapshot = true;
  m_recorded.modules.clear();
  EXPECT_FALSE(DebugHelpSymbols(Standing).AreModulesLoaded());
}

TEST_F(DebugHelpSymbolsTest, EndsByACleanup) {
  { const DebugHelpSymbols symbols(Standing); }
  EXPECT_EQ(m_recorded.calls.back(), "cleanup");
}

TEST_F(DebugHelpSymbolsTest, AFrameIsMadeOfTheAnswers) {
  DebugHelpSymbols symbols(Standing);
  StackFrameInfo frame;
  symbols.FindNames(0x1234, frame);
  EXPECT_EQ(m_recorded.asked, 0x1234u);
  EXPECT_EQ(m_recorded.nameCapacity, 2048u);
  EXPECT_EQ(frame.m_symbolName, "Reader::Open");
  EXPECT_EQ(frame.m_moduleName, "reader");
  EXPECT_EQ(frame.m_fileName, "");
  symbols.FindLine(0x1235, frame);
  EXPECT_EQ(m_recorded.asked, 0x1235u);
  EXPECT_EQ(frame.m_fileName, "C:\\sources\\Reader.cpp");
  EXPECT_EQ(frame.m_lineNumber, 17u);
}

TEST_F(DebugHelpSymbolsTest, WhatIsNotKnownStaysEmpty) {
  m_recorded.knowsAddress = false;
  DebugHelpSymbols symbols(Standing);
  StackFrameInfo frame;
  symbols.FindNames(0x1234, frame);
  symbols.FindLine(0x1234, frame);
  EXPECT_EQ(frame.m_symbolName + frame.m_moduleName + frame.m_fileName, "");
  EXPECT_EQ(frame.m_lineNumber, 0u);
}

}  // namespace
}  // namespace qilsys::test
