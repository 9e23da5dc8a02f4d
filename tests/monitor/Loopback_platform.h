/// Where the systems differ in sharing a port.
#pragma once

#include <cstdint>

namespace qilsys::test::loopback {

/// Sees to it that nobody else can bind the port of a socket that is not bound yet.
void HoldAlone(std::uintptr_t socket);

}  // namespace qilsys::test::loopback
