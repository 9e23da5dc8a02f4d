#include "qilsys/TThreadPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "PoolTest.h"
#include "monitor/Scarcity.h"
#include "qilsys/TEvent.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "support/RowName.h"

namespace {

using namespace std::chrono_literals;
using AsyncTask::Launch;
using qilsys::test::BusyThreads;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::Eventually;
using qilsys::test::Latch;
using qilsys::test::NoThreads;
using qilsys::test::NoTimeLimit;
using qilsys::test::ProcessPoolTest;
using qilsys::test::RecordedAssertions;
using qilsys::test::RowName;

constexpr auto IfThreadIsFree = TThreadPoolWork::IfThreadIsFree;
constexpr auto Always = TThreadPoolWork::Always;

const CaughtAssertion NotConfigured{"main/thread/TThreadPool", 59, "g_numThreads > 0", 0x425D0794,
                                    "LogicException_LogicAssert_0x425D0794"};
const CaughtAssertion EmptyWork{"main/thread/TThreadPool", 113, "func", 0x05F20444,
                                "LogicException_LogicAssert_0x05F20444"};

// ---- Work ----

TEST(TThreadPool, JoinAllRunsAllThatWaits) {
  TThreadPool pool(2, nullptr, nullptr);
  std::atomic<int> calls{0};
  {
    const BusyThreads busy(pool, 2);
    for (int i = 0; i < 100; ++i) {
      EXPECT_TRUE(pool.AddWork([&] { ++calls; }, Always));
    }
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(pool.GetThreadPoolUseCount(), 102u);
  }
  EXPECT_TRUE(pool.JoinAll(NoTimeLimit));
  EXPECT_EQ(calls, 100);
  EXPECT_EQ(pool.GetThreadPoolUseCount(), 0u);
}

TEST(TThreadPool, TakesAsManyOptionalItemsAsItHasThreadsFromTheStart) {
  TThreadPool pool(3, nullptr, nullptr);
  Latch mayEnd(1);
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(pool.AddWork([&] { mayEnd.Wait(); }, IfThreadIsFree)) << i;
  }
  EXPECT_FALSE(pool.AddWork([] {}, IfThreadIsFree));
  mayEnd.CountDown();
  EXPECT_TRUE(pool.JoinAll(NoTimeLimit));
}

struct KindRow {
  const char* name;
  TThreadPoolWork kind;
  bool isTaken;
};

class BusyPoolTest : public testing::TestWithParam<KindRow> {};

const KindRow Kinds[] = {
    {"IfThreadIsFree", IfThreadIsFree, false},
    {"Always", Always, true},
    {"Two", TThreadPoolWork{2}, false},
    {"Largest", TThreadPoolWork{0xFFFFFFFF}, false},
};

