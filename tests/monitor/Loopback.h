/// Ports and datagrams on the loopback for tests of real sockets.
#pragma once

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>
#include <string>
#include <vector>

#include "monitor/ResourceIpc_platform.h"

namespace qilsys::test {

using boost::asio::ip::udp;

using Bytes = std::vector<unsigned char>;

/// A socket that holds `port` for itself alone (0: any free one), as a program would that knows nothing of the group.
class Stranger {
 public:
  explicit Stranger(unsigned short port = 0)
      : m_socket(m_context, udp::endpoint(resource_ipc::ReceiveAddress(), port)) {}

  unsigned short Port() const { return m_socket.local_endpoint().port(); }

 private:
  boost::asio::io_context m_context;
  udp::socket m_socket;
};

/// A port that nobody holds now.
inline unsigned short FreePort() { return Stranger().Port(); }

/// Sends datagrams to the members on a port, from an address of choice.
class Sender {
 public:
  explicit Sender(unsigned short port, const std::string& source = "127.0.0.1")
      : m_socket(m_context, udp::endpoint(boost::asio::ip::make_address(source), 0)),
        m_destination(boost::asio::ip::make_address("127.255.255.255"), port) {
    m_socket.set_option(udp::socket::broadcast(true));
  }

  void Send(const Bytes& datagram) { m_socket.send_to(boost::asio::buffer(datagram), m_destination); }

  template <class TValues>
  void SendValues(const TValues& values) {
    m_socket.send_to(boost::asio::buffer(&values, sizeof values), m_destination);
  }

 private:
  boost::asio::io_context m_context;
  udp::socket m_socket;
  udp::endpoint m_destination;
};

}  // namespace qilsys::test
