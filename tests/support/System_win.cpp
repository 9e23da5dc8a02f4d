#include "support/System.h"

#include <windows.h>

#include <cstdlib>

namespace qilsys::test {

// The function that Wine's own programs know it by.
bool HasGapsOfWine() {
  static const bool s_isWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
  return s_isWine && std::getenv("QILSYS_REAL_WINDOWS") == nullptr;
}

}  // namespace qilsys::test
