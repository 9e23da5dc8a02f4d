#include "qilsys/TSemaphore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Arrival.h"
#include "RefusedWaits.h"
#include "qilsys/QuillonException.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "support/RowName.h"
#include "support/System.h"
#include "support/SystemError.h"
#include "synchronize/NoLimit.h"
#include "synchronize/SynchronizeForTest.h"

namespace {

using qilsys::synchronize::NoLimit;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::Eventually;
using qilsys::test::NumberOf;
using qilsys::test::OnceAllHaveArrived;
using qilsys::test::RefusedWaits;
using qilsys::test::RowName;
using qilsys::test::SystemError;
using qilsys::test::TickOfWaits;
using SemaphorePtr = RefCntPtr<TSemaphore>;
using ScopePtr = RefCntPtr<TSemaphoreScope>;

constexpr unsigned int Maximum = 0x7FFFFFFF;

struct Failure {
  const char* what;
  SystemError error;
  unsigned int code;
  const char* codeName;
};

template <class Action>
void ExpectFailure(Action action, const Failure& expected) {
  try {
    action();
    ADD_FAILURE() << "must raise";
  } catch (const QuillonException& e) {
    const std::string message = expected.what + std::string(": error=") + std::to_string(NumberOf(expected.error));
    EXPECT_EQ(e.GetMessagesFront().toStdString(), message);
    ASSERT_EQ(e.GetRedactedMessages().size(), 1u);
    EXPECT_EQ(e.GetRedactedMessages().front().toStdString(), message);
    EXPECT_EQ(e.GetErrorCode(), expected.code);
    EXPECT_EQ(e.GetErrorName().toStdString(), expected.codeName);
    EXPECT_EQ(e.GetErrorSource(), TError::System);
    EXPECT_EQ(e.GetErrorInfo().GetStatusCode(), grpc::StatusCode::UNKNOWN);
  }
}

TEST(TSemaphore, OfZeroGivesNothingUntilARelease) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  EXPECT_FALSE(semaphore->TryAcquire());
  EXPECT_FALSE(semaphore->Acquire(0));
  semaphore->Release();
  EXPECT_TRUE(semaphore->TryAcquire());
  EXPECT_FALSE(semaphore->TryAcquire());
}

TEST(TSemaphore, GivesAsManyUnitsAsItHas) {
  const SemaphorePtr semaphore = TSemaphore::Construct(3);
  EXPECT_TRUE(semaphore->TryAcquire());
  EXPECT_TRUE(semaphore->Acquire(NoLimit));
  semaphore->Acquire();
  EXPECT_FALSE(semaphore->TryAcquire());
}

TEST(TSemaphore, BelongsToTheFirstPointer) { EXPECT_EQ(TSemaphore::Construct(1)->UseCount(), 1); }

TEST(TSemaphore, TimeRunsOutNotTooSoon) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(semaphore->Acquire(40));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(40) - TickOfWaits());
  EXPECT_EQ(SynchronizeForTest::Waiters(*semaphore), 0u);
}

struct AcquireCase {
  const char* name;
  bool (*acquire)(TSemaphore& semaphore);
};

class TSemaphoreWaitTest : public testing::TestWithParam<AcquireCase> {};

INSTANTIATE_TEST_SUITE_P(
    Forms, TSemaphoreWaitTest,
    testing::Values(AcquireCase{"Unlimited",
                                [](TSemaphore& semaphore) {
                                  semaphore.Acquire();
                                  return true;
                                }},
                    AcquireCase{"TheLimitItself", [](TSemaphore& semaphore) { return semaphore.Acquire(NoLimit); }},
                    AcquireCase{"JustBelowTheLimit",
                                [](TSemaphore& semaphore) { return semaphore.Acquire(NoLimit - 1); }}),
    RowName<AcquireCase>);

TEST_P(TSemaphoreWaitTest, WaitsForARelease) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  bool result = false;
  {
    std::jthread thread([&] { result = GetParam().acquire(*semaphore); });
    ASSERT_TRUE(Eventually([&] { return SynchronizeForTest::Waiters(*semaphore) == 1; }));
    semaphore->Release();
  }
  EXPECT_TRUE(result);
  EXPECT_FALSE(semaphore->TryAcquire());
}

