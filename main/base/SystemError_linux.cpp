// The Windows sibling has the same operations.
#include "base/SystemError_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <cerrno>
#include <system_error>

int qilsys::base::LastSystemError() noexcept { return errno; }

std::string qilsys::base::SystemErrorText(int number) { return std::system_category().message(number); }
