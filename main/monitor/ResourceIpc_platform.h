/// Where the systems differ in the way a broadcast on the loopback reaches its listeners.
#pragma once

namespace resource_ipc {

/// The address to which the receive socket is bound, in dotted form, so that it gets what is sent to 127.255.255.255
/// and nothing from outside the machine.
const char* ReceiveAddress();

}  // namespace resource_ipc
