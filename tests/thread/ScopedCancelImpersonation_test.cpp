#include "qilsys/ScopedCancelImpersonation.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <stdexcept>
#include <thread>

#include "PlainState.h"
#include "qilsys/Cancel.h"
#include "support/CaughtAssertion.h"
#include "support/Latch.h"

namespace {

using AsyncTask::Cancel;
using AsyncTask::ScopedCancelImpersonation;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::Latch;
using qilsys::test::PlainState;

using CancelPtr = RefCntPtr<TCancelEvent>;

class ScopedCancelImpersonationTest : public testing::Test {
 protected:
  ScopedCancelImpersonationTest() { Cancel::Set(nullptr); }
  ~ScopedCancelImpersonationTest() override { Cancel::Set(nullptr); }

  const CancelPtr m_event{new TCancelEvent};
  const std::shared_ptr<PlainState> m_state = std::make_shared<PlainState>();
};

TEST_F(ScopedCancelImpersonationTest, GivesTheThreadANewEventAndHandsSignalsOn) {
  {
    const ScopedCancelImpersonation scope(false, m_event, m_state);
    const CancelPtr own = Cancel::Get();
    ASSERT_NE(own, nullptr);
    EXPECT_NE(own, m_event);
    EXPECT_EQ(m_state.use_count(), 2);
    EXPECT_EQ(m_state->Cancels(), 0);
    std::jthread([this] { m_event->Signal(); }).join();
    EXPECT_EQ(m_state->Cancels(), 1);
    EXPECT_FALSE(own->IsSet()) << "the state is cancelled; what that means for the thread is its own affair";
  }
  EXPECT_EQ(Cancel::Get(), nullptr);
  EXPECT_EQ(m_event->UseCount(), 1);
  EXPECT_EQ(m_state.use_count(), 1);
  m_event->Signal();
  EXPECT_EQ(m_state->Cancels(), 1) << "the callback has gone";
}

TEST_F(ScopedCancelImpersonationTest, AnEventThatIsSetCancelsAtOnce) {
  m_event->Signal();
  const ScopedCancelImpersonation scope(false, m_event, m_state);
  EXPECT_EQ(m_state->Cancels(), 1);
}

TEST_F(ScopedCancelImpersonationTest, RestoringLeavesTheTasksEventAndNotTheEarlierOne) {
  Cancel::Create();
  const CancelPtr before = Cancel::Get();
  {
    const ScopedCancelImpersonation scope(true, m_event, m_state);
    EXPECT_NE(Cancel::Get(), before);
    EXPECT_EQ(before->UseCount(), 1);
  }
  EXPECT_EQ(Cancel::Get(), m_event);
  EXPECT_EQ(m_event->UseCount(), 2);
}

TEST_F(ScopedCancelImpersonationTest, WorksWithoutAnEvent) {
  for (const bool restore : {false, true}) {
    {
      const ScopedCancelImpersonation scope(restore, nullptr, nullptr);
      EXPECT_NE(Cancel::Get(), nullptr);
    }
    EXPECT_EQ(Cancel::Get(), nullptr) << restore;
  }
}

TEST_F(ScopedCancelImpersonationTest, WithoutRestoringAThreadThatHasAnEventIsAnAssertion) {
  Cancel::Create();
  const CancelPtr before = Cancel::Get();
  EXPECT_EQ(CatchAssertion([this] { const ScopedCancelImpersonation scope(false, m_event, m_state); }),
            (CaughtAssertion{"main/thread/Cancel", 52, "TLS::Get().GetCancelEvent() == nullptr", 0xCC8BF328,
                             "LogicException_LogicAssert_0xCC8BF328"}));
  EXPECT_EQ(Cancel::Get(), before);
  EXPECT_EQ(before->UseCount(), 2);
  EXPECT_EQ(m_event->UseCount(), 1);
}

TEST_F(ScopedCancelImpersonationTest, AFailureLeavesTheThreadAsItWas) {
  class Failing : public PlainState {
   public:
    void Cancel() override { throw std::runtime_error("cancel"); }
  };
  m_event->Signal();
  Cancel::Create();
  const CancelPtr before = Cancel::Get();
  EXPECT_THROW(ScopedCancelImpersonation(true, m_event, std::make_shared<Failing>()), std::runtime_error);
  EXPECT_EQ(Cancel::Get(), before);
  EXPECT_EQ(before->UseCount(), 2);
  m_event->Reset();
  EXPECT_NO_THROW(m_event->Signal()) << "the callback has gone";
}

TEST_F(ScopedCancelImpersonationTest, ItsEndWaitsForASignalThatIsCancelling) {
  class Slow : public PlainState {
   public:
    void Cancel() override {
      hasBegun.CountDown();
      mayEnd.Wait();
      hasEnded = true;
    }
    Latch hasBegun{1};
    Latch mayEnd{1};
    std::atomic<bool> hasEnded{false};
  };
  const auto slow = std::make_shared<Slow>();
  std::optional<ScopedCancelImpersonation> scope(std::in_place, false, m_event, slow);
  std::jthread signaller([this] { m_event->Signal(); });
  slow->hasBegun.Wait();
  std::jthread releaser([&] { slow->mayEnd.CountDown(); });
  scope.reset();
  EXPECT_TRUE(slow->hasEnded);
}

}  // namespace
