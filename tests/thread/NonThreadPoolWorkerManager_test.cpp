#include "qilsys/NonThreadPoolWorkerManager.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <vector>

#include "PoolTest.h"
#include "monitor/Scarcity.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"

namespace {

using namespace std::chrono_literals;
using qilsys::test::CatchAssertion;
using qilsys::test::Eventually;
using qilsys::test::Latch;
using qilsys::test::NoThreads;
using qilsys::test::NoTimeLimit;
using qilsys::test::ProcessPoolTest;

TEST(NonThreadPoolWorkerManager, RunsEachTaskOnAThreadOfItsOwn) {
  NonThreadPoolWorkerManager manager(nullptr, nullptr);
  // No task ends before all have begun.
  constexpr int Tasks = 5;
  Latch haveMet(Tasks);
  std::atomic<int> calls{0};
  for (int i = 0; i < Tasks; ++i) {
    manager.RunTask([&, caller = std::this_thread::get_id()] {
      EXPECT_NE(std::this_thread::get_id(), caller);
      haveMet.CountDown();
      haveMet.Wait();
      ++calls;
    });
  }
  EXPECT_TRUE(manager.Close(NoTimeLimit));
  EXPECT_EQ(calls, Tasks);
}

TEST(NonThreadPoolWorkerManager, CountsTheThreadsWhoseTaskHasNotEnded) {
  NonThreadPoolWorkerManager manager(nullptr, nullptr);
  EXPECT_EQ(manager.GetThreadCount(), 0u);
  Latch mayEnd(1);
  manager.RunTask([&] { mayEnd.Wait(); });
  manager.RunTask([&] { mayEnd.Wait(); });
  EXPECT_EQ(manager.GetThreadCount(), 2u);
  mayEnd.CountDown();
  EXPECT_TRUE(Eventually([&] { return manager.GetThreadCount() == 0; }));
}

TEST(NonThreadPoolWorkerManager, EachThreadCallsItsFunctionsBeforeAndAfterItsTask) {
  std::vector<int> order;
  NonThreadPoolWorkerManager manager([&] { order.push_back(1); }, [&] { order.push_back(3); });
  manager.RunTask([&] { order.push_back(2); });
  EXPECT_TRUE(manager.Close(NoTimeLimit));
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(NonThreadPoolWorkerManager, HoldsNothingOnceItsThreadsHaveEnded) {
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> seen = held;
  {
    NonThreadPoolWorkerManager manager([held] {}, [held] {});
    manager.RunTask([held] {});
    held.reset();
  }
  EXPECT_TRUE(seen.expired());
}

TEST(NonThreadPoolWorkerManager, CloseWithoutThreadsIsTrueAtOnce) {
  NonThreadPoolWorkerManager manager(nullptr, nullptr);
  EXPECT_TRUE(manager.Close(0ms));
  EXPECT_TRUE(manager.Close(NoTimeLimit)) << "again";
}

TEST(NonThreadPoolWorkerManager, ClosedItDropsTasks) {
  NonThreadPoolWorkerManager manager(nullptr, nullptr);
  manager.Close(0ms);
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> seen = held;
  manager.RunTask([held = std::move(held)] { ADD_FAILURE(); });
  EXPECT_TRUE(seen.expired());
  EXPECT_EQ(manager.GetThreadCount(), 0u);
}

TEST(NonThreadPoolWorkerManager, ACloseWhoseTimeRunsOutMayBeTriedAgain) {
  NonThreadPoolWorkerManager manager(nullptr, nullptr);
  Latch mayEnd(1);
  manager.RunTask([&] { mayEnd.Wait(); });
  EXPECT_FALSE(manager.Close(0ms));
  mayEnd.CountDown();
  EXPECT_TRUE(manager.Close(NoTimeLimit));
}

TEST(NonThreadPoolWorkerManager, ItsEndWaitsForItsThreads) {
  std::atomic<bool> hasEnded{false};
  Latch mayEnd(1);
  std::jthread releaser;
  {
    NonThreadPoolWorkerManager manager(nullptr, nullptr);
    manager.RunTask([&] {
      mayEnd.Wait();
      hasEnded = true;
    });
    releaser = std::jthread([&] { mayEnd.CountDown(); });
  }
  EXPECT_TRUE(hasEnded);
}

TEST(NonThreadPoolWorkerManager, ItsEndAfterACloseWaitsForNothing) {
  std::atomic<bool> hasEnded{false};
  Latch mayEnd(1);
  {
    NonThreadPoolWorkerManager manager(nullptr, nullptr);
    manager.RunTask([&] {
      mayEnd.Wait();
      hasEnded = true;
    });
    EXPECT_FALSE(manager.Close(0ms));
  }
  EXPECT_FALSE(hasEnded);
  mayEnd.CountDown();
  EXPECT_TRUE(Eventually([&] { return hasEnded.load(); }));
}

TEST(NonThreadPoolWorkerManager, AThreadThatTheSystemRefusesIsNotCounted) {
  if (!NoThreads::CanBeHad()) GTEST_SKIP() << "the system has no means to refuse a thread";
  NonThreadPoolWorkerManager manager(nullptr, nullptr);
  {
    const NoThreads none;
    EXPECT_THROW(manager.RunTask([] {}), std::system_error);
  }
  EXPECT_EQ(manager.GetThreadCount(), 0u);
  EXPECT_TRUE(manager.Close(0ms));
}

TEST(NonThreadPoolWorkerManager, AFailureOnTheWayToTheThreadIsNotCounted) {
  struct Failing {
    Failing() = default;
    Failing(const Failing&) { throw std::runtime_error("copy"); }
    Failing(Failing&&) = default;
    void operator()() const {}
  };
  NonThreadPoolWorkerManager manager(Failing(), nullptr);
  EXPECT_THROW(manager.RunTask([] { ADD_FAILURE(); }), std::runtime_error);
  EXPECT_EQ(manager.GetThreadCount(), 0u);
  EXPECT_TRUE(manager.Close(0ms));
}

TEST(NonThreadPoolWorkerManager, ANegativeTimeIsAnAssertionWhereThereIsSomethingToWaitFor) {
  NonThreadPoolWorkerManager manager(nullptr, nullptr);
  EXPECT_TRUE(manager.Close(-1ms));
  NonThreadPoolWorkerManager busy(nullptr, nullptr);
  Latch mayEnd(1);
  busy.RunTask([&] { mayEnd.Wait(); });
  EXPECT_EQ(CatchAssertion([&] { busy.Close(-1ms); }).m_code, 0x65AA68CAu);
  mayEnd.CountDown();
  EXPECT_TRUE(busy.Close(NoTimeLimit));
}

// ---- The manager of the process ----

using ProcessManagerTest = ProcessPoolTest;

TEST_F(ProcessManagerTest, IsMadeOnFirstUseWithTheFunctionsOfThePool) {
  std::vector<int> order;
  TThreadPool::Configure(
      0, [&] { order.push_back(1); }, [&] { order.push_back(3); }, nullptr);
  AsyncTask::RunOnDedicatedThread([&] { order.push_back(2); });
  NonThreadPoolWorkerManager& manager = NonThreadPoolWorkerManager::Get();
  EXPECT_EQ(&NonThreadPoolWorkerManager::Get(), &manager);
  EXPECT_TRUE(NonThreadPoolWorkerManager::Shutdown(NoTimeLimit));
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
  AsyncTask::RunOnDedicatedThread([&] { order.push_back(4); });
  EXPECT_TRUE(NonThreadPoolWorkerManager::Shutdown(NoTimeLimit)) << "made anew";
  EXPECT_EQ(order.size(), 6u);
}

TEST_F(ProcessManagerTest, ShutdownWithoutOneIsTrue) { EXPECT_TRUE(NonThreadPoolWorkerManager::Shutdown(0ms)); }

TEST_F(ProcessManagerTest, ShutdownWhoseTimeRunsOutDestroysItAllTheSame) {
  Latch mayEnd(1);
  std::atomic<bool> hasEnded{false};
  AsyncTask::RunOnDedicatedThread([&] { mayEnd.Wait(), hasEnded = true; });
  EXPECT_FALSE(NonThreadPoolWorkerManager::Shutdown(0ms));
  EXPECT_TRUE(NonThreadPoolWorkerManager::Shutdown(0ms)) << "there is none any more";
  mayEnd.CountDown();
  EXPECT_TRUE(Eventually([&] { return hasEnded.load(); }));
}

TEST_F(ProcessManagerTest, ATestMayPutItsOwnInPlace) {
  NonThreadPoolWorkerManager own(nullptr, nullptr);
  EXPECT_EQ(TestHooks::SwapNonThreadPoolManager(&own), nullptr);
  EXPECT_EQ(&NonThreadPoolWorkerManager::Get(), &own);
  EXPECT_EQ(TestHooks::SwapNonThreadPoolManager(nullptr), &own);
}

}  // namespace
