#include "demo/ChildProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "support/Eventually.h"

namespace {

// This very program, which lists its tests and ends.
const std::vector<std::string> ThatEnds = {"--gtest_list_tests"};

TEST(DemoChildProcess, IsHeardAndSeenToEnd) {
  demo::ChildProcess child(ThatEnds);
  std::vector<std::string> heard;
  EXPECT_TRUE(qilsys::test::Eventually([&] {
    const bool hasEnded = child.ExitCode().has_value();
    for (std::string& line : child.Hear()) heard.push_back(std::move(line));
    return hasEnded;
  }));
  EXPECT_EQ(child.ExitCode(), 0);
  EXPECT_NE(std::find(heard.begin(), heard.end(), "DemoChildProcess."), heard.end());
}

}  // namespace
