#include "crash_handler/StackLines_linux.h"

#include <cxxabi.h>
#include <dwarf.h>
#include <elfutils/libdwfl.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace crash_handler {

namespace {

using Lines = std::vector<std::string>;

// Whoever has run out of stack has a great many frames.
constexpr std::size_t MostFrames = 100;

struct Walk {
  Lines lines;
  std::size_t frames = 0;
};

std::string Demangled(const char* name) {
  if (name == nullptr) return "(no symbol)";
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> text(abi::__cxa_demangle(name, nullptr, nullptr, &status),
                                                         &std::free);
  return text ? text.get() : name;
}

std::string LineOf(Dwfl_Module* module, Dwarf_Addr address) {
  char number[32];
  std::snprintf(number, sizeof number, "  0x%016llX ", static_cast<unsigned long long>(address));
  const char* const file =
      module ? dwfl_module_info(module, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) : nullptr;
  const char* const symbol = module ? dwfl_module_addrname(module, address) : nullptr;
  return std::string(number) + (file ? file : "(no module)") + "!" + Demangled(symbol);
}

int AddFrame(Dwfl_Frame* frame, void* argument) {
  Walk& walk = *static_cast<Walk*>(argument);
  Dwarf_Addr address = 0;
  bool isActivation = false;
  if (walk.frames == MostFrames || !dwfl_frame_pc(frame, &address, &isActivation)) return DWARF_CB_ABORT;
  // A caller's address is that behind its call, which may be another function's already.
  const Dwarf_Addr inside = isActivation ? address : address - 1;
  Dwfl* const process = dwfl_thread_dwfl(dwfl_frame_thread(frame));
  walk.lines.push_back(LineOf(dwfl_addrmodule(process, inside), inside));
  ++walk.frames;
  return DWARF_CB_OK;
}

int AddThread(Dwfl_Thread* thread, void* argument) {
  Walk& walk = *static_cast<Walk*>(argument);
  walk.lines.push_back("thread " + std::to_string(dwfl_thread_tid(thread)));
  walk.frames = 0;
  // An end that is not the stack's own is one all the same.
  dwfl_thread_getframes(thread, AddFrame, argument);
  return DWARF_CB_OK;
}

}  // namespace

std::vector<std::string> StackLinesOf(const std::string& core) {
  static char* s_debugPath = nullptr;
  static const Dwfl_Callbacks s_callbacks{dwfl_build_id_find_elf, dwfl_standard_find_debuginfo, nullptr, &s_debugPath};
  Walk walk;
  elf_version(EV_CURRENT);
  const int file = open(core.c_str(), O_RDONLY | O_CLOEXEC);
  Elf* const elf = file < 0 ? nullptr : elf_begin(file, ELF_C_READ_MMAP, nullptr);
  Dwfl* const process = dwfl_begin(&s_callbacks);
  if (elf && process && dwfl_core_file_report(process, elf, nullptr) >= 0 &&
      dwfl_report_end(process, nullptr, nullptr) == 0 && dwfl_core_file_attach(process, elf) >= 0) {
    dwfl_getthreads(process, AddThread, &walk);
  }
  dwfl_end(process);
  elf_end(elf);
  if (file >= 0) close(file);
  return walk.lines;
}

}  // namespace crash_handler
