// The Linux sibling reads texts for what the system tells here in one call.
#include "system/MachineMemory.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <algorithm>

#include "system/TSystem_platform.h"

qilsys::MachineMemory qilsys::ReadMachineMemory() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  if (GlobalMemoryStatusEx(&status) == 0) {
    return {};
  }
  return MachineMemory{.m_total = status.ullTotalPhys,
                       .m_available = std::min(status.ullAvailPhys, status.ullTotalPhys),
                       .m_load = status.dwMemoryLoad};
}
