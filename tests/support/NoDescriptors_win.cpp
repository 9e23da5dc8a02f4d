// The sibling for Linux is NoDescriptors_linux.cpp.
#include "support/NoDescriptors.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

namespace qilsys::test {

bool NoDescriptors::CanBeHad() { return false; }
NoDescriptors::NoDescriptors() = default;
NoDescriptors::~NoDescriptors() = default;

}  // namespace qilsys::test