TEST_P(TSemaphoreWaitTest, AUnitThatWentToAWaiterCannotBeTakenByAnother) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  EXPECT_TRUE(OnceAllHaveArrived([&](std::chrono::milliseconds) {
    const std::jthread thread([&] { GetParam().acquire(*semaphore); });
    EXPECT_TRUE(Eventually([&] { return SynchronizeForTest::Waiters(*semaphore) == 1; }));
    semaphore->Release();
    const bool isTaken = semaphore->TryAcquire();
    if (isTaken) {
      semaphore->Release();
    }
    return !isTaken;
  }));
}

// Threads that note the order in which they get a unit.
class TSemaphoreOrderTest : public testing::Test {
 protected:
  void StartWaiter(int name) {
    m_threads.emplace_back([this, name] {
      m_semaphore->Acquire();
      const std::lock_guard lock(m_mutex);
      m_order.push_back(name);
    });
  }
  std::vector<int> Order() {
    const std::lock_guard lock(m_mutex);
    return m_order;
  }

  const SemaphorePtr m_semaphore = TSemaphore::Construct(0);

 private:
  std::mutex m_mutex;
  std::vector<int> m_order;
  std::vector<std::jthread> m_threads;
};

// Which one gets it, is promised only where the queue is the library's own.
TEST_F(TSemaphoreOrderTest, AUnitGoesToOneWaiterInTheOrderOfArrival) {
  for (int name = 0; name < 3; ++name) {
    StartWaiter(name);
    ASSERT_TRUE(Eventually([&] { return SynchronizeForTest::Waiters(*m_semaphore) == unsigned(name) + 1; }));
  }
  std::vector<int> expected;
  for (int name = 0; name < 3; ++name) {
    m_semaphore->Release();
    expected.push_back(name);
    ASSERT_TRUE(Eventually([&] { return Order().size() >= expected.size(); }));
    EXPECT_EQ(SynchronizeForTest::Waiters(*m_semaphore), static_cast<unsigned int>(2 - name));
    EXPECT_TRUE(Order() == expected || !SynchronizeForTest::OwnsQueues);
  }
  std::vector<int> order = Order();
  std::sort(order.begin(), order.end());
  EXPECT_EQ(order, expected);
}

TEST(TSemaphore, TheMaximumCanBeConstructed) { EXPECT_TRUE(TSemaphore::Construct(Maximum)->TryAcquire()); }

TEST(TSemaphore, MoreThanTheMaximumCannotBeConstructed) {
  for (const unsigned int count : {Maximum + 1, 0xFFFFFFFFu}) {
    ExpectFailure([count] { TSemaphore::Construct(count); }, {"TSemaphore::Construct", SystemError::InvalidParameter,
                                                              0x0D655B98, "QuillonException_AutoGen_0x0D655B98"});
  }
}

TEST(TSemaphore, AReleaseAtTheMaximumRaisesAndLeavesTheCount) {
  const Failure expected{"TSemaphore::Release", SystemError::TooManyUnits, 0x26B5EE1F,
                         "QuillonException_AutoGen_0x26B5EE1F"};
  const SemaphorePtr semaphore = TSemaphore::Construct(Maximum - 1);
  semaphore->Release();
  ExpectFailure([&] { semaphore->Release(); }, expected);
  ExpectFailure([&] { semaphore->Release(); }, expected);
  EXPECT_TRUE(semaphore->TryAcquire());
  EXPECT_NO_THROW(semaphore->Release());
  ExpectFailure([&] { semaphore->Release(); }, expected);
}

TEST(TSemaphore, AnAcquireThatTheSystemRefusesRaises) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  const RefusedWaits refused;
  ExpectFailure([&] { semaphore->Acquire(); },
                {"TSemaphore::Acquire", SystemError::Refused, 0x4B4D16D1, "QuillonException_AutoGen_0x4B4D16D1"});
  EXPECT_EQ(SynchronizeForTest::Waiters(*semaphore), 0u);
}

