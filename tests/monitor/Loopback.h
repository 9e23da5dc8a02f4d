/// Ports and datagrams on the loopback for tests of real sockets.
#pragma once

#include <boost/system/error_code.hpp>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qilsys::test {

using Bytes = std::vector<unsigned char>;

/// A record as it goes over the wire.
template <class TValues>
Bytes BytesOf(const TValues& values) {
  Bytes bytes(sizeof values);
  std::memcpy(bytes.data(), &values, sizeof values);
  return bytes;
}

/// How a stranger asks for a port: as it comes, or for himself alone where the system knows of that.
enum class Claim { Default, Alone };

/// A socket that holds `port`, as a program would that knows nothing of the group.
class Stranger {
 public:
  explicit Stranger(unsigned short port, Claim claim = Claim::Alone);
  ~Stranger();

 private:
  struct Socket;
  std::unique_ptr<Socket> m_socket;
};

/// How the system says that a stranger holds a port.
bool IsPortTaken(const boost::system::error_code& error);

/// A port that nobody holds now.
unsigned short FreePort();

/// Sends datagrams to the members on a port, from an address of choice.
class Sender {
 public:
  explicit Sender(unsigned short port, const std::string& source = "127.0.0.1");
  ~Sender();

  void Send(const Bytes& datagram);

  template <class TValues>
  void SendValues(const TValues& values) {
    Send(BytesOf(values));
  }

 private:
  struct Socket;
  std::unique_ptr<Socket> m_socket;
};

}  // namespace qilsys::test
