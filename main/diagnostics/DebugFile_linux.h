/// Files of debug information that lie apart from the module that they are about.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include "diagnostics/LibDw_linux.h"

namespace qilsys::diagnostics {

/// Whether sections of the file are compressed. Only those of debug information ever are.
bool IsCompressed(const LibDw& dw, Elf* elf);
/// The same of an open file; true where it can't be read.
bool IsCompressed(const LibDw& dw, int descriptor);

/// Opens the file that the module has been split into: the one of its build id, else the one that it names, beside it or
/// below /usr/lib/debug, with the same build id. Hands over descriptor and path, which is freed by `free`; -1 for none.
/// The search of libdw itself would go on to servers, and load twenty libraries for it.
int OpenDebugFile(const LibDw& dw, Dwfl_Module* module, const char* moduleFile, const char* linkName,
                  char** path) noexcept;

}  // namespace qilsys::diagnostics
