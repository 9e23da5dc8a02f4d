#include "qilsys/TSystem.h"

#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

#include "system/CodePage.h"
#include "system/TSystem_platform.h"

namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point LoadTime() {
  static const Clock::time_point s_loadTime = Clock::now();
  return s_loadTime;
}

// Reads the clock while the library is being loaded, unless an earlier initialiser has asked already.
[[maybe_unused]] const Clock::time_point g_loadTime = LoadTime();

std::function<bool()>& DesktopMainThreadFunc() {
  static std::function<bool()> s_isMainThread;
  return s_isMainThread;
}

}  // namespace

unsigned int TSystem::ProcessID() { return qilsys::CurrentProcessId(); }

unsigned long long TSystem::ThreadID() { return qilsys::CurrentThreadId(); }

void TSystem::Sleep(unsigned int milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

bool TSystem::IsDesktopMainThread() {
  const std::function<bool()>& isMainThread = DesktopMainThreadFunc();
  return isMainThread && isMainThread();
}

std::function<bool()> TSystem::SetDesktopMainThreadFunc(std::function<bool()> isMainThread) {
  return std::exchange(DesktopMainThreadFunc(), std::move(isMainThread));
}

char const* TSystem::Local8BitEncoding() {
  static char const* const s_charset = qilsys::CharsetOfCodePage(qilsys::ActiveCodePage());
  return s_charset;
}

TSystem::MemoryInfo TSystem::Memory() { return qilsys::ToMemoryInfo(qilsys::ReadMachineMemory(), qilsys::PageSize()); }

unsigned int TSystem::AppUpTime() {
  const auto upTime = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - LoadTime());
  return static_cast<unsigned int>(upTime.count());
}

TStringCore TSystem::GetLastErrorString() {
  return TStringCore::fromLocal8Bit(std::system_category().message(qilsys::LastErrorNumber()).c_str());
}

TStringCore TSystem::unmangleClassName(char const* name) { return TStringCore::fromUtf8(name); }
