// The sibling for Windows is RandomBytes_win.cpp.
#include "monitor/RandomBytes_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/random.h>

#include <boost/uuid/entropy_error.hpp>
#include <cerrno>

#include "base/FileDescriptor_linux.h"

namespace qilsys::monitor {

void FillWithRandomNumbers(std::span<std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t got = base::Uninterrupted([&] { return getrandom(bytes.data(), bytes.size(), 0); });
    if (got <= 0) throw boost::uuids::entropy_error(errno, "getrandom");
    bytes = bytes.subspan(static_cast<std::size_t>(got));
  }
}

}  // namespace qilsys::monitor
