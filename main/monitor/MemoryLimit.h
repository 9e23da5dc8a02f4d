/// A per-process limit derived from the size of the machine: the arithmetic apart from asking for that size.
#pragma once

#include <cstdint>

namespace qilsys::monitor {

/// `ResourceManager::AdjustMemoryLimit` for a machine of `total` bytes. Unsigned 64 bits wrap where the base or the
/// reserve passes `total`.
std::uint64_t MemoryLimitFor(std::uint64_t total, unsigned int minimumBaseGiB, double fraction, double reserveGiB);

}  // namespace qilsys::monitor
