#include "support/OpenHandles.h"

#include <filesystem>
#include <iterator>

namespace qilsys::test {

unsigned int OpenHandles() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<unsigned int>(std::distance(begin(descriptors), end(descriptors)));
}

}  // namespace qilsys::test
