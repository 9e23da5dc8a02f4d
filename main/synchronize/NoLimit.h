/// The time of a wait that has none.
#pragma once

#include <cstdint>

namespace qilsys::synchronize {

/// Milliseconds. Windows' INFINITE; hosts know it by its value.
inline constexpr std::uint32_t NoLimit = 0xFFFFFFFF;

}  // namespace qilsys::synchronize
