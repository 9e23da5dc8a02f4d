/// Whether this process has started the sockets of Windows.
#pragma once

#ifndef _WIN32
#error "This file is for Windows."
#endif

namespace qilsys::test {

/// False where nobody has called WSAStartup. Throws std::runtime_error where a socket is refused for another reason.
bool CanMakeSocket();

}  // namespace qilsys::test
