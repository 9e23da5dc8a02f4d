/// The sockets by which the members of a group hear each other.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <thread>

#include "monitor/ResourceValues.h"
#include "qilsys/TEvent.h"
#include "qilsys/TStringCore.h"

namespace boost::system {
class error_code;
}

/// The sockets of one member: it broadcasts on the loopback, and hears every member on its port, itself included.
///
/// Sending is done by the caller; receiving by a thread of its own. The two share neither socket nor lock. A receive
/// error or an empty datagram ends the listening for good, and sending goes on.
class ResourceIpc {
 public:
  /// Opens both sockets and starts listening. `onValues` and `logFunc` are called on the listening thread, which
  /// installs `terminateHandler`, where null is the default handler. A socket that can't be had throws
  /// `boost::system::system_error`.
  ResourceIpc(unsigned short port, std::function<void(const ResourceValuesV2&)> onValues,
              const std::function<void(const TStringCore&)>& logFunc, std::terminate_handler terminateHandler);
  ResourceIpc(const ResourceIpc&) = delete;
  ResourceIpc& operator=(const ResourceIpc&) = delete;

  /// Stops, if that has not been done.
  ~ResourceIpc();

  /// Ends the listening and waits for its thread. Throws `std::system_error` on that thread itself.
  void Stop();

  /// Sends one datagram from the calling thread. Throws `boost::system::system_error`.
  void Send(const ResourceValuesV1& values);
  void Send(const ResourceValuesV2& values);

  /// Waits until the listening thread has handed over what waits in the socket now, and at most this long.
  void TakeInWhatWaits(std::chrono::milliseconds most);

 private:
  struct Sockets;

  void Listen();
  void PostReceive();
  void OnReceive(const boost::system::error_code& error, std::size_t length);
  void Judge(std::size_t length);
  void LookWhatWaits(std::weak_ptr<TEvent> nothingWaits, bool wasEmpty);

  std::unique_ptr<Sockets> m_sockets;
  std::thread m_thread;
  std::array<unsigned char, 1024> m_receiveBuffer{};
  std::function<void(const ResourceValuesV2&)> m_onValues;
  std::function<void(const TStringCore&)> m_logFunc;
  std::terminate_handler m_terminateHandler;
};

namespace qilsys::monitor {

/// The line that ends the log of a listener whose socket has failed.
TStringCore SocketErrorLine(const boost::system::error_code& error);

}  // namespace qilsys::monitor
