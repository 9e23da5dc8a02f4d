/// What the monitor's sockets need of the system.
#pragma once

#include <boost/asio/ip/udp.hpp>

namespace qilsys::monitor {

/// Whoever has sockets holds one of these, made before them. On Windows it starts the sockets of the system, which must
/// not be done while a library is being loaded; these starts are counted. Throws `boost::system::system_error`.
class SocketsInUse {
 public:
  SocketsInUse();
  SocketsInUse(const SocketsInUse&) = delete;
  SocketsInUse& operator=(const SocketsInUse&) = delete;
  ~SocketsInUse();
};

/// Opens an IPv4 UDP socket that is this process's alone from its birth on: no program that is started by it, on whatever
/// thread, inherits the socket, which would keep the port taken. Throws `boost::system::system_error` ("open").
void OpenUninherited(boost::asio::ip::udp::socket& socket);

/// The address to which the receive socket is bound, in dotted form, so that it gets what is sent to 127.255.255.255
/// and nothing from outside the machine.
const char* ReceiveAddress();

/// Sees to it that what the socket sends comes from 127.0.0.1. Throws `boost::system::system_error` ("bind").
void SendFromLoopback(boost::asio::ip::udp::socket& socket);

}  // namespace qilsys::monitor
