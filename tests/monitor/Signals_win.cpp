// The sibling for Linux is Signals_linux.cpp.
#include "monitor/Signals.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

std::optional<qilsys::test::SignalsTaken> qilsys::test::SignalsTakenHere() { return std::nullopt; }
