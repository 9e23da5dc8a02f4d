// The sibling for Windows is LoadedModule_win.cpp.
#include "support/LoadedModule.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <dlfcn.h>

#include <stdexcept>

namespace qilsys::test {

std::filesystem::path OfAnyLength(const std::filesystem::path& path) { return path; }

LoadedModule::LoadedModule(const std::filesystem::path& file) : m_module(dlopen(file.c_str(), RTLD_NOW)) {
  if (m_module == nullptr) throw std::runtime_error(dlerror());
}

LoadedModule::~LoadedModule() { dlclose(m_module); }

const void* LoadedModule::AddressOf(const char* name) const { return dlsym(m_module, name); }

bool LoadedModule::IsLoaded(const std::filesystem::path& file) {
  void* const module = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (module != nullptr) dlclose(module);
  return module != nullptr;
}

}  // namespace qilsys::test
