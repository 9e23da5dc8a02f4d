#include "support/OpenHandles.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <filesystem>
#include <iterator>

namespace qilsys::test {

unsigned int OpenHandles() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<unsigned int>(std::distance(begin(descriptors), end(descriptors)));
}

}  // namespace qilsys::test
