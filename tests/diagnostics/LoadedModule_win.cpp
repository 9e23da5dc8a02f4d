#include "diagnostics/LoadedModule.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

void* qilsys::test::FunctionOfModule(const char* file, const char* name) {
  const HMODULE module = LoadLibraryA(file);
  return module ? reinterpret_cast<void*>(GetProcAddress(module, name)) : nullptr;
}
