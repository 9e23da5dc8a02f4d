#include "monitor/SocketTry_win.h"

#include <winsock2.h>

#include <stdexcept>

namespace qilsys::test {

bool CanMakeSocket() {
  const SOCKET socket = WSASocketW(AF_INET, SOCK_DGRAM, IPPROTO_UDP, nullptr, 0, 0);
  if (socket != INVALID_SOCKET) {
    closesocket(socket);
    return true;
  }
  if (WSAGetLastError() != WSANOTINITIALISED) throw std::runtime_error("no socket can be made");
  return false;
}

}  // namespace qilsys::test
