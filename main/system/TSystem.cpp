#include "qilsys/TSystem.h"

#include <new>
#include <utility>

#include "base/SystemError_platform.h"
#include "system/CodePage.h"
#include "system/TSystem_platform.h"

using namespace qilsys::system;

namespace {

std::uint64_t LoadCount() {
  static const std::uint64_t LoadCount = PerformanceCount();
  return LoadCount;
}

// Reads the counter while the library is being loaded, unless an earlier initialiser has asked already.
[[maybe_unused]] const std::uint64_t CountAtLoad = LoadCount();

std::function<bool()>& DesktopMainThreadFunc() {
  static std::function<bool()> s_isMainThread;
  return s_isMainThread;
}

// The texts of the system take memory of their own, and what they are read for may be that there is none left.
MachineMemory MachineMemoryOrNothing() noexcept {
  try {
    return ReadMachineMemory();
  } catch (const std::bad_alloc&) {
    return {};
  }
}

}  // namespace

unsigned int TSystem::ProcessID() { return CurrentProcessId(); }

unsigned long long TSystem::ThreadID() { return CurrentThreadId(); }

void TSystem::Sleep(unsigned int milliseconds) { SleepFor(milliseconds); }

bool TSystem::IsDesktopMainThread() {
  const std::function<bool()>& isMainThread = DesktopMainThreadFunc();
  return isMainThread && isMainThread();
}

std::function<bool()> TSystem::SetDesktopMainThreadFunc(std::function<bool()> isMainThread) {
  return std::exchange(DesktopMainThreadFunc(), std::move(isMainThread));
}

char const* TSystem::Local8BitEncoding() {
  static char const* const Charset = CharsetOfCodePage(ActiveCodePage());
  return Charset;
}

TSystem::MemoryInfo TSystem::Memory() noexcept { return ToMemoryInfo(MachineMemoryOrNothing(), PageSize()); }

unsigned int TSystem::AppUpTime() {
  static const double Factor = 1000.0 / static_cast<double>(PerformanceFrequency());
  const std::uint64_t count = PerformanceCount() - LoadCount();
  return static_cast<unsigned int>(static_cast<std::uint64_t>(static_cast<double>(count) * Factor));
}

// The system's text comes by way of a std::string, whose end of memory is told as that of any text.
TStringCore TSystem::GetLastErrorString() {
  try {
    return TStringCore::fromStdString(qilsys::base::SystemErrorText(qilsys::base::LastSystemError()));
  } catch (const std::bad_alloc&) {
    throw TStringCore::OutOfMemoryException();
  }
}

TStringCore TSystem::unmangleClassName(char const* name) { return TStringCore::fromUtf8(name); }
