#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>
// After windows.h, whose types it is made of, and before the library's header.
#include <psapi.h>

#include "monitor/PsapiOrder_win.h"

namespace qilsys::test {

ProcessMemoryInfo ReadWithPsapiBefore(void* process) { return GetProcessMemoryInfo(process); }

}  // namespace qilsys::test
