/// What each system must give for the files of modules.
#pragma once

#include "qilsys/TStringCore.h"

namespace qilsys::system {

/// The full name of the running program's file, in the form that the system has; empty where it can't tell.
TStringCore ProgramFile();

/// The same of the module that has `address` in it, which is not null; empty where that is in none.
TStringCore ModuleFileAt(const void* address);

/// The same of the first loaded module whose file has this name, which is not empty; empty where none has. Keeps no module
/// loaded.
TStringCore ModuleFileNamed(const TStringCore& name);

}  // namespace qilsys::system
