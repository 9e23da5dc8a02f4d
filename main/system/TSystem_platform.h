/// What each system must give for TSystem.
#pragma once

#include <cstdint>

#include "system/MachineMemory.h"

namespace qilsys {

unsigned int CurrentProcessId();
unsigned long long CurrentThreadId();

/// The Windows code page that the process's 8-bit text is in.
unsigned int ActiveCodePage();

/// Never more than what this process may use, where something bounds it. `m_available` is at most `m_total`.
MachineMemory ReadMachineMemory();
/// Bytes.
std::uint32_t PageSize();

/// The calling thread's last error number.
int LastErrorNumber();

}  // namespace qilsys
