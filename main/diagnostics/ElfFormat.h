/// The structures and values of ELF files of 64 bits, as the System V ABI lays them down: systems without such files have
/// no header of them.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace qilsys::diagnostics::elf {

struct ElfHead {
  std::array<std::uint8_t, 16> ident{};
  std::uint16_t type = 0;
  std::uint16_t machine = 0;
  std::uint32_t version = 1;
  std::uint64_t entry = 0;
  std::uint64_t programHeadersOffset = 0;
  std::uint64_t sectionHeadersOffset = 0;
  std::uint32_t flags = 0;
  std::uint16_t headBytes = 64;
  std::uint16_t programHeaderBytes = 56;
  std::uint16_t programHeaders = 0;
  std::uint16_t sectionHeaderBytes = 0;
  std::uint16_t sectionHeaders = 0;
  std::uint16_t sectionNames = 0;
};
static_assert(sizeof(ElfHead) == 64);

struct ProgramHeader {
  std::uint32_t type = 0;
  std::uint32_t flags = 0;
  std::uint64_t offset = 0;
  std::uint64_t address = 0;
  std::uint64_t physicalAddress = 0;
  std::uint64_t fileBytes = 0;
  std::uint64_t memoryBytes = 0;
  std::uint64_t alignment = 0;
};
static_assert(sizeof(ProgramHeader) == 56);

struct SectionHeader {
  std::uint32_t name = 0;
  std::uint32_t type = 0;
  std::uint64_t flags = 0;
  std::uint64_t address = 0;
  std::uint64_t offset = 0;
  std::uint64_t size = 0;
  std::uint32_t link = 0;
  std::uint32_t info = 0;
  std::uint64_t alignment = 0;
  std::uint64_t entryBytes = 0;
};
static_assert(sizeof(SectionHeader) == 64);

struct NoteHead {
  std::uint32_t nameBytes = 0;
  std::uint32_t contentBytes = 0;
  std::uint32_t type = 0;
};

constexpr std::array<std::uint8_t, 4> Magic = {0x7F, 'E', 'L', 'F'};
constexpr std::uint8_t Of64Bits = 2;
constexpr std::uint8_t OrderOfBytes = std::endian::native == std::endian::little ? 1 : 2;
/// The type of a file that is a core.
constexpr std::uint16_t Core = 4;
/// Types of program headers.
constexpr std::uint32_t Load = 1;
constexpr std::uint32_t DynamicSection = 2;
constexpr std::uint32_t Note = 4;
constexpr std::uint32_t HeadersThemselves = 6;
/// Rights of a segment.
constexpr std::uint32_t Executable = 1;
constexpr std::uint32_t Writable = 2;
constexpr std::uint32_t Readable = 4;

}  // namespace qilsys::diagnostics::elf
