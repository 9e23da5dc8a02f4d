/// Writing the core of a process by somebody who may trace it.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/types.h>

#include <memory_resource>

#include "diagnostics/CrashDumpRanges.h"

namespace qilsys::diagnostics {

struct DumpRequest {
  pid_t process = 0;
  /// Whom debuggers show first.
  pid_t firstThread = 0;
  /// An empty file that can be written.
  int file = -1;
  DumpContent content = {};
};

enum class DumpOutcome {
  Whole,
  Failed,
  /// No thread of the process could be held: it has ended, or may not be traced.
  Refused
};

/// Stops the process while it writes. Takes memory from `memory` alone, and gives nothing back to it before the end.
DumpOutcome WriteCore(const DumpRequest& request, std::pmr::memory_resource& memory);

}  // namespace qilsys::diagnostics
