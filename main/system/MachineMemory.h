/// How much memory there is: what TSystem tells of it, and the texts by which a Linux kernel does. The file that reads
/// those texts is MachineMemory_linux.cpp; here they come as arguments.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qilsys/TSystem.h"

namespace qilsys::system {

/// Memory as the system tells it, in bytes; all zero when it tells nothing.
struct MachineMemory {
  std::uint64_t total = 0;
  std::uint64_t available = 0;
  /// Percent in use where the system tells that too; else it follows from the other two.
  std::optional<std::uint32_t> load = std::nullopt;

  bool operator==(const MachineMemory&) const = default;
};

/// The public record: used is never 0, and the load is a whole percentage.
TSystem::MemoryInfo ToMemoryInfo(const MachineMemory& memory, std::uint32_t pageSize);

/// The two layouts of control groups; both may be in use at once.
enum class CgroupVersion { V1, V2 };

/// Where a hierarchy of control groups is mounted, and which of its groups is seen there.
struct CgroupMount {
  std::string mountPoint;
  std::string root;

  bool operator==(const CgroupMount&) const = default;
};

/// What one group says of its memory, in bytes. `reclaimable` is the part of the usage that is given up first.
struct CgroupMemory {
  std::optional<std::uint64_t> limit;
  std::uint64_t usage = 0;
  std::uint64_t reclaimable = 0;
};

/// The text of /proc/meminfo; nothing unless the total and the available (or, in old kernels, the free) memory are
/// there.
std::optional<MachineMemory> ParseMemInfo(std::string_view text);

/// The text of /proc/self/cgroup: the path of the group that bounds this process's memory.
std::optional<std::string> ParseCgroupPath(std::string_view text, CgroupVersion version);

/// The text of /proc/self/mountinfo: the mount of the hierarchy that bounds memory.
std::optional<CgroupMount> ParseCgroupMount(std::string_view text, CgroupVersion version);

/// The folders of a group and of all its parents that the mount shows, the group's own first.
std::vector<std::string> CgroupFolders(const CgroupMount& mount, std::string_view path);

/// The value of one row of a group's memory.stat.
std::optional<std::uint64_t> ParseStatRow(std::string_view text, std::string_view key);

/// The smaller of the machine's memory and the group's, for total and available each.
MachineMemory Bound(const MachineMemory& memory, const CgroupMemory& group);

/// The text of the file at a path; empty where there is none.
using TextOf = std::function<std::string(const std::string& path)>;

/// The machine's memory, bounded by the group of this process and by all above it, in both layouts. All zero where
/// /proc/meminfo tells nothing; a group whose files are not there bounds nothing.
MachineMemory MachineMemoryFrom(const TextOf& textOf);

}  // namespace qilsys::system
