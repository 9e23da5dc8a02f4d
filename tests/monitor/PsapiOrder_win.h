/// Calls of GetProcessMemoryInfo from sources that include psapi.h, which has a macro of that name.
#pragma once

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include "qilsys/MonitoredProcess.h"

namespace qilsys::test {

ProcessMemoryInfo ReadWithPsapiBefore(void* process);
ProcessMemoryInfo ReadWithPsapiAfter(void* process);

/// The system's own function, called by its name in a source that includes both headers.
unsigned long long WorkingSetBySystem(void* process);

}  // namespace qilsys::test
