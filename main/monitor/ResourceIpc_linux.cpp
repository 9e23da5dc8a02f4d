// The sibling for Windows is ResourceIpc_win.cpp.
#include "monitor/ResourceIpc_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/socket.h>

#include <boost/system/system_error.hpp>
#include <cerrno>

#include "base/FileDescriptor_linux.h"

namespace qilsys::monitor {

using boost::asio::ip::udp;

// Sockets are always there; one that is held is held for the sake of the other system.
SocketsInUse::SocketsInUse() = default;
SocketsInUse::~SocketsInUse() {}

void OpenUninherited(udp::socket& socket) {
  base::FileDescriptor descriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP));
  if (!descriptor.IsOpen()) throw boost::system::system_error(errno, boost::system::system_category(), "open");
  socket.assign(udp::v4(), descriptor.Get());
  descriptor.Release();
}

// A socket bound to 127.0.0.1 gets no broadcast here, and one bound to 0.0.0.0 would be open to the network.
const char* ReceiveAddress() { return "127.255.255.255"; }

// The routes of this system leave no choice: what goes to the loopback's broadcast address comes from 127.0.0.1.
void SendFromLoopback(udp::socket&) {}

}  // namespace qilsys::monitor
