// The Linux sibling has the same operations.
#include "system/ModuleFile_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

namespace qilsys::system {

namespace {

// The room for a usual name, and the most that a name can be.
constexpr int UsualRoom = 261;
constexpr int MostRoom = 0x8000;

// A name that fills the room has been cut, and would be that of another file. Null stands for the program.
TStringCore FileOf(HMODULE module) {
  TStringCore name;
  for (int room = UsualRoom; room <= 2 * MostRoom; room *= 2) {
    name.resize(room);
    const int length = static_cast<int>(GetModuleFileNameW(module, name.data(), static_cast<DWORD>(room)));
    if (length < room) return name.truncate(length);
  }
  return {};
}

}  // namespace

TStringCore ProgramFile() { return FileOf(nullptr); }

TStringCore ModuleFileAt(const void* address) {
  MEMORY_BASIC_INFORMATION region{};
  if (VirtualQuery(address, &region, sizeof region) == 0 || region.Type != MEM_IMAGE) return {};
  return FileOf(static_cast<HMODULE>(region.AllocationBase));
}

TStringCore ModuleFileNamed(const TStringCore& name) {
  HMODULE module = nullptr;
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, name.constData(), &module)) return {};
  return FileOf(module);
}

}  // namespace qilsys::system
