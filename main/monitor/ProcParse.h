/// The texts in which Linux tells about processes. Pure functions: malformed text is refused.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "qilsys/MonitoredProcess.h"

namespace qilsys::monitor {

/// The private bytes of /proc/PID/status: what is resident and no file's, and what is swapped out. Nothing if they are
/// not in it, as for a thread that has ended.
std::optional<std::uint64_t> PrivateBytesOfStatus(std::string_view status);

/// The memory counters of /proc/PID/status, without page faults. Nothing if the private bytes are not in it.
std::optional<ProcessMemoryInfo> MemoryOfStatus(std::string_view status);

/// The page faults, minor and major, of /proc/PID/stat, in the low 32 bits.
std::optional<std::uint32_t> PageFaultsOfStat(std::string_view stat);

}  // namespace qilsys::monitor
