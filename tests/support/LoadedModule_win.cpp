// The sibling for Linux is LoadedModule_linux.cpp.
#include "support/LoadedModule.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <stdexcept>

namespace qilsys::test {

std::filesystem::path OfAnyLength(const std::filesystem::path& path) {
  return L"\\\\?\\" + std::filesystem::absolute(path).make_preferred().native();
}

LoadedModule::LoadedModule(const std::filesystem::path& file) : m_module(LoadLibraryW(file.c_str())) {
  if (m_module == nullptr) throw std::runtime_error("LoadLibraryW: " + std::to_string(GetLastError()));
}

LoadedModule::~LoadedModule() { FreeLibrary(static_cast<HMODULE>(m_module)); }

const void* LoadedModule::AddressOf(const char* name) const {
  return reinterpret_cast<const void*>(GetProcAddress(static_cast<HMODULE>(m_module), name));
}

bool LoadedModule::IsLoaded(const std::filesystem::path& file) { return GetModuleHandleW(file.c_str()) != nullptr; }

}  // namespace qilsys::test
