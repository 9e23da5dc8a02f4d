#include "qilsys/TEvent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include "Arrival.h"
#include "EventKinds.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "support/Latch.h"
#include "support/System.h"

namespace {

using namespace std::chrono_literals;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::EventKind;
using qilsys::test::Eventually;
using qilsys::test::Latch;
using qilsys::test::ModelEvent;
using qilsys::test::OnceAllHaveArrived;
using qilsys::test::ScopedAssertHook;
using qilsys::test::TickOfWaits;
using qilsys::test::Waiters;
using std::chrono::milliseconds;

// ---- What holds for every event ----

template <class Event>
class EveryEventTest : public testing::Test {
 protected:
  // Starts a thread that waits as `wait` says, and returns once the event counts it.
  template <class WaitFunction>
  std::jthread StartWaiter(WaitFunction wait) {
    const unsigned int before = Waiters(*m_kind);
    std::jthread thread([this, wait] { m_released += wait(*m_kind) ? 1 : 0; });
    EXPECT_TRUE(Eventually([&] { return Waiters(*m_kind) == before + 1; }));
    return thread;
  }
  std::jthread StartWaiter() {
    return StartWaiter([](const IEvent& event) { return event.Wait(); });
  }

  void Pulse() {
    (*m_kind).Signal();
    (*m_kind).Reset();
  }
  void PulseUntilNobodyWaits() {
    while (Waiters(*m_kind) != 0) {
      Pulse();
      std::this_thread::yield();
    }
  }

  EventKind<Event> m_kind;
  std::atomic<int> m_released{0};
};

using EveryEvent = testing::Types<TEvent, TAutoResetEvent, TCountdownEvent, TCancelEvent, ModelEvent>;
TYPED_TEST_SUITE(EveryEventTest, EveryEvent);

TYPED_TEST(EveryEventTest, StartsUnset) {
  EXPECT_FALSE((*this->m_kind).IsSet());
  EXPECT_FALSE((*this->m_kind).Wait(0ms));
}

TYPED_TEST(EveryEventTest, ASignalSetsIt) {
  const IEvent& event = *this->m_kind;
  event.Signal();
  EXPECT_TRUE(event.IsSet());
  EXPECT_EQ(event.IsSet(), !this->m_kind.TakesSignal);
}

TYPED_TEST(EveryEventTest, EveryFormOfWaitTreatsTheSignalAlike) {
  for (const milliseconds timeout : {0ms, 1ms, 1000000ms, milliseconds(0xFFFFFFFF)}) {
    const IEvent& event = *this->m_kind;
    event.Reset();
    event.Signal();
    EXPECT_TRUE(event.Wait(timeout)) << timeout.count();
    EXPECT_EQ(event.Wait(0ms), !this->m_kind.TakesSignal) << timeout.count();
  }
}

TYPED_TEST(EveryEventTest, AWaitWithoutLimitIsTrueAtOnceWhenSet) {
  const IEvent& event = *this->m_kind;
  event.Signal();
  EXPECT_TRUE(event.Wait());
  EXPECT_EQ(event.IsSet(), !this->m_kind.TakesSignal);
}

TYPED_TEST(EveryEventTest, ResetUnsetsIt) {
  const IEvent& event = *this->m_kind;
  event.Signal();
  event.Reset();
  EXPECT_FALSE(event.IsSet());
  event.Reset();
  EXPECT_FALSE(event.IsSet());
}

TYPED_TEST(EveryEventTest, TimeRunsOutNotTooSoonAndLeavesNoWaiter) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE((*this->m_kind).Wait(40ms));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 40ms - TickOfWaits());
  EXPECT_EQ(Waiters(*this->m_kind), 0u);
}

TYPED_TEST(EveryEventTest, ASignalReleasesAThreadThatWaits) {
  {
    const std::jthread thread = this->StartWaiter();
    (*this->m_kind).Signal();
  }
  EXPECT_EQ(this->m_released, 1);
  EXPECT_EQ((*this->m_kind).IsSet(), !this->m_kind.TakesSignal);
}

