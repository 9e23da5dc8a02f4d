// Writes the names of its own file and folder, for tests that put this program elsewhere. With an argument it first says
// that it is ready, and waits for a line.
#include <cstdio>

#include "qilsys/TSystem.h"

int main(int count, char**) {
  if (count > 1) {
    std::puts("ready");
    std::fflush(stdout);
    while (std::getchar() != '\n') {
    }
  }
  std::puts(TSystem::ExecutableFilename().GenericString().toStdString().c_str());
  std::puts(TSystem::ExecutablePath().GenericString().toStdString().c_str());
  return 0;
}
