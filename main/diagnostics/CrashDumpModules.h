/// Finding the list of modules that a program's dynamic linker keeps, by which debuggers know what is loaded where.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <vector>

#include "diagnostics/CrashDumpRanges.h"

namespace qilsys::diagnostics {

/// The memory of a process that does not run.
class ProcessMemory {
 public:
  ProcessMemory() = default;
  ProcessMemory(const ProcessMemory&) = delete;
  ProcessMemory& operator=(const ProcessMemory&) = delete;
  virtual ~ProcessMemory() = default;

  /// How many bytes from `address` on could be read, at most as many as there is room for.
  virtual std::size_t Read(std::uint64_t address, std::span<std::byte> bytes) const = 0;
};

/// Adds where the program's headers stand, its dynamic section and the dynamic linker's list, element by element, with
/// names. `auxiliary` is what the kernel has told the program at its start (/proc/PID/auxv). Nothing that stands there is
/// trusted: a list without end is followed for a while.
void AddModuleList(std::span<const std::byte> auxiliary, const ProcessMemory& memory,
                   std::pmr::vector<AddressRange>& ranges);

}  // namespace qilsys::diagnostics
