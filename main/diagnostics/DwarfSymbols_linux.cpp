// The reader of symbols and lines on Linux. The Windows sibling leaves it all to dbghelp.
#include "diagnostics/DwarfSymbols_linux.h"

#include <cxxabi.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string_view>

#include "base/ProcText.h"
#include "diagnostics/DebugFile_linux.h"

namespace qilsys::diagnostics {

namespace {

struct LibDwOutOfMemory : std::bad_alloc {};

// Where libdw finds no memory for what it keeps, it would end the process. It holds no lock at that place.
// The attribute is in the form that clang takes for a part of the type, as libdw has it.
__attribute__((noreturn)) void RaiseOutOfMemory() { throw LibDwOutOfMemory(); }

struct Free {
  void operator()(char* text) const { std::free(text); }
};

// A C function may carry the version of its library.
std::string Demangled(std::string name) {
  name.resize(std::min(name.find('@'), name.size()));
  const std::unique_ptr<char, Free> text(abi::__cxa_demangle(name.c_str(), nullptr, nullptr, nullptr));
  return name.starts_with("_Z") && text ? text.get() : name;
}

// Keeps the calling thread from being cancelled where libdw reads files, which would be left half read.
class Uncancelled {
 public:
  Uncancelled() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_before); }
  Uncancelled(const Uncancelled&) = delete;
  Uncancelled& operator=(const Uncancelled&) = delete;
  ~Uncancelled() { pthread_setcancelstate(m_before, nullptr); }

 private:
  int m_before = PTHREAD_CANCEL_ENABLE;
};

// libdw keeps its files open, and opens them so that programs that the process starts would have them too.
int ClosedOnExec(int descriptor) {
  if (descriptor >= 0) fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  return descriptor;
}

}  // namespace

DwarfSymbols::DwarfSymbols(const LibDw& dw)
    : m_dw(dw),
      m_callbacks{&DwarfSymbols::FindFile, &DwarfSymbols::FindDebugFile, nullptr, nullptr},
      m_session(dw.dwfl_begin(&m_callbacks), dw.dwfl_end) {
  if (!m_session) throw std::bad_alloc();
  const Uncancelled uncancelled;
  dw.dwfl_report_begin(m_session.get());
  // Modules that it has not come to stay unknown.
  static_cast<void>(dw.dwfl_linux_proc_report(m_session.get(), getpid()));
  static_cast<void>(dw.dwfl_report_end(m_session.get(), nullptr, nullptr));
}

DwarfSymbols::~DwarfSymbols() {
  const Uncancelled uncancelled;
  m_session.reset();
}

// libdw takes what lies between two modules for the first one, once it has opened their files; there may be one that has
// been loaded since.
Dwfl_Module* DwarfSymbols::FindModule(std::uint64_t lookUp) {
  Dwfl_Module* const handle = m_dw.dwfl_addrmodule(m_session.get(), lookUp);
  if (!handle) return nullptr;
  Dwarf_Addr begin = 0;
  Dwarf_Addr end = 0;
  m_dw.dwfl_module_info(handle, nullptr, &begin, &end, nullptr, nullptr, nullptr, nullptr);
  return begin <= lookUp && lookUp < end ? handle : nullptr;
}

