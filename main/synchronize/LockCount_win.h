/// What the count inside of a critical section says of the threads at its entry.
#pragma once

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

namespace qilsys::synchronize {

/// True if a thread waits. The debugger's documentation gives two layouts of the count. Since Windows Server 2003 SP1
/// it is below zero: bit 0 clear while the section is held, bit 1 clear while a thread has been woken for it, and above
/// them the complement of the number of threads that wait. Before, and in Wine, it is the number of the holder's
/// entries and of the threads that wait, less 1.
constexpr bool HasWaiters(LONG lockCount, LONG entries) {
  return lockCount < 0 ? ~(lockCount >> 2) > 0 : lockCount >= entries;
}

}  // namespace qilsys::synchronize
