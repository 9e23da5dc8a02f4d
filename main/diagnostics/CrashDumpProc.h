/// What a Linux kernel tells in text of a process that is to be dumped: its mappings, its name and its relatives. Pure
/// functions, the same on every system. Rows that are written in another way are passed over.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <optional>
#include <string_view>
#include <vector>

namespace qilsys::diagnostics {

/// A range of the process's addresses with one origin and one set of rights.
struct Mapping {
  std::uint64_t start = 0;
  std::uint64_t end = 0;
  /// Where in the file it begins.
  std::uint64_t offset = 0;
  /// The file, or a name in brackets, as the kernel writes it; a part of the text that was read. Empty for memory without.
  std::string_view name = {};
  bool isReadable = false;
  bool isWritable = false;
  bool isExecutable = false;
  bool isShared = false;
  /// False where the kernel says that no page of it is in use.
  bool isInUse = true;
  /// Asks not to be dumped, or is a device, whose reading may change it.
  bool staysOut = false;

  bool operator==(const Mapping&) const = default;
};

/// The mappings in a text of the form of /proc/PID/maps or /proc/PID/smaps, in the order of the text.
std::pmr::vector<Mapping> ParseMappings(std::string_view text, std::pmr::memory_resource& memory);

/// Of a process, as /proc/PID/stat tells it.
struct ProcessStat {
  /// The name of the program, as the kernel cuts it.
  std::string_view name = {};
  char state = '?';
  int parent = 0;
  int group = 0;
  int session = 0;

  bool operator==(const ProcessStat&) const = default;
};

/// Nothing if the text is written in another way. The name may hold blanks and brackets.
std::optional<ProcessStat> ParseProcessStat(std::string_view text);

}  // namespace qilsys::diagnostics
