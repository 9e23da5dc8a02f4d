// The sibling for Windows is ResourceIpc_win.cpp.
#include "monitor/ResourceIpc_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

namespace resource_ipc {

// A socket bound to 127.0.0.1 gets no broadcast here, and one bound to 0.0.0.0 would be open to the network.
const char* ReceiveAddress() { return "127.255.255.255"; }

}  // namespace resource_ipc
