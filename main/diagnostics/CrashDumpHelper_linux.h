/// Who writes a core: a helper process, so that the host's own threads and signals have nothing to do with the tracing.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include "diagnostics/CrashDumpCore_linux.h"

namespace qilsys::diagnostics {

/// Writes by a helper that is forked off. Only a forked process can stop all threads of this one.
DumpOutcome WriteCoreByHelper(const DumpRequest& request);

/// Writes by a thread of this process. Where only ancestors may trace, a child of this process can't be dumped by
/// another child of it. The host's handler of SIGCHLD hears of it, and memory comes from the C heap too.
DumpOutcome WriteCoreByThread(const DumpRequest& request);

/// Writes in whatever way is allowed.
DumpOutcome WriteCoreSomehow(const DumpRequest& request);

}  // namespace qilsys::diagnostics
