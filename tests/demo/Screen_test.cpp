#include "demo/Screen.h"

#include <gtest/gtest.h>

namespace {

TEST(DemoScreen, ALiveTableNeedsAllItsRows) {
  // A title, the head, six members and the group, the progress, eight events, three blanks, and the row of the cursor.
  EXPECT_FALSE(demo::FitsLiveTable(10));
  EXPECT_FALSE(demo::FitsLiveTable(21));
  EXPECT_TRUE(demo::FitsLiveTable(22));
  EXPECT_TRUE(demo::FitsLiveTable(24)) << "the usual terminal";
}

}  // namespace
