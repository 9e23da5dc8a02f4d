#include "synchronize/TWaitQueue_linux.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>
#include <vector>

#include "support/Eventually.h"
#include "synchronize/SynchronizeForTest.h"

namespace {

using qilsys::synchronize::FutexResult;
using qilsys::synchronize::TDeadline;
using qilsys::synchronize::TFutexGuard;
using qilsys::synchronize::TFutexLock;
using qilsys::synchronize::TWaiter;
using qilsys::synchronize::TWaitQueue;
using qilsys::test::Eventually;

class TWaitQueueTest : public testing::Test {
 protected:
  FutexResult Wait(const TDeadline& deadline) {
    TWaiter waiter;
    {
      const TFutexGuard guard(m_lock);
      m_queue.Add(waiter);
    }
    return m_queue.Wait(waiter, m_lock, deadline);
  }

  unsigned int Size() {
    const TFutexGuard guard(m_lock);
    return m_queue.SizeForTest();
  }

  TWaiter* TakeFirst() {
    const TFutexGuard guard(m_lock);
    return m_queue.TakeFirst();
  }

  TWaiter* TakeAll() {
    const TFutexGuard guard(m_lock);
    return m_queue.TakeAll();
  }

  // Starts a thread that waits, and returns once it stands in the queue.
  std::jthread StartWaiter(std::vector<int>& order, int name) {
    const unsigned int before = Size();
    std::jthread thread([this, &order, name] {
      Wait(TDeadline::Never());
      const TFutexGuard guard(m_orderLock);
      order.push_back(name);
    });
    EXPECT_TRUE(Eventually([&] { return Size() == before + 1; }));
    return thread;
  }

  TFutexLock m_lock;
  TFutexLock m_orderLock;
  TWaitQueue m_queue;
};

TEST_F(TWaitQueueTest, AnEmptyQueueGivesNobodyAndReleasingNobodyIsNothing) {
  EXPECT_EQ(m_queue.TakeFirst(), nullptr);
  EXPECT_EQ(m_queue.TakeAll(), nullptr);
  TWaitQueue::Release(nullptr);
}

TEST_F(TWaitQueueTest, AReleaseBeforeTheSleepIsNotMissed) {
  TWaiter waiter;
  m_queue.Add(waiter);
  TWaitQueue::Release(m_queue.TakeFirst());
  EXPECT_EQ(m_queue.Wait(waiter, m_lock, TDeadline::Never()), FutexResult::Woken);
}

TEST_F(TWaitQueueTest, AReleaseWinsOverATimeThatHasRunOut) {
  TWaiter waiter;
  m_queue.Add(waiter);
  TWaitQueue::Release(m_queue.TakeFirst());
  EXPECT_EQ(m_queue.Wait(waiter, m_lock, TDeadline::After(0)), FutexResult::Woken);
}

TEST_F(TWaitQueueTest, TimeRunsOutAndTheQueueForgetsTheThread) {
  EXPECT_EQ(Wait(TDeadline::After(1)), FutexResult::TimedOut);
  EXPECT_EQ(Size(), 0u);
}

TEST_F(TWaitQueueTest, AWaitThatFailsForgetsTheThreadAndKeepsTheReason) {
  SynchronizeForTest::FailWaits(EPERM);
  const FutexResult result = Wait(TDeadline::Never());
  const int error = errno;
  SynchronizeForTest::FailWaits(0);
  EXPECT_EQ(result, FutexResult::Failed);
  EXPECT_EQ(error, EPERM);
  EXPECT_EQ(Size(), 0u);
}

// Its time has run out, but before it could leave the queue it was chosen: it must not go before the release.
TEST_F(TWaitQueueTest, AThreadThatWasTakenOutWaitsForItsRelease) {
  TWaiter waiter;
  FutexResult result = FutexResult::Failed;
  m_lock.Lock();
  m_queue.Add(waiter);
  std::jthread thread([&] { result = m_queue.Wait(waiter, m_lock, TDeadline::After(0)); });
  ASSERT_TRUE(Eventually([&] { return m_lock.IsContendedForTest(); }));
  TWaiter* const taken = m_queue.TakeFirst();
  m_lock.Unlock();
  TWaitQueue::Release(taken);
  thread.join();
  EXPECT_EQ(result, FutexResult::Woken);
}

TEST_F(TWaitQueueTest, TakeFirstReleasesInTheOrderOfArrival) {
  std::vector<int> order;
  std::vector<std::jthread> threads;
  for (int name = 0; name < 3; ++name) {
    threads.push_back(StartWaiter(order, name));
  }
  for (std::jthread& thread : threads) {
    TWaitQueue::Release(TakeFirst());
    thread.join();
  }
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST_F(TWaitQueueTest, TakeAllReleasesEveryoneThatWaits) {
  std::vector<int> order;
  {
    std::vector<std::jthread> threads;
    for (int name = 0; name < 3; ++name) {
      threads.push_back(StartWaiter(order, name));
    }
    TWaitQueue::Release(TakeAll());
  }
  EXPECT_EQ(order.size(), 3u);
  EXPECT_EQ(Size(), 0u);
}

TEST_F(TWaitQueueTest, AThreadInTheMiddleCanLeave) {
  std::vector<int> order;
  std::jthread first = StartWaiter(order, 0);
  EXPECT_EQ(Wait(TDeadline::After(1)), FutexResult::TimedOut);
  std::jthread last = StartWaiter(order, 1);
  TWaitQueue::Release(TakeFirst());
  first.join();
  TWaitQueue::Release(TakeFirst());
  last.join();
  EXPECT_EQ(order, (std::vector<int>{0, 1}));
}

}  // namespace
