#include "base/Win32Handle_win.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace {

using qilsys::Win32Handle;

HANDLE MakeEvent() { return CreateEventW(nullptr, TRUE, FALSE, nullptr); }

bool IsKnown(HANDLE handle) {
  DWORD flags = 0;
  return GetHandleInformation(handle, &flags) != FALSE;
}

TEST(Win32Handle, OfNothingIsNotOpen) {
  const Win32Handle none;
  EXPECT_FALSE(none.IsOpen());
  EXPECT_EQ(none.Get(), nullptr);
  EXPECT_FALSE(Win32Handle(nullptr).IsOpen());
}

TEST(Win32Handle, ClosesItsHandleWhenItGoes) {
  const HANDLE raw = MakeEvent();
  {
    const Win32Handle handle(raw);
    EXPECT_TRUE(handle.IsOpen());
    EXPECT_EQ(handle.Get(), raw);
    EXPECT_TRUE(IsKnown(raw));
  }
  EXPECT_FALSE(IsKnown(raw));
}

TEST(Win32Handle, AMoveHandsTheHandleOver) {
  const HANDLE raw = MakeEvent();
  Win32Handle source(raw);
  const Win32Handle target(std::move(source));
  EXPECT_FALSE(source.IsOpen());
  EXPECT_EQ(target.Get(), raw);
  EXPECT_TRUE(IsKnown(raw));
}

TEST(Win32Handle, AnAssignmentClosesWhatWasThere) {
  const HANDLE first = MakeEvent();
  const HANDLE second = MakeEvent();
  Win32Handle handle(first);
  handle = Win32Handle(second);
  EXPECT_EQ(handle.Get(), second);
  EXPECT_FALSE(IsKnown(first));
  EXPECT_TRUE(IsKnown(second));
}

TEST(Win32Handle, AnAssignmentToItselfChangesNothing) {
  const HANDLE raw = MakeEvent();
  Win32Handle handle(raw);
  Win32Handle& same = handle;
  handle = std::move(same);
  EXPECT_EQ(handle.Get(), raw);
  EXPECT_TRUE(IsKnown(raw));
}

TEST(Win32Handle, ResetClosesAndTakesAnother) {
  const HANDLE first = MakeEvent();
  const HANDLE second = MakeEvent();
  Win32Handle handle(first);
  handle.Reset(second);
  EXPECT_EQ(handle.Get(), second);
  EXPECT_FALSE(IsKnown(first));
  handle.Reset();
  EXPECT_FALSE(handle.IsOpen());
  EXPECT_FALSE(IsKnown(second));
}

// Whoever stores the null of a call that has failed reads the reason afterwards.
TEST(Win32Handle, OfNothingLeavesTheLastErrorAlone) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  {
    Win32Handle handle(nullptr);
    handle = Win32Handle();
    handle.Reset();
  }
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
}

TEST(Win32Handle, IsNotCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<Win32Handle>);
  EXPECT_FALSE(std::is_copy_assignable_v<Win32Handle>);
}

}  // namespace
