// The sibling for Windows is NoDescriptors_win.cpp.
#include "support/NoDescriptors.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/resource.h>

namespace qilsys::test {

namespace {

rlimit SetLimit(rlim_t soft) {
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const rlimit limit{soft, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &limit);
  return before;
}

rlim_t g_before = 0;

}  // namespace

bool NoDescriptors::CanBeHad() { return true; }
NoDescriptors::NoDescriptors() { g_before = SetLimit(0).rlim_cur; }
NoDescriptors::~NoDescriptors() { SetLimit(g_before); }

}  // namespace qilsys::test
