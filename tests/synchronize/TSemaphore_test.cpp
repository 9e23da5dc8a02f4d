#include "qilsys/TSemaphore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "qilsys/QuillonException.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "synchronize/SynchronizeForTest.h"

namespace {

using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::Eventually;
using SemaphorePtr = RefCntPtr<TSemaphore>;
using ScopePtr = RefCntPtr<TSemaphoreScope>;

constexpr unsigned int s_maximum = 0x7FFFFFFF;
constexpr unsigned int s_noLimit = 0xFFFFFFFF;

struct Failure {
  const char* m_what;
  int m_error;
  unsigned int m_code;
  const char* m_codeName;
};

template <class Action>
void ExpectFailure(Action action, const Failure& expected) {
  try {
    action();
    ADD_FAILURE() << "must raise";
  } catch (const QuillonException& e) {
    const std::string message = expected.m_what + std::string(": error=") + std::to_string(expected.m_error);
    EXPECT_EQ(e.GetMessagesFront().toStdString(), message);
    ASSERT_EQ(e.GetRedactedMessages().size(), 1u);
    EXPECT_EQ(e.GetRedactedMessages().front().toStdString(), message);
    EXPECT_EQ(e.GetErrorCode(), expected.m_code);
    EXPECT_EQ(e.GetErrorName().toStdString(), expected.m_codeName);
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
  EXPECT_TRUE(semaphore->Acquire(s_noLimit));
  semaphore->Acquire();
  EXPECT_FALSE(semaphore->TryAcquire());
}

TEST(TSemaphore, BelongsToTheFirstPointer) { EXPECT_EQ(TSemaphore::Construct(1)->UseCount(), 1); }

TEST(TSemaphore, TimeRunsOutNotTooSoon) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(semaphore->Acquire(15));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(15));
  EXPECT_EQ(SynchronizeForTest::Waiters(*semaphore), 0u);
}

struct AcquireCase {
  const char* m_name;
  bool (*m_acquire)(TSemaphore& semaphore);
};

class TSemaphoreWaitTest : public testing::TestWithParam<AcquireCase> {};

INSTANTIATE_TEST_SUITE_P(
    Forms, TSemaphoreWaitTest,
    testing::Values(AcquireCase{"Unlimited",
                                [](TSemaphore& semaphore) {
                                  semaphore.Acquire();
                                  return true;
                                }},
                    AcquireCase{"TheLimitItself", [](TSemaphore& semaphore) { return semaphore.Acquire(s_noLimit); }},
                    AcquireCase{"JustBelowTheLimit",
                                [](TSemaphore& semaphore) { return semaphore.Acquire(s_noLimit - 1); }}),
    [](const auto& row) { return std::string(row.param.m_name); });

TEST_P(TSemaphoreWaitTest, WaitsForARelease) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  bool result = false;
  {
    std::jthread thread([&] { result = GetParam().m_acquire(*semaphore); });
    ASSERT_TRUE(Eventually([&] { return SynchronizeForTest::Waiters(*semaphore) == 1; }));
    semaphore->Release();
    EXPECT_FALSE(semaphore->TryAcquire()) << "the unit belongs to the waiter";
  }
  EXPECT_TRUE(result);
}

TEST(TSemaphore, UnitsGoToWaitersInTheOrderOfArrival) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  std::vector<std::jthread> threads;
  std::vector<int> order;
  for (unsigned int name = 0; name < 3; ++name) {
    threads.emplace_back([&, name] {
      semaphore->Acquire();
      order.push_back(static_cast<int>(name));
    });
    ASSERT_TRUE(Eventually([&] { return SynchronizeForTest::Waiters(*semaphore) == name + 1; }));
  }
  for (std::jthread& thread : threads) {
    semaphore->Release();
    thread.join();
  }
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST(TSemaphore, TheMaximumCanBeConstructed) { EXPECT_TRUE(TSemaphore::Construct(s_maximum)->TryAcquire()); }

TEST(TSemaphore, MoreThanTheMaximumCannotBeConstructed) {
  for (const unsigned int count : {s_maximum + 1, 0xFFFFFFFFu}) {
    ExpectFailure([count] { TSemaphore::Construct(count); },
                  {"TSemaphore::Construct", EINVAL, 0x0D655B98, "QuillonException_AutoGen_0x0D655B98"});
  }
}

TEST(TSemaphore, AReleaseAtTheMaximumRaisesAndLeavesTheCount) {
  const Failure expected{"TSemaphore::Release", EOVERFLOW, 0x26B5EE1F, "QuillonException_AutoGen_0x26B5EE1F"};
  const SemaphorePtr semaphore = TSemaphore::Construct(s_maximum - 1);
  semaphore->Release();
  ExpectFailure([&] { semaphore->Release(); }, expected);
  ExpectFailure([&] { semaphore->Release(); }, expected);
  EXPECT_TRUE(semaphore->TryAcquire());
  EXPECT_NO_THROW(semaphore->Release());
  ExpectFailure([&] { semaphore->Release(); }, expected);
}

TEST(TSemaphore, AnAcquireThatTheSystemRefusesRaises) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  SynchronizeForTest::FailWaits(EPERM);
  ExpectFailure([&] { semaphore->Acquire(); },
                {"TSemaphore::Acquire", EPERM, 0x4B4D16D1, "QuillonException_AutoGen_0x4B4D16D1"});
  SynchronizeForTest::FailWaits(0);
  EXPECT_EQ(SynchronizeForTest::Waiters(*semaphore), 0u);
}

TEST(TSemaphore, ATimedAcquireThatTheSystemRefusesIsFalse) {
  const SemaphorePtr semaphore = TSemaphore::Construct(0);
  SynchronizeForTest::FailWaits(EPERM);
  EXPECT_FALSE(semaphore->Acquire(1000000));
  EXPECT_FALSE(semaphore->Acquire(s_noLimit));
  SynchronizeForTest::FailWaits(0);
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
  const SemaphorePtr semaphore = TSemaphore::Construct(s_maximum);
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
