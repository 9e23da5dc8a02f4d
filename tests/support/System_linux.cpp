#include "support/System.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/wait.h>

#include <csignal>

namespace qilsys::test {

bool HasGapsOfWine() { return false; }

std::chrono::milliseconds TickOfWaits() { return std::chrono::milliseconds(0); }

bool EndedByAbort(int exitStatus) { return WIFSIGNALED(exitStatus) && WTERMSIG(exitStatus) == SIGABRT; }

}  // namespace qilsys::test
