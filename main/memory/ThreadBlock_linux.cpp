// The per-thread block on Linux. The sibling for Windows is ThreadBlock_win.cpp.
#include "memory/ThreadBlock.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

namespace AsyncTask {
namespace {

// The initial-exec model of thread-local storage: the variable lies in the block that a thread is started with. In a
// shared library the general model would allocate when a thread first reads it.
[[gnu::tls_model("initial-exec")]] constinit thread_local ThreadBlock t_threadBlock{};

}  // namespace

ThreadBlock& CurrentThreadBlock() noexcept { return t_threadBlock; }

}  // namespace AsyncTask
