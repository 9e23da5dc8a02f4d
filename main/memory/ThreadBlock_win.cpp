// The per-thread block on Windows. The sibling for Linux is ThreadBlock_linux.cpp.
#include "memory/ThreadBlock.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#if defined(__GNUC__)

#include <windows.h>

// Set up by the runtime for what the loader does: each thread is started with a copy of the module's template.
extern "C" {
extern ULONG _tls_index;                       // NOLINT(readability-identifier-naming)
extern const IMAGE_TLS_DIRECTORY64 _tls_used;  // NOLINT(readability-identifier-naming)
}

namespace AsyncTask {
namespace {

// GCC for Windows makes a thread_local variable by a table of its own, on the heap, when a thread first reads it. The
// loader's own blocks are there when a thread starts, so this does by hand what other compilers do: the variable stands in
// the module's template, and its copy as far behind the start of the thread's block as it stands behind the template's.
// The linker sorts these sections by name; the runtime's own first and last are ".tls" and ".tls$ZZZ".
__attribute__((section(".tls$Q"))) ThreadBlock g_template{};

char** BlocksOfModules() {
  char** blocks = nullptr;
  // ThreadLocalStoragePointer, whose place compilers have built in.
  __asm__("movq %%gs:0x58, %0" : "=r"(blocks));
  return blocks;
}

}  // namespace

ThreadBlock& CurrentThreadBlock() noexcept {
  const ULONGLONG offset = reinterpret_cast<ULONGLONG>(&g_template) - _tls_used.StartAddressOfRawData;
  return *reinterpret_cast<ThreadBlock*>(BlocksOfModules()[_tls_index] + offset);
}

}  // namespace AsyncTask

#else

namespace AsyncTask {
namespace {

constinit thread_local ThreadBlock t_threadBlock{};

}  // namespace

ThreadBlock& CurrentThreadBlock() noexcept { return t_threadBlock; }

}  // namespace AsyncTask

#endif
