#include "diagnostics/CrashDumpElf.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "diagnostics/ElfFormat.h"

namespace qilsys::diagnostics {

namespace {

using namespace elf;

// So many program headers can't be counted in 16 bits: the number stands in the first section then.
constexpr std::uint16_t TooManyToCount = 0xFFFF;

void Append(Bytes& bytes, std::span<const std::byte> more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

/// The parts of a note begin at multiples of 4.
void AppendPadded(Bytes& bytes, std::span<const std::byte> more) {
  Append(bytes, more);
  bytes.resize((bytes.size() + 3) / 4 * 4);
}

bool HasFile(const Mapping& mapping) { return mapping.name.starts_with('/'); }

std::uint64_t RoundUp(std::uint64_t value, std::uint64_t unit) { return (value + unit - 1) / unit * unit; }

ElfHead MakeHead(ElfMachine machine, std::size_t headers) {
  ElfHead head;
  head.ident = {Magic[0], Magic[1], Magic[2], Magic[3], Of64Bits, OrderOfBytes, 1};
  head.type = Core;
  head.machine = machine.machine;
  head.flags = machine.flags;
  head.programHeadersOffset = sizeof(ElfHead);
  head.programHeaders = static_cast<std::uint16_t>(std::min<std::size_t>(headers, TooManyToCount));
  if (headers >= TooManyToCount) {
    head.sectionHeadersOffset = sizeof(ElfHead) + headers * sizeof(ProgramHeader);
    head.sectionHeaderBytes = sizeof(SectionHeader);
    head.sectionHeaders = 1;
  }
  return head;
}

ProgramHeader HeaderOf(const Segment& segment, std::uint64_t offset, std::uint64_t pageSize) {
  return {.type = Load,
          .flags = (segment.isReadable ? Readable : 0) | (segment.isWritable ? Writable : 0) |
                   (segment.isExecutable ? Executable : 0),
          .offset = offset,
          .address = segment.address,
          .fileBytes = segment.fileBytes,
          .memoryBytes = segment.memoryBytes,
          .alignment = pageSize};
}

}  // namespace

void AppendNote(Bytes& notes, std::string_view name, std::uint32_t type, std::span<const std::byte> content) {
  // The NUL behind the name belongs to it.
  const NoteHead head{static_cast<std::uint32_t>(name.size() + 1), static_cast<std::uint32_t>(content.size()), type};
  Append(notes, BytesOf(head));
  Append(notes, std::as_bytes(std::span(name)));
  notes.push_back(std::byte{0});
  AppendPadded(notes, {});
  AppendPadded(notes, content);
}

Bytes MappedFiles(std::span<const Mapping> mappings, std::uint64_t pageSize, std::pmr::memory_resource& memory) {
  const std::uint64_t count = static_cast<std::uint64_t>(std::ranges::count_if(mappings, HasFile));
  Bytes bytes(&memory);
  Append(bytes, BytesOf(std::array{count, pageSize}));
  for (const Mapping& mapping : mappings) {
    if (HasFile(mapping)) Append(bytes, BytesOf(std::array{mapping.start, mapping.end, mapping.offset / pageSize}));
  }
  for (const Mapping& mapping : mappings) {
    if (HasFile(mapping)) {
      Append(bytes, std::as_bytes(std::span(mapping.name)));
      bytes.push_back(std::byte{0});
    }
  }
  return bytes;
}

std::optional<ElfMachine> ParseElfMachine(std::span<const std::byte> file) {
  ElfHead head;
  if (file.size() < sizeof head) return std::nullopt;
  std::memcpy(&head, file.data(), sizeof head);
  if (!std::equal(Magic.begin(), Magic.end(), head.ident.begin()) || head.ident[4] != Of64Bits ||
      head.ident[5] != OrderOfBytes) {
    return std::nullopt;
  }
  return ElfMachine{head.machine, head.flags};
}

CoreHead MakeCoreHead(ElfMachine machine, std::span<const Segment> segments, std::size_t notesBytes,
                      std::uint64_t pageSize, std::pmr::memory_resource& memory) {
  const std::size_t headers = segments.size() + 1;
  const ElfHead head = MakeHead(machine, headers);
  const std::uint64_t headBytes =
      sizeof head + headers * sizeof(ProgramHeader) + head.sectionHeaders * sizeof(SectionHeader);
  CoreHead core{Bytes(&memory), RoundUp(headBytes + notesBytes, pageSize)};
  core.bytes.reserve(headBytes);
  Append(core.bytes, BytesOf(head));
  Append(core.bytes,
         BytesOf(ProgramHeader{.type = Note, .offset = headBytes, .fileBytes = notesBytes, .alignment = 4}));
  std::uint64_t offset = core.segmentsOffset;
  for (const Segment& segment : segments) {
    Append(core.bytes, BytesOf(HeaderOf(segment, offset, pageSize)));
    offset += segment.fileBytes;
  }
  if (head.sectionHeaders != 0) {
    Append(core.bytes, BytesOf(SectionHeader{.size = 1, .info = static_cast<std::uint32_t>(headers)}));
  }
  return core;
}

}  // namespace qilsys::diagnostics
