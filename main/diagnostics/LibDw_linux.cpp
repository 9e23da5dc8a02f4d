// Opens libdw and finds its functions, and those of libelf, which it stands on.
#include "diagnostics/LibDw_linux.h"

#include <dlfcn.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <new>

namespace qilsys::diagnostics {

namespace {

// Sets a function to the one of its name; false if there is none.
template <class Function>
bool Find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, name));
  return function != nullptr;
}

#define QILSYS_FIND(name) Find(library, #name, dw.name)

bool FindDwfl(void* library, LibDw& dw) {
  return QILSYS_FIND(dwfl_begin) && QILSYS_FIND(dwfl_end) && QILSYS_FIND(dwfl_report_begin) &&
         QILSYS_FIND(dwfl_report_end) && QILSYS_FIND(dwfl_linux_proc_report) && QILSYS_FIND(dwfl_linux_proc_find_elf) &&
         QILSYS_FIND(dwfl_build_id_find_debuginfo) && QILSYS_FIND(dwfl_module_build_id) &&
         QILSYS_FIND(dwfl_addrmodule) && QILSYS_FIND(dwfl_module_info) && QILSYS_FIND(dwfl_module_addrinfo) &&
         QILSYS_FIND(dwfl_module_getelf) && QILSYS_FIND(dwfl_module_getdwarf);
}

bool FindDwarf(void* library, LibDw& dw) {
  return QILSYS_FIND(dwarf_new_oom_handler) && QILSYS_FIND(dwarf_getaranges) && QILSYS_FIND(dwarf_getarange_addr) &&
         QILSYS_FIND(dwarf_onearange) && QILSYS_FIND(dwarf_getarangeinfo) && QILSYS_FIND(dwarf_nextcu) &&
         QILSYS_FIND(dwarf_offdie) && QILSYS_FIND(dwarf_ranges) && QILSYS_FIND(dwarf_getsrc_die) &&
         QILSYS_FIND(dwarf_linesrc) && QILSYS_FIND(dwarf_lineno);
}

bool FindElf(void* library, LibDw& dw) {
  return QILSYS_FIND(dwelf_elf_gnu_build_id) && QILSYS_FIND(elf_begin) && QILSYS_FIND(elf_end) &&
         QILSYS_FIND(elf_nextscn) && QILSYS_FIND(gelf_getshdr);
}

#undef QILSYS_FIND

// Stands for a library that is not there.
constexpr LibDw None{};

const LibDw* OpenLibDw() {
  RequireMemory(MemoryOfStep);
  auto dw = std::make_unique<LibDw>();
  void* const library = dlopen("libdw.so.1", RTLD_NOW | RTLD_LOCAL);
  const bool isWhole = library && FindDwfl(library, *dw) && FindDwarf(library, *dw) && FindElf(library, *dw);
  return isWhole ? dw.release() : &None;
}

}  // namespace

// Several threads may come to open it at once, and one of them gets to keep its table: a lock here, and that of the loader,
// would be taken in either order.
const LibDw* TheLibDw() {
  static std::atomic<const LibDw*> s_dw = nullptr;
  const LibDw* dw = s_dw;
  if (!dw) {
    const LibDw* const opened = OpenLibDw();
    if (s_dw.compare_exchange_strong(dw, opened)) {
      dw = opened;
    } else if (opened != &None) {
      delete opened;
    }
  }
  return dw == &None ? nullptr : dw;
}

// Called by their names, the operators are not left out by compilers.
void RequireMemory(std::size_t size) { ::operator delete(::operator new(size)); }

}  // namespace qilsys::diagnostics
