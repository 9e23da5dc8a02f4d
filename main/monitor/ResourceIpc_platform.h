/// Where the systems differ in the way a broadcast on the loopback reaches its listeners.
#pragma once

#include <boost/asio/ip/address_v4.hpp>

namespace resource_ipc {

/// The address to which the receive socket is bound, so that it gets what is sent to 127.255.255.255 and nothing from
/// outside the machine.
boost::asio::ip::address_v4 ReceiveAddress();

}  // namespace resource_ipc
