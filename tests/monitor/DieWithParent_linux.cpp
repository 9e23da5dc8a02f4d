// The sibling for Windows is DieWithParent_win.cpp.
#include "monitor/DieWithParent.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <signal.h>
#include <sys/prctl.h>

void qilsys::test::DieWithParent() { prctl(PR_SET_PDEATHSIG, SIGKILL); }
