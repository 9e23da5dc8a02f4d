// One chain, in the namespace that the build says.
#include "diagnostics/StackChain.h"

#include <atomic>

#include "cpu/Compiler.h"

namespace qilsys::test::QILSYS_CHAIN {

// What is done after a call keeps it from becoming a jump.
std::atomic<int> g_returned = 0;

#define QILSYS_LINK(from, to)                              \
  QILSYS_NOINLINE void from(Visit visit, void* argument) { \
    to;                                                    \
    ++g_returned;                                          \
  }

Chain Chain1, Chain2, Chain3, Chain4, Chain5, Chain6, Chain7, Chain8, Chain9, Chain10, Chain11, Chain12;

// clang-format off
#line 101
QILSYS_LINK(Chain1, Chain2(visit, argument))
QILSYS_LINK(Chain2, Chain3(visit, argument))
QILSYS_LINK(Chain3, Chain4(visit, argument))
QILSYS_LINK(Chain4, Chain5(visit, argument))
QILSYS_LINK(Chain5, Chain6(visit, argument))
QILSYS_LINK(Chain6, Chain7(visit, argument))
QILSYS_LINK(Chain7, Chain8(visit, argument))
QILSYS_LINK(Chain8, Chain9(visit, argument))
QILSYS_LINK(Chain9, Chain10(visit, argument))
QILSYS_LINK(Chain10, Chain11(visit, argument))
QILSYS_LINK(Chain11, Chain12(visit, argument))
QILSYS_LINK(Chain12, visit(argument))
// clang-format on

}  // namespace qilsys::test::QILSYS_CHAIN
