#include "diagnostics/LoadedModule.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <dlfcn.h>

void* qilsys::test::FunctionOfModule(const char* file, const char* name) {
  void* const module = dlopen(file, RTLD_NOW | RTLD_LOCAL);
  return module ? dlsym(module, name) : nullptr;
}
