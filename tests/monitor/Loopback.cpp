#include "monitor/Loopback.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include "monitor/Loopback_platform.h"
#include "monitor/ResourceIpc_platform.h"

using boost::asio::ip::udp;

namespace qilsys::test {

namespace {

udp::endpoint Endpoint(const std::string& address, unsigned short port) {
  return {boost::asio::ip::make_address(address), port};
}

}  // namespace

struct Stranger::Socket {
  monitor::SocketsInUse m_socketsInUse;
  boost::asio::io_context m_context;
  udp::socket m_socket{m_context};
};

Stranger::Stranger(unsigned short port, Claim claim) : m_socket(std::make_unique<Socket>()) {
  m_socket->m_socket.open(udp::v4());
  if (claim == Claim::Alone) loopback::HoldAlone(static_cast<std::uintptr_t>(m_socket->m_socket.native_handle()));
  m_socket->m_socket.bind(Endpoint(monitor::ReceiveAddress(), port));
}

Stranger::~Stranger() = default;

unsigned short FreePort() {
  const monitor::SocketsInUse socketsInUse;
  boost::asio::io_context context;
  return udp::socket(context, Endpoint("127.0.0.1", 0)).local_endpoint().port();
}

struct Sender::Socket {
  Socket(unsigned short port, const std::string& source)
      : m_socket(m_context, Endpoint(source, 0)), m_destination(Endpoint("127.255.255.255", port)) {}

  monitor::SocketsInUse m_socketsInUse;
  boost::asio::io_context m_context;
  udp::socket m_socket;
  udp::endpoint m_destination;
};

Sender::Sender(unsigned short port, const std::string& source) : m_socket(std::make_unique<Socket>(port, source)) {
  m_socket->m_socket.set_option(udp::socket::broadcast(true));
}

Sender::~Sender() = default;

void Sender::Send(const Bytes& datagram) {
  m_socket->m_socket.send_to(boost::asio::buffer(datagram), m_socket->m_destination);
}

}  // namespace qilsys::test
