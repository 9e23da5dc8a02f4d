/// What a process holds open of the system: a test that compares before and after finds what was never closed.
#pragma once

namespace qilsys::test {

/// The handles of Windows, the file descriptors of Linux. Other threads may move the number.
unsigned int OpenHandles();

}  // namespace qilsys::test
