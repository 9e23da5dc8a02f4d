// The sibling for Linux is ThreadStart_linux.cpp.
#include "monitor/ThreadStart_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <utility>

// A console's events come on a thread that the system makes for each; no other is ever interrupted.
std::thread qilsys::monitor::StartThread(std::function<void()> run) { return std::thread(std::move(run)); }
