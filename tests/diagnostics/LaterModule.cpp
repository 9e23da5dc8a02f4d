// A module that is loaded when walks have begun.
#include <atomic>

#include "diagnostics/StackChain.h"

namespace {

std::atomic<int> g_returned = 0;

}  // namespace

// Found by its name; the build exports it.
extern "C" void CallFromLaterModule(qilsys::test::Visit visit, void* argument) {
  visit(argument);
  ++g_returned;
}
