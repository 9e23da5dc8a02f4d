// Windows has its own search for such files.
#include "diagnostics/DebugFile_linux.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace qilsys::diagnostics {

namespace {

using ElfFile = std::unique_ptr<Elf, decltype(&::elf_end)>;

ElfFile OpenElf(const LibDw& dw, int descriptor) {
  return {dw.elf_begin(descriptor, ELF_C_READ_MMAP, nullptr), dw.elf_end};
}

bool HasBuildIdOf(const LibDw& dw, int descriptor, Dwfl_Module* module) {
  const unsigned char* wanted = nullptr;
  GElf_Addr address = 0;
  const int size = dw.dwfl_module_build_id(module, &wanted, &address);
  const ElfFile elf = OpenElf(dw, descriptor);
  const void* id = nullptr;
  return size > 0 && elf && dw.dwelf_elf_gnu_build_id(elf.get(), &id) == size &&
         std::memcmp(id, wanted, static_cast<std::size_t>(size)) == 0;
}

int OpenNamed(const LibDw& dw, Dwfl_Module* module, const char* path) {
  const int descriptor = open(path, O_RDONLY | O_CLOEXEC);
  if (descriptor < 0 || HasBuildIdOf(dw, descriptor, module)) return descriptor;
  close(descriptor);
  return -1;
}

}  // namespace

bool IsCompressed(const LibDw& dw, Elf* elf) {
  GElf_Shdr header;
  for (Elf_Scn* section = nullptr; (section = dw.elf_nextscn(elf, section));) {
    if (dw.gelf_getshdr(section, &header) && header.sh_flags & SHF_COMPRESSED) return true;
  }
  return false;
}

bool IsCompressed(const LibDw& dw, int descriptor) {
  const ElfFile elf = OpenElf(dw, descriptor);
  return !elf || IsCompressed(dw, elf.get());
}

// It is called by libdw, through which no exception should pass, so the paths are made without the heap.
int OpenDebugFile(const LibDw& dw, Dwfl_Module* module, const char* moduleFile, const char* linkName,
                  char** path) noexcept {
  const int found = dw.dwfl_build_id_find_debuginfo(module, nullptr, nullptr, 0, moduleFile, linkName, 0, path);
  if (found >= 0 || !moduleFile || !linkName) return found;
  const std::string_view file(moduleFile);
  const int folder = static_cast<int>(file.find_last_of('/') + 1);
  struct Place {
    const char* above;
    const char* below;
  };
  for (const Place& place : {Place{"", ""}, Place{"", ".debug/"}, Place{"/usr/lib/debug", ""}}) {
    std::array<char, PATH_MAX> name;
    const int length =
        std::snprintf(name.data(), name.size(), "%s%.*s%s%s", place.above, folder, moduleFile, place.below, linkName);
    if (length < 0 || static_cast<std::size_t>(length) >= name.size()) continue;
    const int descriptor = OpenNamed(dw, module, name.data());
    if (descriptor < 0) continue;
    *path = strdup(name.data());
    return descriptor;
  }
  return -1;
}

}  // namespace qilsys::diagnostics
