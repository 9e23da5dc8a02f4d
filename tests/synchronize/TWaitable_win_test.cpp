#include "synchronize/TWaitable_win.h"

#include <gtest/gtest.h>

#include <thread>

#include "RefusedWaits.h"
#include "support/Eventually.h"

namespace {

using qilsys::synchronize::TWaitable;
using qilsys::test::Eventually;
using qilsys::test::RefusedWaits;

constexpr DWORD Times[] = {0, 1, INFINITE};

HANDLE MakeEvent() { return CreateEventW(nullptr, TRUE, FALSE, nullptr); }

// A handle that may set its event but may not wait for it.
HANDLE MakeEventThatMayNotBeWaitedFor() {
  HANDLE handle = nullptr;
  DuplicateHandle(GetCurrentProcess(), MakeEvent(), GetCurrentProcess(), &handle, EVENT_MODIFY_STATE, FALSE,
                  DUPLICATE_CLOSE_SOURCE);
  return handle;
}

void ExpectFailure(TWaitable& waitable, DWORD milliseconds, DWORD error) {
  SetLastError(0);
  EXPECT_EQ(waitable.Wait(milliseconds), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), error);
  EXPECT_EQ(waitable.WaitersForTest(), 0u);
}

TEST(TWaitable, WithoutAHandleEveryWaitFails) {
  TWaitable none(nullptr);
  for (const DWORD time : Times) {
    ExpectFailure(none, time, ERROR_INVALID_HANDLE);
  }
}

TEST(TWaitable, AWaitThatTheHandleDoesNotAllowFails) {
  TWaitable waitable(MakeEventThatMayNotBeWaitedFor());
  for (const DWORD time : Times) {
    ExpectFailure(waitable, time, ERROR_ACCESS_DENIED);
  }
}

TEST(TWaitable, ATestCanMakeWaitsFailThatWouldSleep) {
  TWaitable waitable(MakeEvent());
  const RefusedWaits refused;
  ExpectFailure(waitable, 1, ERROR_ACCESS_DENIED);
  ExpectFailure(waitable, INFINITE, ERROR_ACCESS_DENIED);
  EXPECT_EQ(waitable.Wait(0), WAIT_TIMEOUT);
}

TEST(TWaitable, CountsThoseWhoWaitUntilTheyAreReleasedOrTheirTimeRunsOut) {
  TWaitable waitable(MakeEvent());
  EXPECT_EQ(waitable.Wait(1), WAIT_TIMEOUT);
  EXPECT_EQ(waitable.WaitersForTest(), 0u);
  {
    const std::jthread first([&] { EXPECT_EQ(waitable.Wait(INFINITE), WAIT_OBJECT_0); });
    const std::jthread second([&] { EXPECT_EQ(waitable.Wait(1000000), WAIT_OBJECT_0); });
    EXPECT_TRUE(Eventually([&] { return waitable.WaitersForTest() == 2; }));
    SetEvent(waitable.Get());
  }
  EXPECT_EQ(waitable.WaitersForTest(), 0u);
}

}  // namespace
