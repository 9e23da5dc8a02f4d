#include "diagnostics/CrashDump_win.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace qilsys::diagnostics {
namespace {

const HANDLE GivenProcess = reinterpret_cast<HANDLE>(0x101);
const HANDLE OpenedProcess = reinterpret_cast<HANDLE>(0x202);
const HANDLE DumpFile = reinterpret_cast<HANDLE>(0x303);

/// What the system was asked for.
struct Asked {
  std::wstring path;
  DWORD access = 0;
  DWORD sharing = 0;
  bool hasSecurity = true;
  DWORD disposition = 0;
  DWORD attributes = 0;
  HANDLE like = DumpFile;

  HANDLE process = nullptr;
  DWORD processId = 0;
  HANDLE file = nullptr;
  MINIDUMP_TYPE type = MiniDumpNormal;
  bool hasExtras = true;

  DWORD rights = 0;
  DWORD openedId = 0;
  std::vector<HANDLE> closed;
};
Asked g_asked;

HANDLE WINAPI RecordCreateFile(LPCWSTR path, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security,
                               DWORD disposition, DWORD attributes, HANDLE like) {
  g_asked.path = path;
  g_asked.access = access;
  g_asked.sharing = sharing;
  g_asked.hasSecurity = security != nullptr;
  g_asked.disposition = disposition;
  g_asked.attributes = attributes;
  g_asked.like = like;
  return DumpFile;
}

HANDLE WINAPI FailToCreateFile(LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
  return INVALID_HANDLE_VALUE;
}

// The result is any number but 0 where it succeeds.
BOOL WINAPI RecordDump(HANDLE process, DWORD processId, HANDLE file, MINIDUMP_TYPE type,
                       PMINIDUMP_EXCEPTION_INFORMATION const exception, PMINIDUMP_USER_STREAM_INFORMATION const streams,
                       PMINIDUMP_CALLBACK_INFORMATION const callback) {
  g_asked.process = process;
  g_asked.processId = processId;
  g_asked.file = file;
  g_asked.type = type;
  g_asked.hasExtras = exception != nullptr || streams != nullptr || callback != nullptr;
  return file == INVALID_HANDLE_VALUE ? 0 : 77;
}

BOOL WINAPI ThrowFromDump(HANDLE, DWORD, HANDLE, MINIDUMP_TYPE, PMINIDUMP_EXCEPTION_INFORMATION const,
                          PMINIDUMP_USER_STREAM_INFORMATION const, PMINIDUMP_CALLBACK_INFORMATION const) {
  throw std::runtime_error("out of the dump");
}

HANDLE WINAPI RecordOpenProcess(DWORD rights, BOOL, DWORD processId) {
  g_asked.rights = rights;
  g_asked.openedId = processId;
  return OpenedProcess;
}

BOOL WINAPI RecordClose(HANDLE handle) {
  g_asked.closed.push_back(handle);
  return TRUE;
}

class CrashDumpCalls : public testing::Test {
 protected:
  CrashDumpCalls() { g_asked = Asked(); }

  DumpCalls m_calls{&RecordCreateFile, &RecordDump, &RecordOpenProcess, &RecordClose};
};

TEST_F(CrashDumpCalls, TheFileIsAskedForAnewForWritingAndSharedWithAll) {
  WriteDump(m_calls, GivenProcess, 12, L"C:\\dumps\\one.dmp", MiniDumpNormal);
  EXPECT_EQ(g_asked.path, L"C:\\dumps\\one.dmp");
  EXPECT_EQ(g_asked.access, 0x40000000u);
  EXPECT_EQ(g_asked.sharing, 3u);
  EXPECT_FALSE(g_asked.hasSecurity);
  EXPECT_EQ(g_asked.disposition, 2u);
  EXPECT_EQ(g_asked.attributes, 128u);
  EXPECT_EQ(g_asked.like, nullptr);
}

TEST_F(CrashDumpCalls, TheDumpGetsProcessIdFileAndTypeAndNothingElse) {
  const int result = WriteDump(m_calls, GivenProcess, 12, L"one.dmp", MiniDumpWithFullMemory);
  EXPECT_EQ(result, 77);
  EXPECT_EQ(g_asked.process, GivenProcess);
  EXPECT_EQ(g_asked.processId, 12u);
  EXPECT_EQ(g_asked.file, DumpFile);
  EXPECT_EQ(g_asked.type, MiniDumpWithFullMemory);
  EXPECT_FALSE(g_asked.hasExtras);
  EXPECT_EQ(g_asked.closed, std::vector{DumpFile});
}

TEST_F(CrashDumpCalls, AFileThatIsNotMadeIsHandedOnAndNotClosed) {
  m_calls.createFileW = &FailToCreateFile;
  EXPECT_EQ(WriteDump(m_calls, GivenProcess, 12, L"one.dmp", MiniDumpNormal), 0);
  EXPECT_EQ(g_asked.file, INVALID_HANDLE_VALUE);
  EXPECT_EQ(g_asked.closed, std::vector<HANDLE>());
}

TEST_F(CrashDumpCalls, TheFileIsClosedWhenAnExceptionPasses) {
  m_calls.miniDumpWriteDump = &ThrowFromDump;
  EXPECT_THROW(WriteDump(m_calls, GivenProcess, 12, L"one.dmp", MiniDumpNormal), std::runtime_error);
  EXPECT_EQ(g_asked.closed, std::vector{DumpFile});
}

TEST_F(CrashDumpCalls, WithoutAHandleTheProcessIsOpenedByItsIdAndClosed) {
  EXPECT_EQ(WriteDump(m_calls, nullptr, 12, L"one.dmp", MiniDumpNormal), 77);
  EXPECT_EQ(g_asked.openedId, 12u);
  EXPECT_EQ(g_asked.rights, 0x400u | 0x10u | 0x40u);
  EXPECT_EQ(g_asked.process, OpenedProcess);
  EXPECT_EQ(g_asked.closed, (std::vector{DumpFile, OpenedProcess}));
}

TEST_F(CrashDumpCalls, AProcessThatMayNotBeOpenedLeavesTheFileAlone) {
  m_calls.openProcess = [](DWORD, BOOL, DWORD) -> HANDLE { return nullptr; };
  EXPECT_EQ(WriteDump(m_calls, nullptr, 12, L"one.dmp", MiniDumpNormal), 0);
  EXPECT_EQ(g_asked.path, L"");
}

TEST_F(CrashDumpCalls, WithAHandleNothingIsOpened) {
  WriteDump(m_calls, GivenProcess, 12, L"one.dmp", MiniDumpNormal);
  EXPECT_EQ(g_asked.openedId, 0u);
}

TEST_F(CrashDumpCalls, WithoutTheSystemsLibraryThereIsNoDumpAndNoFile) {
  m_calls.miniDumpWriteDump = nullptr;
  EXPECT_EQ(WriteDump(m_calls, GivenProcess, 12, L"one.dmp", MiniDumpNormal), 0);
  EXPECT_EQ(g_asked.path, L"");
}

}  // namespace
}  // namespace qilsys::diagnostics
