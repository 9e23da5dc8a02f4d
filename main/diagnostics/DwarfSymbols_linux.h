/// What the ELF files of this process's modules, and the DWARF in them or beside them, say of an address.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "diagnostics/LibDw_linux.h"
#include "diagnostics/SymbolEngine_platform.h"

namespace qilsys::diagnostics {

/// Files are read when an address of theirs is first asked for, and nothing is fetched from servers. Debug information that
/// is compressed gives no lines: libdw unpacks all of it into memory first, at 20 ms a megabyte (a C library's has ten).
class DwarfSymbols : public ISymbolSource {
 public:
  explicit DwarfSymbols(const LibDw& dw);
  DwarfSymbols(const DwarfSymbols&) = delete;
  DwarfSymbols& operator=(const DwarfSymbols&) = delete;
  ~DwarfSymbols() override;

  void FindNames(std::uint64_t lookUp, StackFrameInfo& frame) override;
  void FindLine(std::uint64_t lookUp, StackFrameInfo& frame) override;

 private:
  // Addresses of one unit of compilation; they are those of the file.
  struct UnitRange {
    Dwarf_Addr begin;
    Dwarf_Addr end;
    Dwarf_Off unit;
  };

  struct Module {
    const DwarfSymbols* symbols = nullptr;
    /// Whether it has debug information that is compressed.
    bool isCompressed = false;
    /// Whether that is of no use any more, as its names have been read.
    bool isForLines = false;
    bool isDwarfKnown = false;
    /// Null where no lines can be had.
    Dwarf* dwarf = nullptr;
    /// What is added to addresses of the file.
    Dwarf_Addr bias = 0;
    bool areUnitsKnown = false;
    /// The units that are missing in the module's own table of addresses: not every compiler makes one.
    std::vector<UnitRange> units;
  };

  static int FindFile(Dwfl_Module* handle, void** userData, const char* moduleName, Dwarf_Addr base, char** found,
                      Elf** elf);
  static int FindDebugFile(Dwfl_Module* handle, void** userData, const char* moduleName, Dwarf_Addr base,
                           const char* file, const char* linkName, GElf_Word linkSum, char** found);

  Dwfl_Module* FindModule(std::uint64_t lookUp);
  Module& ModuleOf(Dwfl_Module* handle);
  void OpenDwarf(Dwfl_Module* handle, Module& module);
  void RequireMemoryOfUnits(Dwarf* dwarf) const;
  void FindLine(Module& module, Dwarf_Addr address, StackFrameInfo& frame);
  Dwarf_Die* FindUnit(Module& module, Dwarf_Addr address, Dwarf_Die* room);
  void ReadUnits(Module& module);
  std::vector<Dwarf_Off> UnitsInTable(const Module& module) const;
  void ReadRanges(Module& module, Dwarf_Off unit);

  const LibDw& m_dw;
  const Dwfl_Callbacks m_callbacks;
  std::unique_ptr<Dwfl, decltype(&::dwfl_end)> m_session;
  std::unordered_map<Dwfl_Module*, Module> m_modules;
};

}  // namespace qilsys::diagnostics
