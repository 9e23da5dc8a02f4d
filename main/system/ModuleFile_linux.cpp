// The Windows sibling has the same operations.
#include "system/ModuleFile_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>
#include <string>

#include "base/ProcText.h"
#include "system/ModuleName.h"
#include "system/TextFile_linux.h"

namespace qilsys::system {

namespace {

constexpr char ProgramLink[] = "/proc/self/exe";

// The link's own size is not that of its text. No name that the kernel gives is longer than a page.
std::string TextOfProgramLink() {
  std::string text(256, '\0');
  ssize_t length = 0;
  while ((length = readlink(ProgramLink, text.data(), text.size())) == static_cast<ssize_t>(text.size())) {
    text.resize(2 * text.size());
  }
  text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  return text;
}

bool IsProgram(const char* name) {
  struct stat named {};
  struct stat program {};
  return stat(name, &named) == 0 && stat(ProgramLink, &program) == 0 && named.st_dev == program.st_dev &&
         named.st_ino == program.st_ino;
}

// What reads as the mark may be the end of the file's own name.
std::string ProgramName() {
  std::string name = TextOfProgramLink();
  const std::size_t unmarked = base::WithoutDeletedMark(name).size();
  if (unmarked < name.size() && !IsProgram(name.c_str())) name.resize(unmarked);
  return name;
}

// The loader knows a module by the name that it was asked for, and the program by none at all. A name that begins in the
// folder that was current then leads elsewhere by now; the kernel's list of what is mapped has full ones.
std::string FullName(const char* name, const void* address) {
  if (*name == 0) return ProgramName();
  if (*name == '/') return name;
  const std::string maps = ReadTextFile("/proc/self/maps");
  return std::string(base::WithoutDeletedMark(MappedFileAt(maps, reinterpret_cast<std::uintptr_t>(address))));
}

struct NamedModule {
  std::string_view wanted;
  std::string found = {};
  bool isOutOfMemory = false;
};

// Called with the loader's list locked, so that the module can't go; nothing may be thrown through the loader.
int LookAtModule(dl_phdr_info* module, std::size_t, void* data) {
  auto& search = *static_cast<NamedModule*>(data);
  try {
    std::string name = FullName(module->dlpi_name, module->dlpi_phdr);
    if (FilenameOf(name) != search.wanted) return 0;
    search.found = std::move(name);
  } catch (const std::bad_alloc&) {
    search.isOutOfMemory = true;
  }
  return 1;
}

}  // namespace

TStringCore ProgramFile() { return TStringCore::fromStdString(ProgramName()); }

TStringCore ModuleFileAt(const void* address) {
  Dl_info info{};
  void* module = nullptr;
  if (dladdr1(address, &info, &module, RTLD_DL_LINKMAP) == 0 || module == nullptr) return {};
  return TStringCore::fromStdString(FullName(static_cast<link_map*>(module)->l_name, address));
}

TStringCore ModuleFileNamed(const TStringCore& name) {
  const std::string wanted = name.toStdString();
  NamedModule search{wanted};
  dl_iterate_phdr(&LookAtModule, &search);
  if (search.isOutOfMemory) throw std::bad_alloc();
  return TStringCore::fromStdString(search.found);
}

}  // namespace qilsys::system
