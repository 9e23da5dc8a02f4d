#include "synchronize/TEventBase.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

#include "RefusedWaits.h"
#include "qilsys/TSystem.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "support/RowName.h"
#include "support/SystemError.h"
#include "synchronize/NoLimit.h"

namespace {

using namespace std::chrono_literals;
using qilsys::synchronize::NoLimit;
using qilsys::synchronize::TPlatformEvent;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::Eventually;
using qilsys::test::LastErrorNumber;
using qilsys::test::NumberOf;
using qilsys::test::RefusedWaits;
using qilsys::test::RowName;
using qilsys::test::ScopedAssertHook;
using qilsys::test::SetLastErrorNumber;
using qilsys::test::SystemError;
using Kind = TPlatformEvent::Kind;

std::string TextOf(SystemError error) {
  SetLastErrorNumber(NumberOf(error));
  return TSystem::GetLastErrorString().toStdString();
}

struct KindCase {
  const char* name;
  Kind kind;
};

class TPlatformEventTest : public testing::TestWithParam<KindCase> {};

INSTANTIATE_TEST_SUITE_P(Kinds, TPlatformEventTest,
                         testing::Values(KindCase{"ManualReset", Kind::ManualReset},
                                         KindCase{"AutoReset", Kind::AutoReset}),
                         RowName<KindCase>);

TEST_P(TPlatformEventTest, IsUnsetAtFirst) {
  TPlatformEvent event(GetParam().kind);
  EXPECT_FALSE(event.Wait(0));
}

TEST_P(TPlatformEventTest, AutoResetTakesTheSignalWithAPollToo) {
  TPlatformEvent event(GetParam().kind);
  EXPECT_TRUE(event.Set());
  EXPECT_TRUE(event.Wait(0));
  EXPECT_EQ(event.Wait(0), GetParam().kind == Kind::ManualReset);
}

TEST_P(TPlatformEventTest, ResetTakesAStoredSignalBack) {
  TPlatformEvent event(GetParam().kind);
  EXPECT_TRUE(event.Set());
  EXPECT_TRUE(event.Reset());
  EXPECT_FALSE(event.Wait(1));
}

// Under a memory or thread checker this is what shows that a set touches nothing after it has released the waiter.
TEST_P(TPlatformEventTest, TheWaiterThatASetHasReleasedMayDestroyTheEvent) {
  for (int round = 0; round < 200; ++round) {
    auto owned = std::make_unique<TPlatformEvent>(GetParam().kind);
    TPlatformEvent* const event = owned.get();
    std::jthread waiter([mine = std::move(owned)]() mutable {
      mine->Wait(NoLimit);
      mine.reset();
    });
    if (round % 2 == 0) {
      EXPECT_TRUE(Eventually([&] { return event->WaitersForTest() == 1; }));
    }
    EXPECT_TRUE(event->Set());
  }
}

TEST_P(TPlatformEventTest, AWaitThatTheSystemRefusesIsFalse) {
  TPlatformEvent event(GetParam().kind);
  const RefusedWaits refused;
  EXPECT_FALSE(event.Wait(1000000));
  EXPECT_FALSE(event.Wait(NoLimit));
  EXPECT_EQ(event.WaitersForTest(), 0u);
}

TEST(TEventBase, AWaitWithoutLimitIsFalseAndRaisesNothingWhereTheSystemRefuses) {
  TEventBase base(Kind::ManualReset);
  const RefusedWaits refused;
  EXPECT_FALSE(base.Wait());
}

TEST(TEventBase, SignalOfAnEventThatCouldNotBeCreatedIsAnAssertionAndRunsNoCallback) {
  TEventBase base(TPlatformEvent::NotCreated);
  int calls = 0;
  base.AddOnSignalCallback(nullptr, [&] { ++calls; });
  const CaughtAssertion expected{"main/synchronize/TEventBase_win", 51,
                                 "SetEvent() failed with error: " + TextOf(SystemError::InvalidHandle), 0xF2C0F1A4,
                                 "LogicException_LogicAssert_0xF2C0F1A4"};
  EXPECT_EQ(CatchAssertion([&] { base.Signal(); }), expected);
  const ScopedAssertHook returning([](const char*, int, const char*, const QuillonError&) {});
  base.Signal();
  EXPECT_EQ(calls, 0);
}

TEST(TEventBase, ResetOfAnEventThatCouldNotBeCreatedIsAnAssertion) {
  TEventBase base(TPlatformEvent::NotCreated);
  const CaughtAssertion expected{"main/synchronize/TEventBase_win", 25,
                                 "ResetEvent() failed with error: " + TextOf(SystemError::InvalidHandle), 0x6BBE359A,
                                 "LogicException_LogicAssert_0x6BBE359A"};
  EXPECT_EQ(CatchAssertion([&] { base.Reset(); }), expected);
}

TEST(TEventBase, WaitsForAnEventThatCouldNotBeCreatedAreFalse) {
  TEventBase base(TPlatformEvent::NotCreated);
  EXPECT_FALSE(base.IsSet());
  EXPECT_FALSE(base.Wait());
  EXPECT_FALSE(base.Wait(1000000ms));
}

TEST(TPlatformEvent, ThatCouldNotBeCreatedLeavesTheReasonWhateverIsAskedOfIt) {
  TPlatformEvent event(TPlatformEvent::NotCreated);
  for (const auto& ask : {+[](TPlatformEvent& e) { return e.Set(); }, +[](TPlatformEvent& e) { return e.Reset(); },
                          +[](TPlatformEvent& e) { return e.Wait(0); }, +[](TPlatformEvent& e) { return e.Wait(1); },
                          +[](TPlatformEvent& e) { return e.Wait(NoLimit); }}) {
    SetLastErrorNumber(0);
    EXPECT_FALSE(ask(event));
    EXPECT_EQ(LastErrorNumber(), NumberOf(SystemError::InvalidHandle));
  }
}

TEST(TEventBase, WithoutAHookAFailureIsALogicException) {
  TEventBase base(TPlatformEvent::NotCreated);
  try {
    base.Signal();
    FAIL() << "must raise";
  } catch (const LogicException& e) {
    EXPECT_EQ(e.GetErrorCode(), 0xA2BCBC42u);
    EXPECT_EQ(e.GetInternalMessage().toStdString(),
              "LogicAssert failed (but no hook has been set) at main/synchronize/TEventBase_win line 51: "
              "SetEvent() failed with error: " +
                  TextOf(SystemError::InvalidHandle));
  }
}

}  // namespace
