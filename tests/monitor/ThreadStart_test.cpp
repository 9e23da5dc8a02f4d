#include <gtest/gtest.h>

#include <system_error>

#include "monitor/Scarcity.h"
#include "monitor/Signals.h"
#include "monitor/ThreadStart_platform.h"

namespace qilsys::test {
namespace {

using monitor::StartThread;

constexpr SignalsTaken OwnFaultsOnly{false, true};

TEST(ThreadStartTest, RunsWhatItIsGiven) {
  bool ran = false;
  StartThread([&] { ran = true; }).join();
  EXPECT_TRUE(ran);
}

class ThreadSignalsTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!SignalsTakenHere()) GTEST_SKIP() << "left out on Windows: it interrupts no thread";
  }
};

TEST_F(ThreadSignalsTest, TheThreadTakesThoseOfItsOwnFaultsOnly) {
  std::optional<SignalsTaken> taken;
  StartThread([&] { taken = SignalsTakenHere(); }).join();
  EXPECT_EQ(taken, OwnFaultsOnly);
}

TEST_F(ThreadSignalsTest, TheCallerTakesWhatItTookBefore) {
  const std::optional<SignalsTaken> before = SignalsTakenHere();
  ASSERT_NE(before, OwnFaultsOnly);
  StartThread([] {}).join();
  EXPECT_EQ(SignalsTakenHere(), before);
  const NoThreads none;
  EXPECT_THROW(StartThread([] {}), std::system_error);
  EXPECT_EQ(SignalsTakenHere(), before);
}

}  // namespace
}  // namespace qilsys::test
