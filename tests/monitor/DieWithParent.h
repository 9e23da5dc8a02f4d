/// For processes that a test starts: none outlives the test that is ended from outside.
#pragma once

namespace qilsys::test {

/// Has the system kill this process when the one that started it ends.
void DieWithParent();

}  // namespace qilsys::test