// Values that a careless narrowing would turn into a short wait.
TYPED_TEST(EveryEventTest, FromTheLimitUpwardsThereIsNoLimit) {
  for (const milliseconds timeout : {milliseconds(0xFFFFFFFF), milliseconds(0x100000000), milliseconds(0x100000001),
                                     milliseconds(0x7FFFFFFFFFFFFFFF)}) {
    (*this->m_kind).Reset();
    this->m_released = 0;
    {
      const std::jthread thread = this->StartWaiter([timeout](const IEvent& event) { return event.Wait(timeout); });
      (*this->m_kind).Signal();
    }
    EXPECT_EQ(this->m_released, 1) << timeout.count();
  }
}

TYPED_TEST(EveryEventTest, JustBelowTheLimitItWaits) {
  {
    const std::jthread thread =
        this->StartWaiter([](const IEvent& event) { return event.Wait(milliseconds(0xFFFFFFFE)); });
    (*this->m_kind).Signal();
  }
  EXPECT_EQ(this->m_released, 1);
}

TYPED_TEST(EveryEventTest, ASetFollowedAtOnceByAResetReleasesThoseThatWait) {
  const int expected = this->m_kind.TakesSignal ? 1 : 3;
  EXPECT_TRUE(OnceAllHaveArrived([&](milliseconds patience) {
    this->m_released = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) {
      threads.push_back(this->StartWaiter());
    }
    this->Pulse();
    EXPECT_FALSE((*this->m_kind).IsSet());
    const bool areReleased = Eventually([&] { return this->m_released == expected; }, patience);
    this->PulseUntilNobodyWaits();
    return areReleased;
  }));
}

TYPED_TEST(EveryEventTest, WhatWasWrittenBeforeTheSignalIsSeenAfterTheWait) {
  int written = 0;
  int seen = 0;
  {
    const std::jthread thread = this->StartWaiter([&](const IEvent& event) {
      const bool result = event.Wait();
      seen = written;
      return result;
    });
    written = 42;
    (*this->m_kind).Signal();
  }
  EXPECT_EQ(seen, 42);
}

TYPED_TEST(EveryEventTest, CallbacksRunOnTheSignallingThreadBeforeSignalReturns) {
  int key = 0;
  std::thread::id where;
  (*this->m_kind).AddOnSignalCallback(&key, [&] { where = std::this_thread::get_id(); });
  (*this->m_kind).Signal();
  EXPECT_EQ(where, std::this_thread::get_id());
}

TYPED_TEST(EveryEventTest, WaitersAreReleasedBeforeCallbacksRun) {
  int key = 0;
  bool wasReleased = false;
  const std::jthread thread = this->StartWaiter();
  (*this->m_kind).AddOnSignalCallback(&key, [&] { wasReleased = Eventually([&] { return this->m_released == 1; }); });
  (*this->m_kind).Signal();
  EXPECT_TRUE(wasReleased);
}

TYPED_TEST(EveryEventTest, CallbacksStayAndRunAgain) {
  int key = 0;
  int calls = 0;
  (*this->m_kind).AddOnSignalCallback(&key, [&] { ++calls; });
  (*this->m_kind).Signal();
  (*this->m_kind).Signal();
  EXPECT_EQ(calls, this->m_kind.EverySignalCounts ? 2 : 1);
}

TYPED_TEST(EveryEventTest, EveryKeyHasItsCallback) {
  int keys[3] = {};
  int calls = 0;
  for (int& key : keys) {
    (*this->m_kind).AddOnSignalCallback(&key, [&] { ++calls; });
  }
  (*this->m_kind).AddOnSignalCallback(nullptr, [&] { ++calls; });
  (*this->m_kind).Signal();
  EXPECT_EQ(calls, 4);
}

TYPED_TEST(EveryEventTest, TheLastRegistrationUnderAKeyWins) {
  int key = 0;
  int first = 0;
  int second = 0;
  (*this->m_kind).AddOnSignalCallback(&key, [&] { ++first; });
  (*this->m_kind).AddOnSignalCallback(&key, [&] { ++second; });
  (*this->m_kind).Signal();
  EXPECT_EQ(first, 0);
  EXPECT_EQ(second, 1);
}

