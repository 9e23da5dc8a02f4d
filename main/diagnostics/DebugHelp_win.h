/// The functions of the system that symbols, lines and modules come from, as a table: a test puts its own there.
#pragma once

#ifndef _WIN32
#error "This file is for Windows."
#endif

// Before the headers that stand on it.
#include <windows.h>

#include <dbghelp.h>
#include <shlobj.h>
#include <tlhelp32.h>

namespace qilsys::diagnostics {

/// Each under its own name, with a small letter, and with its own type.
struct DebugHelp {
  decltype(&::SymGetOptions) symGetOptions;
  decltype(&::SymSetOptions) symSetOptions;
  decltype(&::SymInitialize) symInitialize;
  decltype(&::SymCleanup) symCleanup;
  decltype(&::SymLoadModule64) symLoadModule64;
  decltype(&::SymRefreshModuleList) symRefreshModuleList;
  decltype(&::SymGetSymFromAddr64) symGetSymFromAddr64;
  decltype(&::SymGetLineFromAddr64) symGetLineFromAddr64;
  decltype(&::SymGetModuleInfo64) symGetModuleInfo64;
  decltype(&::CreateToolhelp32Snapshot) createToolhelp32Snapshot;
  decltype(&::Module32FirstW) module32FirstW;
  decltype(&::Module32NextW) module32NextW;
  decltype(&::CloseHandle) closeHandle;
  decltype(&::GetCurrentDirectoryA) getCurrentDirectoryA;
  decltype(&::GetModuleFileNameA) getModuleFileNameA;
  decltype(&::SHGetSpecialFolderPathA) shGetSpecialFolderPathA;
};

/// Null where dbghelp.dll or shell32.dll lacks one. Both are loaded by the first call, not linked: they are large, and only
/// those who walk need them.
const DebugHelp* TheDebugHelp() noexcept;

}  // namespace qilsys::diagnostics
