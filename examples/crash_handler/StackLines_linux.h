/// The stacks of a dumped process as text.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <string>
#include <vector>

namespace crash_handler {

/// A line for each thread in a core file, and one for each of its frames, innermost first. What was found before an error
/// stays. The walker of the library walks the thread that calls it; this one reads a file, so nothing of the crashed
/// process has to work any more.
std::vector<std::string> StackLinesOf(const std::string& core);

}  // namespace crash_handler
