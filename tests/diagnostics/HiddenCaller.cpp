// A function of a file that the walker hides.
#include <atomic>

#include "cpu/Compiler.h"
#include "diagnostics/StackChain.h"

namespace qilsys::test {

namespace {

std::atomic<int> g_returned = 0;

}  // namespace

#line 7 "/somewhere/TMEMORY.CPP"
QILSYS_NOINLINE void CallFromHiddenFile(Visit visit, void* argument) {
  visit(argument);
  ++g_returned;
}

}  // namespace qilsys::test
