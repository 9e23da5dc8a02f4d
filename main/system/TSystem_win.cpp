// The Linux sibling has the same operations.
#include "system/TSystem_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <array>

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

int qilsys::LastErrorNumber() { return static_cast<int>(GetLastError()); }

// Asked for in units, since the process's code page may lack letters of the system's language. The texts end in a line
// break and blanks, which say nothing.
TStringCore qilsys::ErrorText(int number) {
  std::array<wchar_t, 1024> text;
  constexpr DWORD Flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
  const DWORD length = FormatMessageW(Flags, nullptr, static_cast<DWORD>(number), 0, text.data(),
                                      static_cast<DWORD>(text.size()), nullptr);
  return TStringCore(text.data(), static_cast<int>(length)).trimRight();
}