TEST(TSemaphore, ATimedAcquireThatTheSystemRefusesIsFalse) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  const RefusedWaits refused;
  EXPECT_FALSE(semaphore->Acquire(1000000));
  EXPECT_FALSE(semaphore->Acquire(NoLimit));
}

// ---- Scopes ----

TEST(TSemaphoreScope, HoldsOneUnitWhileItLives) {
  const SemaphorePtr semaphore = TSemaphore::Construct(1);
  {
    const ScopePtr scope(new TSemaphoreScope(semaphore));
    EXPECT_TRUE(scope->IsAcquired());
    EXPECT_FALSE(semaphore->TryAcquire());
    EXPECT_EQ(semaphore->UseCount(), 2);
  }
  EXPECT_TRUE(semaphore->TryAcquire());
  EXPECT_FALSE(semaphore->TryAcquire());
  EXPECT_EQ(semaphore->UseCount(), 1);
}

TEST(TSemaphoreScope, WaitsForAUnit) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  std::jthread thread([&] { const ScopePtr scope(new TSemaphoreScope(semaphore)); });
  ASSERT_TRUE(Eventually([&] { return SynchronizeForTest::Waiters(*semaphore) == 1; }));
  semaphore->Release();
  thread.join();
  EXPECT_TRUE(semaphore->TryAcquire());
}

TEST(TSemaphoreScope, ATimeThatRunsOutLeavesItEmptyAndNothingIsReleased) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  for (const unsigned int timeout : {0u, 1u}) {
    const ScopePtr scope(new TSemaphoreScope(semaphore, timeout));
    EXPECT_FALSE(scope->IsAcquired());
    scope->Reset();
  }
  EXPECT_FALSE(semaphore->TryAcquire());
  EXPECT_EQ(semaphore->UseCount(), 1);
}

TEST(TSemaphoreScope, ATimedOneHoldsAUnitThatIsThere) {
  const SemaphorePtr semaphore = TSemaphore::Construct(1);
  {
    const ScopePtr scope(new TSemaphoreScope(semaphore, 0));
    EXPECT_TRUE(scope->IsAcquired());
  }
  EXPECT_TRUE(semaphore->TryAcquire());
}

TEST(TSemaphoreScope, ResetReleasesOnceAndTheDestructorNoMore) {
  const SemaphorePtr semaphore = TSemaphore::Construct(1);
  {
    const ScopePtr scope(new TSemaphoreScope(semaphore));
    scope->Reset();
    EXPECT_FALSE(scope->IsAcquired());
    scope->Reset();
  }
  EXPECT_TRUE(semaphore->TryAcquire());
  EXPECT_FALSE(semaphore->TryAcquire());
}

TEST(TSemaphoreScope, ANullSemaphoreIsAnAssertion) {
  const CaughtAssertion expected{"public/qilsys/ReferenceCount", 340, "Null pointer dereferenced", 0x00BF554A,
                                 "LogicException_LogicAssert_0x00BF554A"};
  EXPECT_EQ(CatchAssertion([] { ScopePtr(new TSemaphoreScope(SemaphorePtr())); }), expected);
  EXPECT_EQ(CatchAssertion([] { ScopePtr(new TSemaphoreScope(SemaphorePtr(), 0)); }), expected);
}

TEST(TSemaphoreScope, AFullSemaphoreRefusesTheUnitInResetAndTheDestructorIsSilent) {
  const SemaphorePtr semaphore = TSemaphore::Construct(Maximum);
  {
    const ScopePtr scope(new TSemaphoreScope(semaphore));
    semaphore->Release();
    EXPECT_THROW(scope->Reset(), QuillonException);
    EXPECT_TRUE(scope->IsAcquired());
  }
  EXPECT_EQ(semaphore->UseCount(), 1);
}

TEST(TSemaphoreScope, LivesByReferencesOnly) { EXPECT_FALSE(std::is_destructible_v<TSemaphoreScope>); }

}  // namespace