TYPED_TEST(EveryEventTest, RegisteringOnASetEventRunsNothing) {
  int key = 0;
  int calls = 0;
  (*this->m_kind).Signal();
  (*this->m_kind).AddOnSignalCallback(&key, [&] { ++calls; });
  EXPECT_EQ(calls, 0);
}

TYPED_TEST(EveryEventTest, ARemovedCallbackRunsNoMoreAndAnUnknownKeyIsNothing) {
  int key = 0;
  int unknown = 0;
  int calls = 0;
  (*this->m_kind).AddOnSignalCallback(&key, [&] { ++calls; });
  (*this->m_kind).RemoveOnSignalCallback(&unknown);
  (*this->m_kind).RemoveOnSignalCallback(&key);
  (*this->m_kind).RemoveOnSignalCallback(&key);
  (*this->m_kind).Signal();
  EXPECT_EQ(calls, 0);
}

TYPED_TEST(EveryEventTest, ResetAndWaitRunNoCallback) {
  int key = 0;
  int calls = 0;
  (*this->m_kind).AddOnSignalCallback(&key, [&] { ++calls; });
  (*this->m_kind).Reset();
  (*this->m_kind).Wait(0ms);
  EXPECT_EQ(calls, 0);
}

TYPED_TEST(EveryEventTest, ACallbackMaySignalTheSameEvent) {
  int key = 0;
  int calls = 0;
  (*this->m_kind).AddOnSignalCallback(&key, [&] {
    if (++calls < 3) {
      (*this->m_kind).Signal();
    }
  });
  (*this->m_kind).Signal();
  EXPECT_EQ(calls, this->m_kind.EverySignalCounts ? 3 : 1);
}

TYPED_TEST(EveryEventTest, AnEmptyFunctionRaisesOutOfSignalAndReleasesTheLock) {
  int key = 0;
  (*this->m_kind).AddOnSignalCallback(&key, nullptr);
  EXPECT_THROW((*this->m_kind).Signal(), std::bad_function_call);
  EXPECT_TRUE((*this->m_kind).IsSet());
  std::jthread([&] { (*this->m_kind).RemoveOnSignalCallback(&key); }).join();
  (*this->m_kind).Reset();
  EXPECT_NO_THROW((*this->m_kind).Signal());
}

TYPED_TEST(EveryEventTest, RemovingWaitsForACallbackThatRuns) {
  int key = 0;
  Latch isRunning(1);
  std::atomic<bool> mayEnd{false};
  std::atomic<bool> hasEnded{false};
  (*this->m_kind).AddOnSignalCallback(&key, [&] {
    isRunning.CountDown();
    Eventually([&] { return mayEnd.load(); });
    hasEnded = true;
  });
  std::jthread signaller([&] { (*this->m_kind).Signal(); });
  isRunning.Wait();
  std::atomic<bool> endedFirst{false};
  std::jthread remover([&] {
    (*this->m_kind).RemoveOnSignalCallback(&key);
    endedFirst = hasEnded.load();
  });
  mayEnd = true;
  remover.join();
  EXPECT_TRUE(endedFirst);
}

// ---- The library's own kinds ----

template <class Event>
class LibraryEventTest : public EveryEventTest<Event> {};

using LibraryEvent = testing::Types<TEvent, TAutoResetEvent, TCountdownEvent, TCancelEvent>;
TYPED_TEST_SUITE(LibraryEventTest, LibraryEvent);

TYPED_TEST(LibraryEventTest, ANegativeTimeIsAnAssertion) {
  const CaughtAssertion expected{"main/synchronize/TEventBase_win", 64, "timeout.count() >= 0", 0x65AA68CA,
                                 "LogicException_LogicAssert_0x65AA68CA"};
  EXPECT_EQ(CatchAssertion([&] { (*this->m_kind).Wait(-1ms); }), expected);
  EXPECT_EQ(CatchAssertion([&] { (*this->m_kind).Wait(milliseconds::min()); }), expected);
}

TYPED_TEST(LibraryEventTest, ANegativeTimeIsFalseWhereTheHookReturns) {
  const ScopedAssertHook hook([](const char*, int, const char*, const QuillonError&) {});
  (*this->m_kind).Signal();
  EXPECT_FALSE((*this->m_kind).Wait(-1ms));
}

