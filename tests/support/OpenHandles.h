/// What a process holds open of the system: a test that compares before and after finds what was never closed.
#pragma once

namespace qilsys::test {

/// The handles of Windows, the file descriptors of Linux. Other threads may move the number.
unsigned int OpenHandles();

/// How many more there may be after any number of threads: the runtime beneath std::thread may keep a few for later. A
/// test that starts threads therefore repeats what it tests more often than that.
inline constexpr unsigned int MostKeptByThreads = 4;

}  // namespace qilsys::test
