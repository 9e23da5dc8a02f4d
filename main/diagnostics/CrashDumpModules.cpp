#include "diagnostics/CrashDumpModules.h"

#include <cstring>
#include <optional>

#include "diagnostics/ElfFormat.h"

namespace qilsys::diagnostics {

namespace {

// Keys of the auxiliary vector and a tag of a dynamic section, by the System V ABI.
constexpr std::uint64_t HeadersAddress = 3;
constexpr std::uint64_t HeaderBytes = 4;
constexpr std::uint64_t HeaderCount = 5;
constexpr std::uint64_t DebuggersEntry = 21;

constexpr int MostModules = 65536;
constexpr std::uint64_t MostHeaders = 1024;
constexpr std::uint64_t MostDynamicEntries = 1024;
// Of a module's name, which may reach over the end of its page.
constexpr std::uint64_t NameBytes = 1024;

struct Pair {
  std::uint64_t key = 0;
  std::uint64_t value = 0;
};

/// What the dynamic linker lays down for debuggers.
struct LinkerList {
  std::uint64_t version = 0;
  std::uint64_t first = 0;
  std::uint64_t breakpoint = 0;
  std::uint64_t state = 0;
  std::uint64_t linkerBase = 0;
};

struct LinkedModule {
  std::uint64_t base = 0;
  std::uint64_t name = 0;
  std::uint64_t dynamicSection = 0;
  std::uint64_t next = 0;
  std::uint64_t previous = 0;
};

template <class T>
std::optional<T> ReadObject(const ProcessMemory& memory, std::uint64_t address) {
  T object;
  if (memory.Read(address, std::as_writable_bytes(std::span(&object, 1))) != sizeof object) return std::nullopt;
  return object;
}

std::uint64_t ValueOf(std::span<const std::byte> auxiliary, std::uint64_t key) {
  for (; auxiliary.size() >= sizeof(Pair); auxiliary = auxiliary.subspan(sizeof(Pair))) {
    Pair pair;
    std::memcpy(&pair, auxiliary.data(), sizeof pair);
    if (pair.key == key) return pair.value;
  }
  return 0;
}

/// Where the program's dynamic section stands; 0 if it has none.
std::uint64_t FindDynamicSection(std::uint64_t headers, std::uint64_t count, const ProcessMemory& memory) {
  std::uint64_t base = 0;
  std::uint64_t dynamic = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto header = ReadObject<elf::ProgramHeader>(memory, headers + i * sizeof(elf::ProgramHeader));
    if (!header) return 0;
    // The headers say where they would stand in a program that is loaded where it was linked to.
    if (header->type == elf::HeadersThemselves) base = headers - header->address;
    if (header->type == elf::DynamicSection) dynamic = header->address;
  }
  return dynamic == 0 ? 0 : base + dynamic;
}

/// The value of the entry for debuggers; 0 if there is none. Adds what was looked at.
std::uint64_t FindLinkerList(std::uint64_t dynamic, const ProcessMemory& memory,
                             std::pmr::vector<AddressRange>& ranges) {
  for (std::uint64_t i = 0; i < MostDynamicEntries; ++i) {
    const auto entry = ReadObject<Pair>(memory, dynamic + i * sizeof(Pair));
    if (!entry || entry->key == 0) return 0;
    if (entry->key == DebuggersEntry) {
      ranges.push_back({dynamic, dynamic + (i + 1) * sizeof(Pair)});
      return entry->value;
    }
  }
  return 0;
}

}  // namespace

void AddModuleList(std::span<const std::byte> auxiliary, const ProcessMemory& memory,
                   std::pmr::vector<AddressRange>& ranges) {
  const std::uint64_t headers = ValueOf(auxiliary, HeadersAddress);
  const std::uint64_t count = ValueOf(auxiliary, HeaderCount);
  if (headers == 0 || count > MostHeaders || ValueOf(auxiliary, HeaderBytes) != sizeof(elf::ProgramHeader)) return;
  ranges.push_back({headers, headers + count * sizeof(elf::ProgramHeader)});
  const std::uint64_t dynamic = FindDynamicSection(headers, count, memory);
  const std::uint64_t list = dynamic == 0 ? 0 : FindLinkerList(dynamic, memory, ranges);
  const auto linker = list == 0 ? std::nullopt : ReadObject<LinkerList>(memory, list);
  if (!linker) return;
  ranges.push_back({list, list + sizeof(LinkerList)});
  std::uint64_t address = linker->first;
  for (int i = 0; address != 0 && i < MostModules; ++i) {
    const auto module = ReadObject<LinkedModule>(memory, address);
    if (!module) return;
    ranges.push_back({address, address + sizeof(LinkedModule)});
    if (module->name != 0) ranges.push_back({module->name, module->name + NameBytes});
    address = module->next;
  }
}

}  // namespace qilsys::diagnostics
