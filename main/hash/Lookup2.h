/// Bob Jenkins's lookup2 hash, published in 1996.
#pragma once

#include <cstdint>

namespace qilsys::hash {

/// The hash of `length` bytes, read one by one, so that it does not depend on the machine's byte order.
uint32_t Lookup2(const unsigned char* data, uint32_t length, uint32_t initial);

}  // namespace qilsys::hash
