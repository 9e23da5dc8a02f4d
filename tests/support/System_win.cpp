#include "support/System.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <cstdlib>

namespace qilsys::test {

// The function that Wine's own programs know it by.
bool HasGapsOfWine() {
  static const bool IsWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
  return IsWine && std::getenv("QILSYS_REAL_WINDOWS") == nullptr;
}

// 64 ticks a second, unless a program has asked for more.
std::chrono::milliseconds TickOfWaits() { return std::chrono::milliseconds(16); }

// The exit code of the old runtime, and the fast failure of the newer one.
bool EndedByAbort(int exitStatus) {
  return exitStatus == 3 || static_cast<DWORD>(exitStatus) == STATUS_STACK_BUFFER_OVERRUN;
}

}  // namespace qilsys::test
