// The sibling for Linux is ResourceIpc_linux.cpp.
#include "monitor/ResourceIpc_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

namespace resource_ipc {

// A socket bound to 127.0.0.1 gets the broadcasts of the loopback here, and can't be reached from outside.
const char* ReceiveAddress() { return "127.0.0.1"; }

}  // namespace resource_ipc
