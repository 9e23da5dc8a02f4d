// The sibling for Windows is Scarcity_win.cpp.
#include "monitor/Scarcity.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <pthread.h>
#include <sys/random.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace {

std::atomic<bool> g_noRandomNumbers = false;

void SetStackOfThreads(std::size_t bytes) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, bytes);
  pthread_setattr_default_np(&attributes);
  pthread_attr_destroy(&attributes);
}

std::size_t StackOfThreads() {
  pthread_attr_t attributes;
  pthread_getattr_default_np(&attributes);
  std::size_t bytes = 0;
  pthread_attr_getstacksize(&attributes, &bytes);
  pthread_attr_destroy(&attributes);
  return bytes;
}

const std::size_t g_stackOfThreads = StackOfThreads();

rlimit LimitOfFiles() {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  return limit;
}

const rlimit g_files = LimitOfFiles();

// More than a process has of addresses.
constexpr std::size_t g_tooLargeStack = std::size_t{1} << 47;

}  // namespace

// Stands before the function of that name in the C library.
extern "C" ssize_t getrandom(void* buffer, std::size_t length, unsigned int flags) {
  if (!g_noRandomNumbers) return syscall(SYS_getrandom, buffer, length, flags);
  errno = ENOSYS;
  return -1;
}

namespace qilsys::test {

NoRandomNumbers::NoRandomNumbers() { g_noRandomNumbers = true; }
NoRandomNumbers::~NoRandomNumbers() { g_noRandomNumbers = false; }

bool NoThreads::CanBeHad() { return true; }
NoThreads::NoThreads() { SetStackOfThreads(g_tooLargeStack); }
NoThreads::~NoThreads() { SetStackOfThreads(g_stackOfThreads); }

bool NoFiles::CanBeHad() { return true; }
NoFiles::NoFiles() {
  rlimit none = g_files;
  none.rlim_cur = 0;
  setrlimit(RLIMIT_NOFILE, &none);
}
NoFiles::~NoFiles() { setrlimit(RLIMIT_NOFILE, &g_files); }

}  // namespace qilsys::test