TYPED_TEST(LibraryEventTest, IsNotCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<TypeParam>);
  EXPECT_FALSE(std::is_copy_assignable_v<TypeParam>);
}

TEST(TEvent, CanStartSet) {
  EXPECT_TRUE(TEvent(true).IsSet());
  EXPECT_FALSE(TEvent(false).IsSet());
}

TEST(TEvent, IsOnePointerBesideItsTable) {
  EXPECT_EQ(sizeof(TEvent), 2 * sizeof(void*));
  EXPECT_EQ(sizeof(TCountdownEvent), 2 * sizeof(void*));
}

// ---- Auto reset ----

class TAutoResetEventTest : public EveryEventTest<TAutoResetEvent> {};

TEST_F(TAutoResetEventTest, TwoSignalsBackToBackReleaseTwoWaiters) {
  EXPECT_TRUE(OnceAllHaveArrived([&](milliseconds patience) {
    m_released = 0;
    const std::jthread first = StartWaiter();
    const std::jthread second = StartWaiter();
    (*m_kind).Signal();
    (*m_kind).Signal();
    const bool areReleased = Eventually([&] { return m_released == 2; }, patience);
    EXPECT_FALSE(areReleased && (*m_kind).IsSet());
    PulseUntilNobodyWaits();
    return areReleased;
  }));
}

// Who that is, is promised only where the queue is the library's own.
TEST_F(TAutoResetEventTest, OneSignalReleasesOneThreadTheOneThatHasWaitedLongest) {
  std::atomic<bool> isFirstReleased{false};
  const std::jthread first = StartWaiter([&](const IEvent& event) {
    const bool result = event.Wait();
    isFirstReleased = true;
    return result;
  });
  const std::jthread second = StartWaiter();
  (*m_kind).Signal();
  EXPECT_TRUE(Eventually([&] { return m_released == 1; }));
  EXPECT_EQ(Waiters(*m_kind), 1u);
  EXPECT_TRUE(isFirstReleased || !SynchronizeForTest::OwnsQueues);
  (*m_kind).Signal();
}

TEST_F(TAutoResetEventTest, ASignalThatWentToAWaiterCannotBeTakenByAnother) {
  EXPECT_TRUE(OnceAllHaveArrived([&](milliseconds) {
    const std::jthread thread = StartWaiter();
    (*m_kind).Signal();
    const bool isTaken = (*m_kind).IsSet();
    PulseUntilNobodyWaits();
    return !isTaken;
  }));
}

TEST_F(TAutoResetEventTest, SignalsWithoutAWaiterAreOne) {
  (*m_kind).Signal();
  (*m_kind).Signal();
  EXPECT_TRUE((*m_kind).Wait(0ms));
  EXPECT_FALSE((*m_kind).Wait(0ms));
}

// ---- Countdown ----

TEST(TCountdownEvent, IsSetByTheSignalThatReachesZero) {
  const TCountdownEvent event(2);
  event.Signal();
  EXPECT_FALSE(event.IsSet());
  event.Signal();
  EXPECT_TRUE(event.IsSet());
}

TEST(TCountdownEvent, StaysSetAfterOneSignalTooMany) {
  const TCountdownEvent event(2);
  int key = 0;
  int calls = 0;
  event.AddOnSignalCallback(&key, [&] { ++calls; });
  for (int i = 0; i < 3; ++i) {
    event.Signal();
  }
  EXPECT_TRUE(event.IsSet());
  EXPECT_EQ(calls, 1);
}

TEST(TCountdownEvent, ResetRestoresTheCount) {
  const TCountdownEvent event(2);
  event.Signal();
  event.Reset();
  event.Signal();
  EXPECT_FALSE(event.IsSet());
  event.Signal();
  EXPECT_TRUE(event.IsSet());
  event.Reset();
  EXPECT_FALSE(event.IsSet());
  event.Signal();
  EXPECT_FALSE(event.IsSet());
}

TEST(TCountdownEvent, OfZeroStartsUnsetAndWraps) {
  const TCountdownEvent event(0);
  EXPECT_FALSE(event.IsSet());
  event.Signal();
  EXPECT_FALSE(event.IsSet());
  event.Signal();
  EXPECT_FALSE(event.IsSet());
}

}  // namespace
