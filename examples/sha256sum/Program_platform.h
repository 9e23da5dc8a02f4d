/// What each system gives a program that reads files of any name and prints bytes.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

/// The program's arguments in UTF-8, without its own name.
std::vector<std::string> Arguments(int argc, char** argv);

/// Opens a file, named in UTF-8, for reading its bytes; null, with errno set, where that fails.
std::FILE* OpenForReading(const std::string& name);

/// From now on bytes pass through standard input and output as they are.
void PassBytesUnchanged();
