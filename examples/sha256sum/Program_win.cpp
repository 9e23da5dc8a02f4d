// The sibling for Linux is Program_linux.cpp.
#include "Program_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <fcntl.h>
#include <io.h>
#include <qilsys/TStringCore.h>
#include <windows.h>

#include <shellapi.h>

// The narrow arguments have lost what the code page lacks.
std::vector<std::string> Arguments(int, char**) {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(TStringCore(words[i]).toStdString());
  LocalFree(words);
  return arguments;
}

std::FILE* OpenForReading(const std::string& name) { return _wfopen(TStringCore::fromStdString(name), L"rb"); }

void PassBytesUnchanged() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}
