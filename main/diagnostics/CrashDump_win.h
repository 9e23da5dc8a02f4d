/// The calls of the system by which a dump is written, as a table: a test puts its own there.
#pragma once

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include "qilsys/CrashDump.h"

namespace qilsys::diagnostics {

/// Each under its own name, with a small letter, and with its own type.
struct DumpCalls {
  decltype(&::CreateFileW) createFileW = &::CreateFileW;
  decltype(&::MiniDumpWriteDump) miniDumpWriteDump = nullptr;
  decltype(&::OpenProcess) openProcess = &::OpenProcess;
  decltype(&::CloseHandle) closeHandle = &::CloseHandle;
};

/// The dump of a process by its handle or, where that is null, by its id.
int WriteDump(const DumpCalls& calls, HANDLE process, DWORD processId, const wchar_t* path, MINIDUMP_TYPE type);

}  // namespace qilsys::diagnostics
