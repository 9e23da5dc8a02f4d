// The Windows sibling is Preflight_win.cpp.
#include "demo/Preflight.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace demo {

namespace {

constexpr int WaitMilliseconds = 1000;

[[noreturn]] void Fail(const std::string& what) { throw std::runtime_error(what + ": " + std::strerror(errno)); }

/// A UDP socket that is closed once.
class Socket {
 public:
  Socket() : m_socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    if (m_socket < 0) Fail("No UDP socket can be made");
  }
  ~Socket() { ::close(m_socket); }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  int Get() const { return m_socket; }

 private:
  int m_socket;
};

/// The loopback's broadcast address, at which the members of a group hear each other.
sockaddr_in Broadcast(unsigned short port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK | 0x00FFFFFF);
  return address;
}

bool Bind(const Socket& socket, const sockaddr_in& address) {
  return ::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

void SendProbe(const sockaddr_in& address) {
  const Socket sender;
  const int on = 1;
  ::setsockopt(sender.Get(), SOL_SOCKET, SO_BROADCAST, &on, sizeof(on));
  const auto* target = reinterpret_cast<const sockaddr*>(&address);
  if (::sendto(sender.Get(), "?", 1, 0, target, sizeof(address)) != 1) {
    Fail("Nothing can be sent to the loopback's broadcast address 127.255.255.255 (is the loopback interface up?)");
  }
}

// All 0 where the terminal does not tell.
winsize OutputSize() {
  winsize size{};
  return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size : winsize{};
}

}  // namespace

bool OutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

int OutputWidth() {
  constexpr int Usual = 80;
  const winsize size = OutputSize();
  return size.ws_col > 0 ? size.ws_col : Usual;
}

int OutputHeight() {
  constexpr int Usual = 24;
  const winsize size = OutputSize();
  return size.ws_row > 0 ? size.ws_row : Usual;
}

unsigned short FindFreePort() {
  const Socket socket;
  sockaddr_in address = Broadcast(0);
  if (!Bind(socket, address)) Fail("No port of the loopback can be had (is the loopback interface up?)");
  socklen_t size = sizeof(address);
  ::getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

void CheckPort(unsigned short port) {
  const Socket receiver;
  const sockaddr_in address = Broadcast(port);
  // No shared use is asked for, so this fails if anybody at all holds the port.
  if (!Bind(receiver, address)) {
    const std::string name = "UDP port " + std::to_string(port);
    if (errno == EADDRINUSE) throw std::runtime_error(name + " is taken by another program. Choose one with --port.");
    Fail(name + " of the loopback can't be used");
  }
  SendProbe(address);
  pollfd waiting{receiver.Get(), POLLIN, 0};
  if (::poll(&waiting, 1, WaitMilliseconds) != 1) {
    throw std::runtime_error("What is sent to the loopback's broadcast address 127.255.255.255 does not arrive.");
  }
}

}  // namespace demo
