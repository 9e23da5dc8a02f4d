#include "demo/ChildProcess.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <gtest/gtest.h>
#include <signal.h>

#include "support/Eventually.h"

namespace {

// A program inherits from the one that starts it that the ends of children are ignored.
TEST(DemoChildProcess, IsSeenToEndWhereEndsWereIgnored) {
  const auto before = signal(SIGCHLD, SIG_IGN);
  demo::ChildProcess child({"--gtest_list_tests"});
  EXPECT_TRUE(qilsys::test::Eventually([&] {
    child.Hear();
    return child.ExitCode().has_value();
  }));
  EXPECT_EQ(child.ExitCode(), 0);
  signal(SIGCHLD, before);
}

}  // namespace
