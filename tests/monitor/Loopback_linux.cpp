// The sibling for Windows is Loopback_win.cpp.
#include "monitor/Loopback_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <boost/system/error_code.hpp>

#include "monitor/Loopback.h"

namespace qilsys::test {

// All who share a port have to ask for it here, the first one too.
void loopback::HoldAlone(std::uintptr_t) {}

bool IsPortTaken(const boost::system::error_code& error) { return error == boost::system::errc::address_in_use; }

}  // namespace qilsys::test
