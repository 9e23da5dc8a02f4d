#include "synchronize/LockCount_win.h"

#include <gtest/gtest.h>

#include <string>

#include "support/RowName.h"

namespace {

using qilsys::synchronize::HasWaiters;
using qilsys::test::RowName;
struct LockCountCase {
  const char* name;
  LONG lockCount;
  LONG entries;
  bool hasWaiters;
};

class LockCountTest : public testing::TestWithParam<LockCountCase> {};

// -22 with five threads that wait is the example of the debugger's documentation.
INSTANTIATE_TEST_SUITE_P(
    Layouts, LockCountTest,
    testing::Values(LockCountCase{"Free", -1, 0, false}, LockCountCase{"Held", -2, 1, false},
                    LockCountCase{"HeldTwice", -2, 2, false}, LockCountCase{"OneWaits", -6, 1, true},
                    LockCountCase{"FreeAndOneWasWoken", -7, 0, true},
                    LockCountCase{"TakenFromOneWhoWasWoken", -8, 1, true}, LockCountCase{"FiveWait", -22, 1, true},
                    LockCountCase{"PlainHeld", 0, 1, false}, LockCountCase{"PlainHeldTwice", 1, 2, false},
                    LockCountCase{"PlainOneWaits", 1, 1, true}, LockCountCase{"PlainHeldTwiceAndOneWaits", 2, 2, true}),
    RowName<LockCountCase>);

TEST_P(LockCountTest, SaysWhetherAThreadWaits) {
  EXPECT_EQ(HasWaiters(GetParam().lockCount, GetParam().entries), GetParam().hasWaiters);
}

}  // namespace