TEST_P(BusyPoolTest, TakesWorkByItsKind) {
  TThreadPool pool(2, nullptr, nullptr);
  std::atomic<int> calls{0};
  {
    const BusyThreads busy(pool, 2);
    EXPECT_EQ(pool.AddWork([&] { ++calls; }, GetParam().kind), GetParam().isTaken);
    EXPECT_EQ(pool.GetThreadPoolUseCount(), GetParam().isTaken ? 3u : 2u);
  }
  EXPECT_TRUE(pool.JoinAll(NoTimeLimit));
  EXPECT_EQ(calls, GetParam().isTaken ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, BusyPoolTest, testing::ValuesIn(Kinds), RowName<KindRow>);

TEST(TThreadPool, QueuedItemsCountForTheNextOptionalOne) {
  TThreadPool pool(2, nullptr, nullptr);
  const BusyThreads busy(pool, 1);
  Latch mayEnd(1);
  EXPECT_TRUE(pool.AddWork([&] { mayEnd.Wait(); }, Always));
  EXPECT_FALSE(pool.AddWork([] {}, IfThreadIsFree));
  mayEnd.CountDown();
  ASSERT_TRUE(Eventually([&] { return pool.GetThreadPoolUseCount() == 1; }));
  EXPECT_TRUE(pool.AddWork([] {}, IfThreadIsFree));
}

TEST(TThreadPool, WhatIsRefusedIsDestroyedWithoutACall) {
  TThreadPool pool(1, nullptr, nullptr);
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> seen = held;
  const BusyThreads busy(pool, 1);
  EXPECT_FALSE(pool.AddWork([held = std::move(held)] { ++*held; }, IfThreadIsFree));
  EXPECT_TRUE(seen.expired());
}

TEST(TThreadPool, AnItemIsDestroyedOnceItNoLongerCounts) {
  TThreadPool pool(1, nullptr, nullptr);
  struct Looking {
    ~Looking() { *m_seen = m_pool->GetThreadPoolUseCount(); }
    TThreadPool* m_pool;
    std::atomic<unsigned long long>* m_seen;
  };
  std::atomic<unsigned long long> seen{99};
  EXPECT_TRUE(pool.AddWork([looking = std::shared_ptr<Looking>(new Looking{&pool, &seen})] {}, Always));
  EXPECT_TRUE(pool.JoinAll(NoTimeLimit));
  EXPECT_EQ(seen, 0u);
}

TEST(TThreadPool, AnEmptyFunctionIsAnAssertion) {
  TThreadPool pool(1, nullptr, nullptr);
  EXPECT_EQ(CatchAssertion([&] { pool.AddWork(nullptr, Always); }), EmptyWork);
  EXPECT_EQ(CatchAssertion([&] { pool.AddWork(nullptr, IfThreadIsFree); }), EmptyWork);
  EXPECT_EQ(pool.GetThreadPoolUseCount(), 0u);
  EXPECT_TRUE(pool.JoinAll(NoTimeLimit)) << "the lock was released";
  EXPECT_EQ(CatchAssertion([&] { EXPECT_FALSE(pool.AddWork(nullptr, Always)); }), CaughtAssertion{})
      << "a closed pool doesn't look";
}

TEST(TThreadPool, AnEmptyFunctionIsRefusedWhereTheHookReturns) {
  TThreadPool pool(1, nullptr, nullptr);
  const RecordedAssertions recorded;
  EXPECT_FALSE(pool.AddWork(nullptr, Always));
  EXPECT_EQ(recorded.All(), std::vector<CaughtAssertion>{EmptyWork});
  Latch hasRun(1);
  EXPECT_TRUE(pool.AddWork([&] { hasRun.CountDown(); }, Always)) << "the thread goes on";
  hasRun.Wait();
}

// ---- Threads ----

TEST(TThreadPool, KnowsItsOwnThreads) {
  TThreadPool pool(2, nullptr, nullptr);
  TThreadPool other(1, nullptr, nullptr);
  EXPECT_EQ(pool.GetNumberOfThreads(), 2u);
  EXPECT_FALSE(pool.IsThreadPoolThread());
  std::atomic<bool> inside{false};
  std::atomic<bool> elsewhere{true};
  EXPECT_TRUE(pool.AddWork([&] { inside = pool.IsThreadPoolThread(); }, Always));
  EXPECT_TRUE(other.AddWork([&] { elsewhere = pool.IsThreadPoolThread(); }, Always));
  EXPECT_TRUE(pool.JoinAll(NoTimeLimit));
  EXPECT_TRUE(other.JoinAll(NoTimeLimit));
  EXPECT_TRUE(inside);
  EXPECT_FALSE(elsewhere);
  EXPECT_EQ(pool.GetNumberOfThreads(), 2u) << "also after they have ended";
}

TEST(TThreadPool, EachThreadCallsTheFunctionsOfItsStartAndItsEnd) {
  std::mutex mutex;
  std::set<std::thread::id> started;
  std::set<std::thread::id> ended;
  std::atomic<TThreadPool*> inside{nullptr};
  std::atomic<int> ofThePool{0};
  const auto note = [&](std::set<std::thread::id>& ids) {
    const std::lock_guard lock(mutex);
    ids.insert(std::this_thread::get_id());
  };
  {
    TThreadPool pool(
        3, [&] { note(started); },
        [&] {
          note(ended);
          ofThePool += inside.load()->IsThreadPoolThread() ? 1 : 0;
        });
    inside = &pool;
  }
  EXPECT_EQ(started.size(), 3u);
  EXPECT_EQ(ended, started);
  EXPECT_EQ(ofThePool, 3);
}

TEST(TThreadPool, HoldsNothingOfItsFunctionsOnceItsThreadsHaveEnded) {
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> seen = held;
  {
    TThreadPool pool(
        4, [held] {}, [held = held] {});
    held.reset();
    EXPECT_FALSE(seen.expired());
  }
  EXPECT_TRUE(seen.expired());
}

// Fails where a pool copies it for one of its threads.
struct FailingOnCopy {
  FailingOnCopy(int copies, std::shared_ptr<int> live) : m_copies(std::make_shared<int>(copies)), m_live(live) {}
  FailingOnCopy(const FailingOnCopy& other) : m_copies(other.m_copies), m_live(other.m_live) {
    if ((*m_copies)-- == 0) throw std::runtime_error("copy");
  }
  FailingOnCopy(FailingOnCopy&&) = default;
  void operator()() const { ADD_FAILURE() << "no thread of a pool that never came to be runs this"; }
  std::shared_ptr<int> m_copies;
  std::shared_ptr<int> m_live;
};

TEST(TThreadPool, AStartThatFailsSendsTheOtherThreadsHome) {
  for (int copies = 0; copies < 4; ++copies) {
    const auto live = std::make_shared<int>(0);
    EXPECT_THROW(TThreadPool(4, FailingOnCopy(copies, live), nullptr), std::runtime_error) << copies;
    EXPECT_TRUE(Eventually([&] { return live.use_count() == 1; })) << copies;
  }
}

TEST(TThreadPool, AThreadThatTheSystemRefusesIsAnError) {
  if (!NoThreads::CanBeHad()) GTEST_SKIP() << "the system has no means to refuse a thread";
  const NoThreads none;
  try {
    TThreadPool(2, nullptr, nullptr);
    ADD_FAILURE() << "a thread was started";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::resource_unavailable_try_again);
  }
}

