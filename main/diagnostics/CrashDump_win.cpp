// A minidump, by the system's own library for them. The sibling for Linux is CrashDump_linux.cpp.
#include "diagnostics/CrashDump_win.h"

#include <mutex>

namespace qilsys::diagnostics {

namespace {

/// Closed on every way out, also when an exception passes.
class OpenHandle {
 public:
  OpenHandle(const DumpCalls& calls, HANDLE handle) : m_calls(calls), m_handle(handle) {}
  ~OpenHandle() {
    // What some calls give where they fail, and others.
    if (m_handle != nullptr && m_handle != INVALID_HANDLE_VALUE) m_calls.closeHandle(m_handle);
  }
  OpenHandle(const OpenHandle&) = delete;
  OpenHandle& operator=(const OpenHandle&) = delete;

  HANDLE Get() const { return m_handle; }

 private:
  const DumpCalls& m_calls;
  const HANDLE m_handle;
};

/// With the rights that the system's documentation asks for, or null.
HANDLE OpenById(const DumpCalls& calls, DWORD processId) {
  return calls.openProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ | PROCESS_DUP_HANDLE, FALSE, processId);
}

// Loaded by the first dump, not linked: it is large, and most hosts never need it.
DumpCalls LoadCalls() {
  DumpCalls calls;
  if (const HMODULE library = LoadLibraryExW(L"dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS)) {
    calls.miniDumpWriteDump = reinterpret_cast<decltype(calls.miniDumpWriteDump)>(
        reinterpret_cast<void*>(GetProcAddress(library, "MiniDumpWriteDump")));
  }
  return calls;
}

}  // namespace

int WriteDump(const DumpCalls& calls, HANDLE process, DWORD processId, const wchar_t* path, MINIDUMP_TYPE type) {
  if (calls.miniDumpWriteDump == nullptr) return 0;
  const OpenHandle opened(calls, process == nullptr ? OpenById(calls, processId) : nullptr);
  const HANDLE dumped = process == nullptr ? opened.Get() : process;
  // Before the file is opened anew, which takes away what stood there.
  if (dumped == nullptr) return 0;
  // Not looked at: without a file the dump fails by itself.
  const OpenHandle file(calls, calls.createFileW(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                 CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  return calls.miniDumpWriteDump(dumped, processId, file.Get(), type, nullptr, nullptr, nullptr);
}

int WriteForeignCrashDump(void* process, unsigned long processId, const TForeignUnit* path, _MINIDUMP_TYPE type) {
  static_assert(sizeof(TForeignUnit) == sizeof(TCodeUnit));
  return WriteCrashDump(process, processId, reinterpret_cast<const TCodeUnit*>(path), type);
}

}  // namespace qilsys::diagnostics

int WriteCrashDump(void* process, unsigned long processId, const TCodeUnit* path, _MINIDUMP_TYPE type) {
  using namespace qilsys::diagnostics;
  // That library serves one thread at a time.
  static std::mutex s_oneAtATime;
  const std::lock_guard lock(s_oneAtATime);
  static const DumpCalls Calls = LoadCalls();
  return WriteDump(Calls, process, processId, path, type);
}
