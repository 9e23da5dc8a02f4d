// The Windows sibling has the same operations.
#include "system/TSystem_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <langinfo.h>
#include <locale.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <thread>
#include <type_traits>

#include "system/CodePage.h"

namespace qilsys::system {

namespace {

struct FreeLocale {
  void operator()(locale_t locale) const { freelocale(locale); }
};
using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

using Clock = std::chrono::steady_clock;

}  // namespace

unsigned int CurrentProcessId() { return static_cast<unsigned int>(getpid()); }

unsigned long long CurrentThreadId() { return static_cast<unsigned long long>(gettid()); }

void SleepFor(unsigned int milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

// Asks for the environment's locale and leaves the process's own as it is.
unsigned int ActiveCodePage() {
  const Locale locale(newlocale(LC_CTYPE_MASK, "", nullptr));
  return CodePageOfCodeset(locale ? nl_langinfo_l(CODESET, locale.get()) : "");
}

std::uint32_t PageSize() { return static_cast<std::uint32_t>(sysconf(_SC_PAGESIZE)); }

std::uint64_t PerformanceCount() {
  return static_cast<std::uint64_t>(std::chrono::nanoseconds(Clock::now().time_since_epoch()).count());
}

std::uint64_t PerformanceFrequency() { return std::nano::den; }

}  // namespace qilsys::system