// ---- The end ----

TEST(TThreadPool, AClosedPoolTakesNothing) {
  TThreadPool pool(1, nullptr, nullptr);
  EXPECT_TRUE(pool.JoinAll(NoTimeLimit));
  EXPECT_FALSE(pool.AddWork([] {}, IfThreadIsFree));
  EXPECT_FALSE(pool.AddWork([] {}, Always));
  EXPECT_FALSE(pool.JoinAll(NoTimeLimit)) << "a second time, at once";
}

TEST(TThreadPool, AJoinWhoseTimeRunsOutLetsThePoolGoWhileWorkGoesOn) {
  auto held = std::make_shared<std::atomic<int>>(0);
  const std::weak_ptr<std::atomic<int>> seen = held;
  Latch mayEnd(1);
  {
    TThreadPool pool(1, nullptr, nullptr);
    EXPECT_TRUE(pool.AddWork([&] { mayEnd.Wait(); }, Always));
    EXPECT_TRUE(pool.AddWork([held] { ++*held; }, Always));
    EXPECT_FALSE(pool.JoinAll(0ms));
    EXPECT_FALSE(pool.JoinAll(NoTimeLimit)) << "it is closed";
  }
  EXPECT_EQ(*held, 0);
  mayEnd.CountDown();
  EXPECT_TRUE(Eventually([&] { return *held == 1; })) << "what was taken runs";
  held.reset();
  EXPECT_TRUE(Eventually([&] { return seen.expired(); }));
}

TEST(TThreadPool, ANegativeTimeIsAnAssertionThatClosesAllTheSame) {
  TThreadPool pool(1, nullptr, nullptr);
  EXPECT_EQ(CatchAssertion([&] { pool.JoinAll(-1ms); }).m_code, 0x65AA68CAu);
  EXPECT_FALSE(pool.AddWork([] {}, Always)) << "and the lock was released";
}

