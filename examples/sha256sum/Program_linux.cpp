// The sibling for Windows is Program_win.cpp.
#include "Program_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

std::vector<std::string> Arguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

std::FILE* OpenForReading(const std::string& name) { return std::fopen(name.c_str(), "rb"); }

void PassBytesUnchanged() {}
