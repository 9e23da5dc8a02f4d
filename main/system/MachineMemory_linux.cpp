// Reads the texts that MachineMemory.cpp understands. The Windows sibling asks the system in one call.
#include "system/MachineMemory.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include "system/TSystem_platform.h"
#include "system/TextFile_linux.h"

namespace qilsys::system {

MachineMemory ReadMachineMemory() {
  return MachineMemoryFrom([](const std::string& path) { return ReadTextFile(path); });
}

}  // namespace qilsys::system