TEST(TThreadPool, OfNoThreadsTakesWorkThatNobodyRuns) {
  TThreadPool pool(0, nullptr, nullptr);
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> seen = held;
  EXPECT_EQ(pool.GetNumberOfThreads(), 0u);
  EXPECT_FALSE(pool.AddWork([] {}, IfThreadIsFree));
  EXPECT_TRUE(pool.AddWork([held = std::move(held)] { ++*held; }, Always));
  EXPECT_FALSE(pool.JoinAll(0ms)) << "nobody is there who could end";
  EXPECT_FALSE(seen.expired()) << "it waits as long as the pool lives";
}

TEST(TThreadPool, WorkThatIsOfferedDuringAJoinWaitsForIts) {
  TThreadPool pool(1, nullptr, nullptr);
  std::jthread joiner;
  std::jthread offerer;
  std::atomic<bool> hasJoined{false};
  std::atomic<bool> wasTooEarly{false};
  std::atomic<bool> isTaken{true};
  Latch isJoining(1);
  {
    BusyThreads busy(pool, 1);
    joiner = std::jthread([&] {
      isJoining.CountDown();
      hasJoined = pool.JoinAll(NoTimeLimit);
    });
    isJoining.Wait();
    // Ends when the pool has been closed: until then items are taken.
    offerer = std::jthread([&] {
      while (pool.AddWork([] {}, Always)) std::this_thread::yield();
      isTaken = false;
      wasTooEarly = pool.GetThreadPoolUseCount() != 0;
    });
    EXPECT_TRUE(isTaken);
  }
  offerer.join();
  joiner.join();
  EXPECT_TRUE(hasJoined);
  EXPECT_FALSE(isTaken);
  EXPECT_FALSE(wasTooEarly) << "the answer comes when all work has ended";
}

// ---- The pool of the process ----

using ProcessThreadPoolTest = ProcessPoolTest;

TEST_F(ProcessThreadPoolTest, IsAnAssertionBeforeItIsConfigured) {
  EXPECT_EQ(CatchAssertion([] { TThreadPool::Get(); }), NotConfigured);
  EXPECT_EQ(CatchAssertion([] { AsyncTask::ScheduleOnThreadPool([] {}, Launch::Pool); }), NotConfigured);
  TThreadPool::Configure(0, nullptr, nullptr, nullptr);
  EXPECT_EQ(CatchAssertion([] { TThreadPool::Get(); }), NotConfigured);
  TThreadPool::Configure(1, nullptr, nullptr, nullptr);
  EXPECT_EQ(CatchAssertion([] { std::thread([] { TThreadPool::Get(); }).join(); }), CaughtAssertion{})
      << "the mutex was released";
}

TEST_F(ProcessThreadPoolTest, IsMadeOnceWithAWordInTheLog) {
  std::vector<TStringCore> log;
  std::atomic<int> started{0};
  std::atomic<int> ended{0};
  TThreadPool::Configure(
      3, [&] { ++started; }, [&] { ++ended; }, [&](TStringCore line) { log.push_back(std::move(line)); });
  EXPECT_TRUE(log.empty());
  TThreadPool& pool = TThreadPool::Get();
  EXPECT_EQ(&TThreadPool::Get(), &pool);
  EXPECT_EQ(pool.GetNumberOfThreads(), 3u);
  EXPECT_EQ(log, std::vector<TStringCore>{"Started thread pool with: 3 threads"});
  TThreadPool::Configure(5, nullptr, nullptr, nullptr);
  EXPECT_EQ(TThreadPool::Get().GetNumberOfThreads(), 3u) << "it exists already";
  EXPECT_TRUE(TThreadPool::Shutdown(NoTimeLimit));
  EXPECT_EQ(started, 3);
  EXPECT_EQ(ended, 3);
  EXPECT_EQ(TThreadPool::Get().GetNumberOfThreads(), 5u) << "made anew";
  EXPECT_EQ(log.size(), 1u);
}

