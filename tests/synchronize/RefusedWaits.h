/// A thread whose waits the system refuses.
#pragma once

#include "support/SystemError.h"
#include "synchronize/SynchronizeForTest.h"

namespace qilsys::test {

/// While it lives, every wait of this thread that would sleep fails with SystemError::Refused.
class [[nodiscard]] RefusedWaits {
 public:
  RefusedWaits() { SynchronizeForTest::FailWaits(NumberOf(SystemError::Refused)); }
  RefusedWaits(const RefusedWaits&) = delete;
  RefusedWaits& operator=(const RefusedWaits&) = delete;
  ~RefusedWaits() { SynchronizeForTest::FailWaits(0); }
};

}  // namespace qilsys::test
