/// The lines of a walk, and how a test finds one among them.
#pragma once

#include <string>
#include <vector>

#include "diagnostics/StackChain.h"

namespace qilsys::test {

/// A thread's number or an address, as an expression; without classes of characters and counts, which gtest knows not on
/// each system.
#define QILSYS_ID "0x0000\\w\\w\\w\\w\\w\\w\\w\\w\\w\\w\\w\\w"

using Lines = std::vector<std::string>;

/// A Visit that walks. Its argument is the Lines to fill; they begin with its own.
void Collect(void* argument);

/// Those of a walk at the end of the chain.
Lines LinesThrough(Chain* chain);

/// The line of the chain's function of that number; empty where there is none.
std::string LineOf(const Lines& lines, int link);

}  // namespace qilsys::test