TEST_F(ProcessThreadPoolTest, ShutdownWithoutOneIsTrue) {
  EXPECT_TRUE(TThreadPool::Shutdown(0ms));
  EXPECT_TRUE(TThreadPool::Shutdown(NoTimeLimit));
}

TEST_F(ProcessThreadPoolTest, ShutdownWhoseTimeRunsOutDestroysItAllTheSame) {
  TThreadPool::Configure(1, nullptr, nullptr, nullptr);
  Latch mayEnd(1);
  std::atomic<bool> hasEnded{false};
  TThreadPool::Get().AddWork([&] { mayEnd.Wait(), hasEnded = true; }, Always);
  EXPECT_FALSE(TThreadPool::Shutdown(0ms));
  EXPECT_TRUE(TThreadPool::Shutdown(0ms)) << "there is none any more";
  mayEnd.CountDown();
  EXPECT_TRUE(Eventually([&] { return hasEnded.load(); }));
}

TEST_F(ProcessThreadPoolTest, ThreadsThatCantBeStartedLeaveNone) {
  if (!NoThreads::CanBeHad()) GTEST_SKIP() << "the system has no means to refuse a thread";
  TThreadPool::Configure(1, nullptr, nullptr, nullptr);
  {
    const NoThreads none;
    EXPECT_THROW(TThreadPool::Get(), std::system_error);
  }
  EXPECT_EQ(TThreadPool::Get().GetNumberOfThreads(), 1u);
}

TEST_F(ProcessThreadPoolTest, ATestMayPutItsOwnInPlace) {
  TThreadPool own(2, nullptr, nullptr);
  EXPECT_EQ(TestHooks::SwapThreadPool(&own), nullptr);
  EXPECT_EQ(&TThreadPool::Get(), &own);
  EXPECT_EQ(TestHooks::SwapThreadPool(nullptr), &own);
  EXPECT_EQ(CatchAssertion([] { TThreadPool::Get(); }), NotConfigured);
}

struct PolicyRow {
  const char* name;
  Launch policy;
  bool isTaken;
};

class SchedulingTest : public ProcessPoolTest, public testing::WithParamInterface<PolicyRow> {};

const PolicyRow Policies[] = {
    {"Zero", Launch{0}, false},  {"One", Launch{1}, false},    {"Two", Launch{2}, false},
    {"Three", Launch{3}, false}, {"Four", Launch{4}, true},    {"Five", Launch{5}, true},
    {"Six", Launch{6}, false},   {"Pool", Launch::Pool, true}, {"PoolOrCaller", Launch::PoolOrCaller, false},
};

TEST_P(SchedulingTest, WorkIsTakenByABusyPoolUnderThePoliciesFourAndFive) {
  TThreadPool::Configure(1, nullptr, nullptr, nullptr);
  std::atomic<int> calls{0};
  {
    const BusyThreads busy(TThreadPool::Get(), 1);
    EXPECT_EQ(AsyncTask::ScheduleOnThreadPool([&] { ++calls; }, GetParam().policy), GetParam().isTaken);
  }
  EXPECT_TRUE(TThreadPool::Shutdown(NoTimeLimit));
  EXPECT_EQ(calls, GetParam().isTaken ? 1 : 0);
}

TEST_P(SchedulingTest, WorkIsTakenByAFreePoolUnderAnyPolicy) {
  TThreadPool::Configure(1, nullptr, nullptr, nullptr);
  std::atomic<int> calls{0};
  EXPECT_TRUE(AsyncTask::ScheduleOnThreadPool([&] { ++calls; }, GetParam().policy));
  EXPECT_TRUE(TThreadPool::Shutdown(NoTimeLimit));
  EXPECT_EQ(calls, 1);
}

INSTANTIATE_TEST_SUITE_P(Policies, SchedulingTest, testing::ValuesIn(Policies), RowName<PolicyRow>);

}  // namespace
