// Loads the libraries and finds the functions.
#include "diagnostics/DebugHelp_win.h"

#include <optional>

namespace qilsys::diagnostics {

namespace {

// Sets a function to the one of its name; false if there is none.
template <class Function>
bool Find(HMODULE library, const char* name, Function& function) {
  function = library ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name))) : nullptr;
  return function != nullptr;
}

// From the folder of the program, which may bring a newer one, or the system's.
HMODULE Load(const wchar_t* name) { return LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS); }

bool FindSymbols(HMODULE library, DebugHelp& help) {
  return Find(library, "SymGetOptions", help.symGetOptions) && Find(library, "SymSetOptions", help.symSetOptions) &&
         Find(library, "SymInitialize", help.symInitialize) && Find(library, "SymCleanup", help.symCleanup) &&
         Find(library, "SymLoadModule64", help.symLoadModule64) &&
         Find(library, "SymRefreshModuleList", help.symRefreshModuleList) &&
         Find(library, "SymGetSymFromAddr64", help.symGetSymFromAddr64) &&
         Find(library, "SymGetLineFromAddr64", help.symGetLineFromAddr64) &&
         Find(library, "SymGetModuleInfo64", help.symGetModuleInfo64);
}

std::optional<DebugHelp> LoadDebugHelp() noexcept {
  DebugHelp help;
  help.createToolhelp32Snapshot = &CreateToolhelp32Snapshot;
  help.module32FirstW = &Module32FirstW;
  help.module32NextW = &Module32NextW;
  help.closeHandle = &CloseHandle;
  help.getCurrentDirectoryA = &GetCurrentDirectoryA;
  help.getModuleFileNameA = &GetModuleFileNameA;
  const bool isFound = FindSymbols(Load(L"dbghelp.dll"), help) &&
                       Find(Load(L"shell32.dll"), "SHGetSpecialFolderPathA", help.shGetSpecialFolderPathA);
  return isFound ? std::optional(help) : std::nullopt;
}

}  // namespace

const DebugHelp* TheDebugHelp() noexcept {
  static const std::optional<DebugHelp> Help = LoadDebugHelp();
  return Help ? &*Help : nullptr;
}

}  // namespace qilsys::diagnostics
