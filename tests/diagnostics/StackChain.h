/// A chain of calls that is known function by function and line by line. It is built into the test program and into
/// modules of its own, with and without debug information, each time in another namespace.
#pragma once

namespace qilsys::test {

using Visit = void (*)(void* argument);

inline constexpr int ChainLength = 12;
/// Chain1 makes its call in the line behind this one, Chain2 in the next, and so on.
inline constexpr int LineBeforeChain = 100;

/// What the first function of a chain is: it calls the second one, that the third, and the last one calls `visit`.
using Chain = void(Visit visit, void* argument);

/// The same in one function, whose file is "TMEMORY.CPP".
Chain CallFromHiddenFile;

namespace InProgram {
Chain Chain1;
}
namespace InModule {
Chain Chain1;
}
namespace InPlainModule {
Chain Chain1;
}
namespace InSplitModule {
Chain Chain1;
}
namespace InCompressedModule {
Chain Chain1;
}
namespace InCompressedSplitModule {
Chain Chain1;
}
namespace InModuleWithoutTable {
Chain Chain1;
}

}  // namespace qilsys::test
