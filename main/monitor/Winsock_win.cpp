// Keeps Boost.Asio from starting the sockets of Windows while the library is being loaded, which the system forbids:
// its static object does nothing where this one has been made before. SocketsInUse starts them instead.
#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <boost/asio/detail/winsock_init.hpp>

using Manual = boost::asio::detail::winsock_init<>::manual;

// Before the objects of all other sources, and of the header above.
#ifdef _MSC_VER
#pragma warning(suppress : 4073)
#pragma init_seg(lib)
static const Manual StartByHand;
#else
__attribute__((init_priority(101))) static const Manual StartByHand;
#endif
