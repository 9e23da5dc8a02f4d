#include "monitor/ResourceIpc.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/asio/post.hpp>
#include <boost/system/system_error.hpp>
#include <utility>

#include "monitor/ResourceIpc_platform.h"
#include "monitor/ThreadJoin.h"
#include "monitor/ThreadStart_platform.h"

using boost::asio::ip::udp;
using namespace qilsys::monitor;

namespace {

constexpr const char* BroadcastAddress = "127.255.255.255";

// The system's default holds a few hundred datagrams, and what does not fit is lost without a word.
constexpr int ReceiveBufferBytes = 1 << 20;

// With the receive buffer, room for the longest datagram there is. The systems, and what stands in for them, differ in
// how a receive ends whose datagram does not fit, so every datagram does.
constexpr std::size_t RestBytes = 1 << 16;

}  // namespace

/// One context and socket to receive with, and another pair to send with.
struct ResourceIpc::Sockets {
  explicit Sockets(unsigned short port) : m_destination(boost::asio::ip::make_address(BroadcastAddress), port) {}

  void OpenSendSocket() {
    OpenUninherited(m_sendSocket);
    m_sendSocket.set_option(udp::socket::broadcast(true));
  }

  void OpenReceiveSocket() {
    OpenUninherited(m_receiveSocket);
    m_receiveSocket.set_option(udp::socket::reuse_address(true));
    boost::system::error_code refused;
    m_receiveSocket.set_option(udp::socket::receive_buffer_size(ReceiveBufferBytes), refused);
    m_receiveSocket.bind({boost::asio::ip::make_address(ReceiveAddress()), m_destination.port()});
  }

  template <class TValues>
  void Send(const TValues& values) {
    m_sendSocket.send_to(boost::asio::buffer(&values, sizeof values), m_destination);
  }

  SocketsInUse m_socketsInUse;
  // What a receive writes to stands before the context, whose destructor waits until the system has let go of the last
  // receive.
  udp::endpoint m_senderEndpoint;
  /// Takes what goes beyond the receive buffer; nobody looks at it.
  std::unique_ptr<unsigned char[]> m_rest{new unsigned char[RestBytes]};
  boost::asio::io_context m_receiveContext;
  udp::socket m_receiveSocket{m_receiveContext};
  boost::asio::io_context m_sendContext;
  udp::socket m_sendSocket{m_sendContext};
  udp::endpoint m_destination;
};

ResourceIpc::ResourceIpc(unsigned short port, std::function<void(const ResourceValuesV2&)> onValues,
                         const std::function<void(const TStringCore&)>& logFunc,
                         std::terminate_handler terminateHandler)
    : m_sockets(std::make_unique<Sockets>(port)),
      m_onValues(std::move(onValues)),
      m_logFunc(logFunc),
      m_terminateHandler(terminateHandler) {
  m_sockets->OpenSendSocket();
  m_sockets->OpenReceiveSocket();
  // Now that the port is taken, it can't be the one that the system chooses for the sender.
  SendFromLoopback(m_sockets->m_sendSocket);
  m_thread = StartThread([this] { Listen(); });
}

ResourceIpc::~ResourceIpc() { Stop(); }

void ResourceIpc::Stop() {
  m_sockets->m_receiveContext.stop();
  JoinIfJoinable(m_thread);
}

void ResourceIpc::Send(const ResourceValuesV1& values) { m_sockets->Send(values); }

void ResourceIpc::Send(const ResourceValuesV2& values) { m_sockets->Send(values); }

// What is posted after the listening has ended would stay.
void ResourceIpc::TakeInWhatWaits(std::chrono::milliseconds most) {
  if (m_sockets->m_receiveContext.stopped()) return;
  const auto nothingWaits = std::make_shared<TEvent>();
  LookWhatWaits(nothingWaits, false);
  nothingWaits->Wait(most);
}

// Takes its turn among the receives. One that has emptied the socket may stand behind this look with its datagram, so
// nothing waits when two looks on end have found the socket empty. It ends too when nobody waits for it any more.
void ResourceIpc::LookWhatWaits(std::weak_ptr<TEvent> nothingWaits, bool wasEmpty) {
  boost::asio::post(m_sockets->m_receiveContext, [this, nothingWaits = std::move(nothingWaits), wasEmpty] {
    const std::shared_ptr<TEvent> asked = nothingWaits.lock();
    if (!asked) return;
    boost::system::error_code ignored;
    const bool isEmpty = m_sockets->m_receiveSocket.available(ignored) == 0;
    if (isEmpty && wasEmpty) {
      asked->Signal();
    } else {
      LookWhatWaits(asked, isEmpty);
    }
  });
}

void ResourceIpc::Listen() {
  std::set_terminate(m_terminateHandler);
  PostReceive();
  m_sockets->m_receiveContext.run();
  boost::system::error_code ignored;
  // Closing alone ends a receive only with the last handle on the socket, wherever that may be.
  m_sockets->m_receiveSocket.cancel(ignored);
  m_sockets->m_receiveSocket.shutdown(udp::socket::shutdown_both, ignored);
  m_sockets->m_receiveSocket.close(ignored);
  m_logFunc(u"Resource Manager: listening thread has stopped");
}

void ResourceIpc::PostReceive() {
  const std::array<boost::asio::mutable_buffer, 2> buffers{boost::asio::buffer(m_receiveBuffer),
                                                           boost::asio::buffer(m_sockets->m_rest.get(), RestBytes)};
  m_sockets->m_receiveSocket.async_receive_from(
      buffers, m_sockets->m_senderEndpoint,
      [this](const boost::system::error_code& error, std::size_t length) { OnReceive(error, length); });
}

// Returning without another receive leaves the context without work, which ends the listening.
void ResourceIpc::OnReceive(const boost::system::error_code& error, std::size_t length) {
  if (error || length == 0) {
    m_logFunc(SocketErrorLine(error));
    return;
  }
  Judge(length);
  PostReceive();
}

void ResourceIpc::Judge(std::size_t length) {
  const boost::asio::ip::address sender = m_sockets->m_senderEndpoint.address();
  if (!sender.is_v4() || sender.to_v4() != boost::asio::ip::address_v4::loopback()) return;
  const std::span<const unsigned char> datagram(m_receiveBuffer.data(), std::min(length, m_receiveBuffer.size()));
  if (const std::optional<ResourceValuesV2> values = ValuesOfDatagram(datagram)) {
    m_onValues(*values);
  } else {
    m_logFunc(u"Resource Manager: rejected invalid network packet from: " +
              TStringCore::fromStdString(sender.to_string()));
  }
}

// The text comes in the 8-bit encoding of the process, whatever the system's language is.
TStringCore qilsys::monitor::SocketErrorLine(const boost::system::error_code& error) {
  return u"Resource Manager: socket error: " + TStringCore::fromLocal8Bit(error.message().c_str());
}
