// The sibling for Linux is Loopback_linux.cpp.
#include "monitor/Loopback_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <winsock2.h>

#include <boost/system/system_error.hpp>

#include "monitor/Loopback.h"

namespace qilsys::test {

// Under Wine who asks for a shared port gets it, unless the first one has asked to be alone.
void loopback::HoldAlone(std::uintptr_t socket) {
  const BOOL on = TRUE;
  if (setsockopt(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&on), sizeof on) != 0) {
    throw boost::system::system_error(WSAGetLastError(), boost::system::system_category(), "SO_EXCLUSIVEADDRUSE");
  }
}

// Windows refuses access to a port that was not asked to be shared, and calls one in use that is held exclusively; Wine
// says what the system beneath it says.
bool IsPortTaken(const boost::system::error_code& error) {
  return error.value() == WSAEACCES || error.value() == WSAEADDRINUSE;
}

}  // namespace qilsys::test
