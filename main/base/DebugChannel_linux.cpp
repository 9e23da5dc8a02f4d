// The Windows sibling hands the text to the debugger.
#include "base/DebugChannel_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <cstdio>

void qilsys::base::WriteToDebugChannel(const char* text) noexcept {
  static_cast<void>(std::fprintf(stderr, "%s\n", text));
}
