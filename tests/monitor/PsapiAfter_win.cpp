#include "monitor/PsapiOrder_win.h"

#include <windows.h>
// After windows.h, whose types it is made of.
#include <psapi.h>

namespace qilsys::test {

ProcessMemoryInfo ReadWithPsapiAfter(void* process) { return GetProcessMemoryInfo(process); }

unsigned long long WorkingSetBySystem(void* process) {
  PROCESS_MEMORY_COUNTERS counters{};
  return GetProcessMemoryInfo(process, &counters, sizeof counters) ? counters.WorkingSetSize : 0;
}

}  // namespace qilsys::test
