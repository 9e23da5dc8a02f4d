// A filter for exceptions that nobody handles, and a helper that waits for them from the start: a process that crashes could
// not start another without taking memory and locks. The sibling for Linux is CrashHandler_linux.cpp.
#include "crash_handler/CrashHandler.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <qilsys/CrashDump.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>

#include "crash_handler/StackLines_win.h"

namespace crash_handler {

namespace {

constexpr char HelperWord[] = "--crashed";
// What the filter needs on a stack that has run out.
constexpr ULONG StackForFilter = 65536;

/// What the helper reads in this process's memory.
struct CrashRecord {
  DWORD thread = 0;
  /// Null where no exception has brought the end.
  const CONTEXT* context = nullptr;
};
CrashRecord g_record;

HANDLE g_crashed = nullptr;
HANDLE g_helped = nullptr;
HANDLE g_helper = nullptr;
std::atomic_flag g_hasCrashed = ATOMIC_FLAG_INIT;

LONG WINAPI HandleCrash(EXCEPTION_POINTERS* exception) {
  // A second thread that crashes waits for the end that the first one brings.
  while (g_hasCrashed.test_and_set()) ::Sleep(INFINITE);
  g_record = {GetCurrentThreadId(), exception ? exception->ContextRecord : nullptr};
  SetEvent(g_crashed);
  const std::array either{g_helped, g_helper};
  WaitForMultipleObjects(static_cast<DWORD>(either.size()), either.data(), FALSE, INFINITE);
  // The process ends by its exception, without a dialogue.
  return EXCEPTION_EXECUTE_HANDLER;
}

std::string Word(const void* pointer) { return std::to_string(reinterpret_cast<std::uintptr_t>(pointer)) + " "; }

HANDLE HandleOf(const std::string& word) { return reinterpret_cast<HANDLE>(std::stoull(word)); }

/// A handle of this process that the helper inherits.
HANDLE OwnProcess() {
  HANDLE own = nullptr;
  DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), GetCurrentProcess(), &own, 0, TRUE, DUPLICATE_SAME_ACCESS);
  return own;
}

bool StartHelper(const std::string& folder) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  g_crashed = CreateEventW(&inherited, TRUE, FALSE, nullptr);
  g_helped = CreateEventW(&inherited, TRUE, FALSE, nullptr);
  std::array<char, MAX_PATH> program{};
  GetModuleFileNameA(nullptr, program.data(), MAX_PATH);
  std::string line = "\"" + std::string(program.data()) + "\" " + HelperWord + " " + Word(OwnProcess()) +
                     std::to_string(GetCurrentProcessId()) + " " + Word(g_crashed) + Word(g_helped) + Word(&g_record) +
                     "\"" + folder + "\"";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION helper{};
  if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &helper))
    return false;
  CloseHandle(helper.hThread);
  g_helper = helper.hProcess;
  return true;
}

/// Reads a record of the crashed process.
template <class T>
bool Read(HANDLE process, const void* address, T& record) {
  return ReadProcessMemory(process, address, &record, sizeof record, nullptr) != FALSE;
}

int Help(HANDLE process, DWORD processId, const void* address, const std::filesystem::path& folder) {
  const std::filesystem::path stem = folder / ("crash-" + std::to_string(processId));
  const std::wstring dump = stem.wstring() + L".dmp";
  const bool isDumped = WriteCrashDump(process, processId, dump.c_str(), MiniDumpNormal) != 0;
  CrashRecord record;
  CONTEXT context{};
  const bool hasContext = Read(process, address, record) && record.context && Read(process, record.context, context);
  std::ofstream file(std::filesystem::path(stem) += ".txt");
  for (const std::string& line : StackLinesOf(process, processId, record.thread, hasContext ? &context : nullptr)) {
    file << line << '\n';
  }
  return isDumped && file.flush() ? 0 : 1;
}

}  // namespace

bool Install(const std::string& folder) {
  ULONG stack = StackForFilter;
  SetThreadStackGuarantee(&stack);
  SetUnhandledExceptionFilter(HandleCrash);
  // No exception of the system: the C library ends the process itself.
  std::signal(SIGABRT, [](int) { HandleCrash(nullptr); });
  return StartHelper(folder);
}

// --crashed PROCESS ID CRASHED HELPED RECORD FOLDER
std::optional<int> RunAsHelper(const std::vector<std::string>& words) {
  if (words.size() != 7 || words[0] != HelperWord) return std::nullopt;
  const std::array either{HandleOf(words[3]), HandleOf(words[1])};
  // The process may well end without a crash.
  const DWORD ended = WaitForMultipleObjects(static_cast<DWORD>(either.size()), either.data(), FALSE, INFINITE);
  if (ended != WAIT_OBJECT_0) return 0;
  const int code = Help(HandleOf(words[1]), static_cast<DWORD>(std::stoul(words[2])), HandleOf(words[5]), words[6]);
  SetEvent(HandleOf(words[4]));
  return code;
}

}  // namespace crash_handler
