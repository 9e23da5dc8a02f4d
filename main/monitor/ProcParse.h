/// The texts in which Linux tells about processes and processors. Pure functions: malformed text is refused.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "qilsys/MonitoredProcess.h"

namespace proc {

/// The bytes of a line "`name`:   <number> kB" of /proc/PID/status. Nothing if the line is missing, is written in
/// another way, or its number passes 64 bits.
std::optional<std::uint64_t> StatusBytes(std::string_view status, std::string_view name);

/// The memory counters of /proc/PID/status. Nothing if the private bytes are not in it, as for a process that has
/// ended.
std::optional<ProcessMemoryInfo> MemoryOfStatus(std::string_view status);

/// The page faults, minor and major, of /proc/PID/stat, in the low 32 bits.
std::optional<std::uint32_t> PageFaultsOfStat(std::string_view stat);

/// The number in a file that holds just one, with or without a line feed.
std::optional<std::uint64_t> SingleNumber(std::string_view text);

}  // namespace proc
