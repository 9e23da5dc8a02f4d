/// Which addresses of a process go into its dump. Pure functions, the same on every system.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <span>
#include <vector>

#include "diagnostics/CrashDumpProc.h"
#include "qilsys/CrashDump.h"

namespace qilsys::diagnostics {

/// What a dump holds besides stacks and the list of modules.
struct DumpContent {
  /// What the modules have written to their data.
  bool moduleData = false;
  /// Memory that belongs to the process alone.
  bool privateMemory = false;
  /// Memory without a file of its own that the process shares with others.
  bool sharedMemory = false;

  bool operator==(const DumpContent&) const = default;
};

DumpContent ContentOf(_MINIDUMP_TYPE type);

/// What is taken of a mapping, at least.
enum class Taken {
  Nothing,
  /// Its first page: the head of a module, by which debuggers tell one build from another.
  Head,
  /// The pages that are the process's own, for the others stand in the file; and its head.
  OwnPages,
  /// The pages that are in use.
  UsedPages,
  Whole
};

Taken TakenOf(const Mapping& mapping, DumpContent content);

struct AddressRange {
  std::uint64_t start = 0;
  std::uint64_t end = 0;

  bool operator==(const AddressRange&) const = default;
};

/// Adds a range of whole pages for each run of pages from `address` on that are in use, by their entries in
/// /proc/PID/pagemap; with OwnPages only of those that stand in no file. Runs with few other pages between them become
/// one, which saves a header and costs a few pages.
void AddUsedRuns(std::span<const std::uint64_t> entries, std::uint64_t address, std::uint64_t pageSize, Taken taken,
                 std::pmr::vector<AddressRange>& ranges);

/// Where a thread has its stack.
struct StackPlace {
  std::uint64_t stackPointer = 0;
  /// The thread's own block, which the C library lays at the upper end of the stack that it makes; 0 if unknown.
  std::uint64_t threadBlock = 0;
  /// The process's first thread, whose stack the kernel has made.
  bool isFirst = false;
};

/// Adds what a thread has put on its stack. A thread that runs on another stack than its own, as a signal handler may, has
/// both added.
void AddStack(std::span<const Mapping> mappings, const StackPlace& place, std::uint64_t pageSize,
              std::pmr::vector<AddressRange>& ranges);

/// A part of the dump: `fileBytes` is 0 where the addresses are known but their bytes are left out.
struct Segment {
  std::uint64_t address = 0;
  std::uint64_t memoryBytes = 0;
  std::uint64_t fileBytes = 0;
  bool isReadable = false;
  bool isWritable = false;
  bool isExecutable = false;

  bool operator==(const Segment&) const = default;
};

/// Cuts the mappings into what is dumped and what is not. The ranges, which are used up, may come in any order, may overlap and may reach out
/// of all mappings; what can't be read or stays out is never dumped.
std::pmr::vector<Segment> CutIntoSegments(std::span<const Mapping> mappings, std::pmr::vector<AddressRange>&& ranges,
                                          std::uint64_t pageSize, std::pmr::memory_resource& memory);

}  // namespace qilsys::diagnostics
