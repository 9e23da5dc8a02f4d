/// The functions of elfutils' libdw, which reads symbols and lines; see TheLibDw for how they come.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <elfutils/libdw.h>
#include <elfutils/libdwelf.h>
#include <elfutils/libdwfl.h>
#include <gelf.h>
#include <libelf.h>

#include <cstddef>

namespace qilsys::diagnostics {

/// Each under its own name and with its own type.
struct LibDw {
  decltype(&::dwfl_begin) dwfl_begin;
  decltype(&::dwfl_end) dwfl_end;
  decltype(&::dwfl_report_begin) dwfl_report_begin;
  decltype(&::dwfl_report_end) dwfl_report_end;
  decltype(&::dwfl_linux_proc_report) dwfl_linux_proc_report;
  decltype(&::dwfl_linux_proc_find_elf) dwfl_linux_proc_find_elf;
  decltype(&::dwfl_build_id_find_debuginfo) dwfl_build_id_find_debuginfo;
  decltype(&::dwfl_addrmodule) dwfl_addrmodule;
  decltype(&::dwfl_module_info) dwfl_module_info;
  decltype(&::dwfl_module_addrinfo) dwfl_module_addrinfo;
  decltype(&::dwfl_module_build_id) dwfl_module_build_id;
  decltype(&::dwfl_module_getelf) dwfl_module_getelf;
  decltype(&::dwfl_module_getdwarf) dwfl_module_getdwarf;
  decltype(&::dwarf_new_oom_handler) dwarf_new_oom_handler;
  decltype(&::dwarf_getaranges) dwarf_getaranges;
  decltype(&::dwarf_getarange_addr) dwarf_getarange_addr;
  decltype(&::dwarf_onearange) dwarf_onearange;
  decltype(&::dwarf_getarangeinfo) dwarf_getarangeinfo;
  decltype(&::dwarf_nextcu) dwarf_nextcu;
  decltype(&::dwarf_offdie) dwarf_offdie;
  decltype(&::dwarf_ranges) dwarf_ranges;
  decltype(&::dwarf_getsrc_die) dwarf_getsrc_die;
  decltype(&::dwarf_linesrc) dwarf_linesrc;
  decltype(&::dwarf_lineno) dwarf_lineno;
  decltype(&::dwelf_elf_gnu_build_id) dwelf_elf_gnu_build_id;
  decltype(&::elf_begin) elf_begin;
  decltype(&::elf_end) elf_end;
  decltype(&::elf_nextscn) elf_nextscn;
  decltype(&::gelf_getshdr) gelf_getshdr;
};

/// Null where the system has none, or one without these functions. libdw is opened by the first call, not linked: with
/// the four libraries that it brings along it would make every program start 0.4 ms later, and only those pay that walk.
/// Throws std::bad_alloc, and opens it another time.
const LibDw* TheLibDw();

/// Throws std::bad_alloc where there is not this much memory. To be called before libdw, which is not made for a lack of
/// it: some of its tables it uses without having got them, and others it asserts to have. And with a thread's first step
/// into a library that was opened late the loader ends the process, if there is no memory for its thread-local variables.
void RequireMemory(std::size_t size);

/// What suffices for any step but the first one into a module's debug information.
inline constexpr std::size_t MemoryOfStep = 65536;

}  // namespace qilsys::diagnostics
