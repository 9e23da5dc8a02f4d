// The Linux sibling is Preflight_linux.cpp.
#include "demo/Preflight.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <winsock2.h>
// After winsock2.h, which can't follow it.
#include <windows.h>

#include <stdexcept>
#include <string>
#include <system_error>

namespace demo {

namespace {

constexpr int WaitMilliseconds = 1000;

/// The sockets of Windows, ready for use.
struct Winsock {
  Winsock() {
    WSADATA data{};
    if (::WSAStartup(MAKEWORD(2, 2), &data) != 0) throw std::runtime_error("The sockets of Windows can't be used.");
  }
  ~Winsock() { ::WSACleanup(); }
  Winsock(const Winsock&) = delete;
  Winsock& operator=(const Winsock&) = delete;
};

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what + ": " + std::system_category().message(::WSAGetLastError()));
}

/// A UDP socket that is closed once.
class Socket {
 public:
  Socket() : m_socket(::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP)) {
    if (m_socket == INVALID_SOCKET) Fail("No UDP socket can be made");
  }
  ~Socket() { ::closesocket(m_socket); }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  SOCKET Get() const { return m_socket; }

  void Set(int option) {
    const BOOL on = TRUE;
    ::setsockopt(m_socket, SOL_SOCKET, option, reinterpret_cast<const char*>(&on), sizeof(on));
  }

 private:
  Winsock m_winsock;
  SOCKET m_socket;
};

sockaddr_in At(unsigned long address, unsigned short port) {
  sockaddr_in at{};
  at.sin_family = AF_INET;
  at.sin_port = ::htons(port);
  at.sin_addr.s_addr = ::htonl(address);
  return at;
}

// Here a socket at the loopback's own address gets what is sent to its broadcast address.
bool Bind(const Socket& socket, unsigned short port) {
  const sockaddr_in address = At(INADDR_LOOPBACK, port);
  return ::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

void SendProbe(unsigned short port) {
  Socket sender;
  sender.Set(SO_BROADCAST);
  const sockaddr_in target = At(INADDR_LOOPBACK | 0x00FFFFFF, port);
  if (::sendto(sender.Get(), "?", 1, 0, reinterpret_cast<const sockaddr*>(&target), sizeof(target)) != 1) {
    Fail("Nothing can be sent to the loopback's broadcast address 127.255.255.255");
  }
}

HANDLE Output() { return ::GetStdHandle(STD_OUTPUT_HANDLE); }

/// Has the console read what is written as UTF-8 with control sequences; at the end of the program all is as it was.
class ConsoleSetting {
 public:
  ConsoleSetting() {
    m_isConsole = ::GetConsoleMode(Output(), &m_mode) != 0;
    if (!m_isConsole) return;
    ::SetConsoleOutputCP(CP_UTF8);
    m_obeysSequences =
        ::SetConsoleMode(Output(), m_mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
  }
  ~ConsoleSetting() {
    if (!m_isConsole) return;
    ::SetConsoleMode(Output(), m_mode);
    ::SetConsoleOutputCP(m_codePage);
  }
  ConsoleSetting(const ConsoleSetting&) = delete;
  ConsoleSetting& operator=(const ConsoleSetting&) = delete;

  bool ObeysSequences() const { return m_obeysSequences; }

 private:
  DWORD m_mode = 0;
  UINT m_codePage = ::GetConsoleOutputCP();
  bool m_isConsole = false;
  bool m_obeysSequences = false;
};

}  // namespace

// A console too old for control sequences gets plain lines.
bool OutputIsTerminal() {
  static const ConsoleSetting Setting;
  return Setting.ObeysSequences();
}

int OutputWidth() {
  constexpr int Usual = 80;
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!::GetConsoleScreenBufferInfo(Output(), &info)) return Usual;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

int OutputHeight() {
  constexpr int Usual = 24;
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!::GetConsoleScreenBufferInfo(Output(), &info)) return Usual;
  return info.srWindow.Bottom - info.srWindow.Top + 1;
}

unsigned short FindFreePort() {
  const Socket socket;
  if (!Bind(socket, 0)) Fail("No port of the loopback can be had");
  sockaddr_in address{};
  int size = sizeof(address);
  ::getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&address), &size);
  return ::ntohs(address.sin_port);
}

void CheckPort(unsigned short port) {
  Socket receiver;
  // Without this even a port that another program holds could be had.
  receiver.Set(SO_EXCLUSIVEADDRUSE);
  if (!Bind(receiver, port)) {
    const std::string name = "UDP port " + std::to_string(port);
    const int error = ::WSAGetLastError();
    if (error == WSAEADDRINUSE || error == WSAEACCES) {
      throw std::runtime_error(name + " is taken by another program. Choose one with --port.");
    }
    Fail(name + " of the loopback can't be used");
  }
  SendProbe(port);
  WSAPOLLFD waiting{receiver.Get(), POLLRDNORM, 0};
  if (::WSAPoll(&waiting, 1, WaitMilliseconds) != 1) {
    // The one thing that the monitor takes Windows' word for: should a machine ever differ, this says what it is.
    throw std::runtime_error(
        "What is sent to the loopback's broadcast address 127.255.255.255 does not reach a socket bound to 127.0.0.1. "
        "The monitor rests on that: on this machine members of a group can't hear each other (see docs/windows.md).");
  }
}

}  // namespace demo
