/// What each system must give for TSystem.
#pragma once

#include <cstdint>

#include "system/MachineMemory.h"

namespace qilsys::system {

unsigned int CurrentProcessId();
unsigned long long CurrentThreadId();

/// Lets the calling thread rest.
void SleepFor(unsigned int milliseconds);

/// The Windows code page that the process's 8-bit text is in.
unsigned int ActiveCodePage();

/// Never more than what this process may use, where something bounds it. `available` is at most `total`.
MachineMemory ReadMachineMemory();
/// Bytes.
std::uint32_t PageSize();

/// A counter that only moves forward, and by how much in a second. The latter stays the same.
std::uint64_t PerformanceCount();
std::uint64_t PerformanceFrequency();

}  // namespace qilsys::system
