// The sibling for Linux is ResourceIpc_linux.cpp.
#include "monitor/ResourceIpc_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <winsock2.h>

#include <boost/system/system_error.hpp>

namespace qilsys::monitor {

using boost::asio::ip::udp;

namespace {

[[noreturn]] void Fail(int error, const char* call) {
  throw boost::system::system_error(error, boost::system::system_category(), call);
}

}  // namespace

SocketsInUse::SocketsInUse() {
  WSADATA ignored;
  const int error = WSAStartup(MAKEWORD(2, 2), &ignored);
  if (error != 0) Fail(error, "WSAStartup");
}

SocketsInUse::~SocketsInUse() { WSACleanup(); }

void OpenUninherited(udp::socket& socket) {
  constexpr DWORD Flags = WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT;
  const SOCKET handle = WSASocketW(AF_INET, SOCK_DGRAM, IPPROTO_UDP, nullptr, 0, Flags);
  if (handle == INVALID_SOCKET) Fail(WSAGetLastError(), "open");
  boost::system::error_code error;
  socket.assign(udp::v4(), handle, error);
  if (!error) return;
  closesocket(handle);
  throw boost::system::system_error(error, "open");
}

// A socket bound to 127.0.0.1 gets the broadcasts of the loopback here, and can't be reached from outside.
const char* ReceiveAddress() { return "127.0.0.1"; }

// Left to itself it would be bound to all addresses, and the source taken from the routes, which a VPN may change.
void SendFromLoopback(udp::socket& socket) { socket.bind({boost::asio::ip::address_v4::loopback(), 0}); }

}  // namespace qilsys::monitor