void DwarfSymbols::FindNames(std::uint64_t lookUp, StackFrameInfo& frame) {
  RequireMemory(MemoryOfStep);
  const Uncancelled uncancelled;
  Dwfl_Module* const handle = FindModule(lookUp);
  if (!handle) return;
  ModuleOf(handle);
  const char* const path = m_dw.dwfl_module_info(handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  frame.m_moduleName = ShortModuleName(base::WithoutDeletedMark(path));
  GElf_Off offset = 0;
  GElf_Sym symbol;
  if (const char* const name = m_dw.dwfl_module_addrinfo(handle, lookUp, &offset, &symbol, nullptr, nullptr, nullptr)) {
    frame.m_symbolName = Demangled(name);
  }
}

void DwarfSymbols::FindLine(std::uint64_t lookUp, StackFrameInfo& frame) {
  RequireMemory(MemoryOfStep);
  const Uncancelled uncancelled;
  Dwfl_Module* const handle = FindModule(lookUp);
  if (!handle) return;
  Module& module = ModuleOf(handle);
  try {
    if (!module.isDwarfKnown) OpenDwarf(handle, module);
    if (module.dwarf) FindLine(module, lookUp - module.bias, frame);
  } catch (const LibDwOutOfMemory&) {
    // What libdw was at is lost to it, so that it had better not be tried again and again.
    module.dwarf = nullptr;
    throw;
  }
}

DwarfSymbols::Module& DwarfSymbols::ModuleOf(Dwfl_Module* handle) {
  const auto [found, isNew] = m_modules.try_emplace(handle);
  Module& module = found->second;
  if (isNew) {
    module.symbols = this;
    void** userData = nullptr;
    m_dw.dwfl_module_info(handle, &userData, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    *userData = &module;
  }
  return module;
}

int DwarfSymbols::FindFile(Dwfl_Module* handle, void** userData, const char* moduleName, Dwarf_Addr base, char** found,
                           Elf** elf) {
  const LibDw& dw = static_cast<Module*>(*userData)->symbols->m_dw;
  return ClosedOnExec(dw.dwfl_linux_proc_find_elf(handle, userData, moduleName, base, found, elf));
}

// A file beside the module may have its names, which aren't compressed, even where it is of no use for its lines.
int DwarfSymbols::FindDebugFile(Dwfl_Module* handle, void** userData, const char*, Dwarf_Addr, const char* file,
                                const char* linkName, GElf_Word, char** found) {
  Module& module = *static_cast<Module*>(*userData);
  const LibDw& dw = module.symbols->m_dw;
  const int descriptor = ClosedOnExec(OpenDebugFile(dw, handle, file, linkName, found));
  if (descriptor < 0) return descriptor;
  module.isCompressed = IsCompressed(dw, descriptor);
  if (!module.isCompressed || !module.isForLines) return descriptor;
  close(descriptor);
  std::free(*found);
  *found = nullptr;
  return -1;
}

void DwarfSymbols::OpenDwarf(Dwfl_Module* handle, Module& module) {
  module.isForLines = true;
  GElf_Addr bias = 0;
  Elf* const elf = m_dw.dwfl_module_getelf(handle, &bias);
  if (elf && !module.isCompressed && !IsCompressed(m_dw, elf)) {
    Dwarf* const dwarf = m_dw.dwfl_module_getdwarf(handle, &module.bias);
    if (dwarf) RequireMemoryOfUnits(dwarf);
    module.dwarf = dwarf;
  }
  if (module.dwarf) m_dw.dwarf_new_oom_handler(module.dwarf, &RaiseOutOfMemory);
  module.isDwarfKnown = true;
}

// The first look at the table of addresses makes records of all units, with a kilobyte each for their abbreviations.
void DwarfSymbols::RequireMemoryOfUnits(Dwarf* dwarf) const {
  constexpr std::size_t MemoryOfUnit = 2048;
  std::size_t size = MemoryOfStep;
  Dwarf_Off header = 0;
  Dwarf_Off next = 0;
  std::size_t headerSize = 0;
  while (m_dw.dwarf_nextcu(dwarf, header, &next, &headerSize, nullptr, nullptr, nullptr) == 0) {
    size += MemoryOfUnit;
    header = next;
  }
  RequireMemory(size);
}

void DwarfSymbols::FindLine(Module& module, Dwarf_Addr address, StackFrameInfo& frame) {
  Dwarf_Die room;
  Dwarf_Die* const unit = FindUnit(module, address, &room);
  Dwarf_Line* const line = unit ? m_dw.dwarf_getsrc_die(unit, address) : nullptr;
  const char* const file = line ? m_dw.dwarf_linesrc(line, nullptr, nullptr) : nullptr;
  int number = 0;
  if (!file || m_dw.dwarf_lineno(line, &number) != 0) return;
  frame.m_fileName = file;
  frame.m_lineNumber = static_cast<std::uint32_t>(number);
}

Dwarf_Die* DwarfSymbols::FindUnit(Module& module, Dwarf_Addr address, Dwarf_Die* room) {
  Dwarf_Aranges* table = nullptr;
  std::size_t count = 0;
  if (m_dw.dwarf_getaranges(module.dwarf, &table, &count) == 0) {
    Dwarf_Arange* const range = m_dw.dwarf_getarange_addr(table, address);
    Dwarf_Off unit = 0;
    if (range && m_dw.dwarf_getarangeinfo(range, nullptr, nullptr, &unit) == 0) {
      return m_dw.dwarf_offdie(module.dwarf, unit, room);
    }
  }
  if (!module.areUnitsKnown) ReadUnits(module);
  const auto after = std::upper_bound(module.units.begin(), module.units.end(), address,
                                      [](Dwarf_Addr wanted, const UnitRange& range) { return wanted < range.begin; });
  if (after == module.units.begin() || std::prev(after)->end <= address) return nullptr;
  return m_dw.dwarf_offdie(module.dwarf, std::prev(after)->unit, room);
}

// The units of a program are many, so that those whose addresses the table has are not looked into.
void DwarfSymbols::ReadUnits(Module& module) {
  module.units.clear();
  const std::vector<Dwarf_Off> covered = UnitsInTable(module);
  Dwarf_Off header = 0;
  Dwarf_Off next = 0;
  std::size_t headerSize = 0;
  while (m_dw.dwarf_nextcu(module.dwarf, header, &next, &headerSize, nullptr, nullptr, nullptr) == 0) {
    const Dwarf_Off unit = header + headerSize;
    if (!std::binary_search(covered.begin(), covered.end(), unit)) ReadRanges(module, unit);
    header = next;
  }
  std::sort(module.units.begin(), module.units.end(),
            [](const UnitRange& a, const UnitRange& b) { return a.begin < b.begin; });
  module.areUnitsKnown = true;
}

std::vector<Dwarf_Off> DwarfSymbols::UnitsInTable(const Module& module) const {
  std::vector<Dwarf_Off> units;
  Dwarf_Aranges* table = nullptr;
  std::size_t count = 0;
  if (m_dw.dwarf_getaranges(module.dwarf, &table, &count) != 0) return units;
  for (std::size_t i = 0; i < count; ++i) {
    Dwarf_Off unit = 0;
    if (m_dw.dwarf_getarangeinfo(m_dw.dwarf_onearange(table, i), nullptr, nullptr, &unit) == 0) units.push_back(unit);
  }
  std::sort(units.begin(), units.end());
  return units;
}

void DwarfSymbols::ReadRanges(Module& module, Dwarf_Off unit) {
  RequireMemory(MemoryOfStep);
  Dwarf_Die die;
  if (!m_dw.dwarf_offdie(module.dwarf, unit, &die)) return;
  Dwarf_Addr base = 0;
  UnitRange range{0, 0, unit};
  std::ptrdiff_t at = 0;
  while ((at = m_dw.dwarf_ranges(&die, at, &base, &range.begin, &range.end)) > 0) module.units.push_back(range);
}

}  // namespace qilsys::diagnostics
