// The Linux sibling has the same operations.
#include "system/TSystem_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

namespace qilsys::system {

unsigned int CurrentProcessId() { return GetCurrentProcessId(); }

unsigned long long CurrentThreadId() { return GetCurrentThreadId(); }

void SleepFor(unsigned int milliseconds) { ::Sleep(milliseconds); }

unsigned int ActiveCodePage() { return GetACP(); }

std::uint32_t PageSize() {
  SYSTEM_INFO info{};
  GetSystemInfo(&info);
  return info.dwPageSize;
}

std::uint64_t PerformanceCount() {
  LARGE_INTEGER count{};
  QueryPerformanceCounter(&count);
  return static_cast<std::uint64_t>(count.QuadPart);
}

std::uint64_t PerformanceFrequency() {
  LARGE_INTEGER frequency{};
  QueryPerformanceFrequency(&frequency);
  return static_cast<std::uint64_t>(frequency.QuadPart);
}

}  // namespace qilsys::system
