// The Linux sibling has the same operations.
#include "system/TSystem_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

unsigned int qilsys::CurrentProcessId() { return GetCurrentProcessId(); }

unsigned long long qilsys::CurrentThreadId() { return GetCurrentThreadId(); }

void qilsys::SleepFor(unsigned int milliseconds) { ::Sleep(milliseconds); }

unsigned int qilsys::ActiveCodePage() { return GetACP(); }

std::uint32_t qilsys::PageSize() {
  SYSTEM_INFO info{};
  GetSystemInfo(&info);
  return info.dwPageSize;
}

std::uint64_t qilsys::PerformanceCount() {
  LARGE_INTEGER count{};
  QueryPerformanceCounter(&count);
  return static_cast<std::uint64_t>(count.QuadPart);
}

std::uint64_t qilsys::PerformanceFrequency() {
  LARGE_INTEGER frequency{};
  QueryPerformanceFrequency(&frequency);
  return static_cast<std::uint64_t>(frequency.QuadPart);
}
