// The Linux sibling reads texts for what the system tells here in one call.
#include "system/MachineMemory.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <algorithm>

#include "system/TSystem_platform.h"

namespace qilsys::system {

MachineMemory ReadMachineMemory() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  if (GlobalMemoryStatusEx(&status) == 0) {
    return {};
  }
  return MachineMemory{.total = status.ullTotalPhys,
                       .available = std::min(status.ullAvailPhys, status.ullTotalPhys),
                       .load = status.dwMemoryLoad};
}

}  // namespace qilsys::system
