/// For tests that release threads only after these have arrived in their wait.
#pragma once

#include <chrono>

#include "support/Eventually.h"
#include "synchronize/SynchronizeForTest.h"

namespace qilsys::test {

/// Runs `attempt` until it is true. Where a thread that is counted has arrived, it must be true at once; else a thread
/// may be late, which an attempt can't tell, and so there are more of them. `attempt` is given its patience, and must
/// let all its threads go whatever came of it.
template <class Attempt>
bool OnceAllHaveArrived(Attempt attempt) {
  if (SynchronizeForTest::OwnsQueues) {
    return attempt(std::chrono::milliseconds(Patience));
  }
  for (int i = 0; i < 20; ++i) {
    if (attempt(std::chrono::milliseconds(1000))) {
      return true;
    }
  }
  return false;
}

}  // namespace qilsys::test
