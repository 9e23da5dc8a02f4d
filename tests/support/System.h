/// On which system the tests run, and how a test is left out where that system, or its stand-in, lacks something.
#pragma once

#include <gtest/gtest.h>

#include <chrono>

namespace qilsys::test {

/// True under Wine, which stands in for Windows and has gaps of its own. The environment variable QILSYS_REAL_WINDOWS
/// makes it false anywhere.
bool HasGapsOfWine();

/// By how much the system may end a wait too soon: it may count in ticks, and the first one comes when it will.
std::chrono::milliseconds TickOfWaits();

/// For EXPECT_EXIT: whether that is how a process ends by std::abort.
bool EndedByAbort(int exitStatus);

}  // namespace qilsys::test

/// Leaves the test out where Wine cannot do what Windows does. The reason names what is missing.
#define QILSYS_SKIP_UNDER_WINE(reason)                 \
  if (qilsys::test::HasGapsOfWine()) {                 \
    GTEST_SKIP() << "left out under Wine: " << reason; \
  }                                                    \
  static_assert(true)
