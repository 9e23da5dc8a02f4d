// The Linux sibling writes to standard error, having no debugger's channel.
#include "base/DebugChannel_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

void qilsys::base::WriteToDebugChannel(const char* text) noexcept { OutputDebugStringA(text); }
