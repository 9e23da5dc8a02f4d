/// The stacks of another process as text.
#pragma once

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <string>
#include <vector>

namespace crash_handler {

/// A line for each thread, and one for each of its frames, innermost first. The one that has crashed begins where it did
/// so, by the registers in `crashed`, which may be null. The walker of the library walks the thread that calls it.
std::vector<std::string> StackLinesOf(HANDLE process, DWORD processId, DWORD crashedThread, const CONTEXT* crashed);

}  // namespace crash_handler
