/// The bytes of an ELF core file: its head, the table of its segments, its notes. Pure functions, the same on every
/// system; numbers are in the order of this machine.
///
/// The file is laid out as head, table, the section below where it is needed, notes, and, from a whole page on, the bytes
/// of the segments one behind the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "diagnostics/CrashDumpProc.h"
#include "diagnostics/CrashDumpRanges.h"

namespace qilsys::diagnostics {

using Bytes = std::pmr::vector<std::byte>;

/// The bytes of a plain object.
template <class T>
std::span<const std::byte> BytesOf(const T& object) {
  return std::as_bytes(std::span(&object, 1));
}

/// Appends a note: its name, its type and what it says.
void AppendNote(Bytes& notes, std::string_view name, std::uint32_t type, std::span<const std::byte> content);

/// What the note of the mapped files says: for each mapping of a file its addresses, its place in the file and its name.
Bytes MappedFiles(std::span<const Mapping> mappings, std::uint64_t pageSize, std::pmr::memory_resource& memory);

/// For which processor a program is made, by the first bytes of its file.
struct ElfMachine {
  std::uint16_t machine = 0;
  std::uint32_t flags = 0;

  bool operator==(const ElfMachine&) const = default;
};

/// Nothing unless they are those of a program of 64 bits.
std::optional<ElfMachine> ParseElfMachine(std::span<const std::byte> file);

/// What a core begins with.
struct CoreHead {
  /// The head and the tables; the notes follow at once.
  Bytes bytes;
  /// Where the bytes of the first segment stand.
  std::uint64_t segmentsOffset = 0;
};

CoreHead MakeCoreHead(ElfMachine machine, std::span<const Segment> segments, std::size_t notesBytes,
                      std::uint64_t pageSize, std::pmr::memory_resource& memory);

}  // namespace qilsys::diagnostics
