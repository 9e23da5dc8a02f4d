// Crashes in the way that its first argument names; what a handler makes of it stands in the folder that the second names.
#include <qilsys/qilsys.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "crash_handler/CrashHandler.h"

// Not in a namespace without a name, so that their names can be read in stacks.

void WriteToNull() {
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
}

// The compiler must not see that it calls itself without end. It takes more than a page at a time, so that the
// compiler looks for each whether it is there, before it moves the stack.
int UseUpTheStack(int depth);
int (*volatile g_next)(int) = &UseUpTheStack;

int UseUpTheStack(int depth) {
  volatile char room[8192] = {};
  room[depth % 8192] = 1;
  if (depth < 0) return 0;
  return g_next(depth + 1) + room[0];
}

void Abort() { std::abort(); }

void ThrowAndCatchNowhere() { throw std::runtime_error("nobody catches this"); }

namespace {

struct Way {
  std::string_view name;
  void (*crash)();
};

constexpr Way Ways[] = {
    {"null-write", &WriteToNull},
    {"stack-overflow", [] { UseUpTheStack(0); }},
    {"abort", &Abort},
    {"exception", &ThrowAndCatchNowhere},
};

int Crash(std::string_view name) {
  for (const Way& way : Ways) {
    if (way.name == name) way.crash();
  }
  std::fputs("usage: qilsys_crash_handler null-write|stack-overflow|abort|exception FOLDER\n", stderr);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (const auto helped = crash_handler::RunAsHelper(words)) return *helped;
  if (words.size() == 2 && !crash_handler::Install(words[1])) return 1;
  return Crash(words.size() == 2 ? words[0] : "");
}
