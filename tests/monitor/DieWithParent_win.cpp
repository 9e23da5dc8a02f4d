// The sibling for Linux is DieWithParent_linux.cpp.
#include "monitor/DieWithParent.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

// The job that the parent puts its children into does it.
void qilsys::test::DieWithParent() {}
