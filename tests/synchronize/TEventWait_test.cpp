#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Arrival.h"
#include "EventKinds.h"
#include "qilsys/TEvent.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "support/System.h"

namespace {

using namespace std::chrono_literals;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::Eventually;
using qilsys::test::ModelEvent;
using qilsys::test::OnceAllHaveArrived;
using qilsys::test::TickOfWaits;
using qilsys::test::Waiters;
using std::chrono::milliseconds;
using Events = std::vector<IEvent*>;

constexpr unsigned int Untouched = 77;

// Does something at the moment of its registration: what happens to the events before it in a vector then happens
// during the wait, at a known point.
class TriggerEvent : public ModelEvent {
 public:
  explicit TriggerEvent(std::function<void()> onAdd) : m_onAdd(std::move(onAdd)) {}
  void AddOnSignalCallback(void*, std::function<void()>) const override { m_onAdd(); }

 private:
  const std::function<void()> m_onAdd;
};

// Keeps account of the callbacks that are registered with it.
class CountingEvent : public ModelEvent {
 public:
  void AddOnSignalCallback(void* key, std::function<void()> callback) const override {
    m_added.push_back(key);
    ModelEvent::AddOnSignalCallback(key, std::move(callback));
  }
  void RemoveOnSignalCallback(void* key) const override {
    m_removed.push_back(key);
    ModelEvent::RemoveOnSignalCallback(key);
  }

  mutable std::vector<void*> m_added;
  mutable std::vector<void*> m_removed;
};

TEST(WaitForAll, OfNothingIsTrueAtOnceWhateverTheTime) {
  EXPECT_TRUE(WaitForAll({}, 0ms));
  EXPECT_TRUE(WaitForAll({}, milliseconds(0xFFFFFFFF)));
  EXPECT_TRUE(WaitForAll({}, -1ms));
}

TEST(WaitForAny, OfNothingWaitsOutItsTimeAndIsFalse) {
  unsigned int index = Untouched;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(WaitForAny({}, 40ms, index));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 40ms - TickOfWaits());
  EXPECT_EQ(index, Untouched);
  EXPECT_FALSE(WaitForAny({}, 0ms));
}

TEST(WaitForAll, OfSetManualResetEventsIsTrueWithoutWaiting) {
  TEvent a(true);
  TEvent b(true);
  EXPECT_TRUE(WaitForAll({&a, &b}, 0ms));
  EXPECT_TRUE(a.IsSet() && b.IsSet());
}

TEST(WaitForAll, IsFalseWhenOneIsMissing) {
  TEvent a(true);
  TEvent b;
  EXPECT_FALSE(WaitForAll({&a, &b}, 1ms));
}

TEST(WaitForAll, CountsAnEventThatStandsTwiceTwice) {
  TEvent set(true);
  EXPECT_TRUE(WaitForAll({&set, &set}, 0ms));
  TEvent event;
  TriggerEvent trigger([&] { event.Signal(); });
  trigger.Signal();
  EXPECT_TRUE(WaitForAll({&event, &event, &trigger}, 0ms));
}

TEST(WaitForAny, TakesAMixtureOfEvents) {
  TEvent manual;
  TAutoResetEvent automatic;
  TCountdownEvent countdown(1);
  const RefCntPtr<TCancelEvent> cancel(new TCancelEvent);
  ModelEvent model;
  const Events events{&manual, &automatic, &countdown, cancel.get(), &model};
  for (unsigned int i = 0; i < events.size(); ++i) {
    unsigned int index = Untouched;
    Events withTrigger = events;
    TriggerEvent trigger([&] { events[i]->Signal(); });
    withTrigger.push_back(&trigger);
    EXPECT_TRUE(WaitForAny(withTrigger, 0ms, index)) << i;
    EXPECT_EQ(index, i);
    events[i]->Reset();
  }
}

TEST(WaitForAny, OfASetAutoResetEventIsFalseAndTheSignalIsGone) {
  TAutoResetEvent event;
  event.Signal();
  unsigned int index = Untouched;
  EXPECT_FALSE(WaitForAny({&event}, 1ms, index));
  EXPECT_EQ(index, Untouched);
  EXPECT_FALSE(event.IsSet());
}

TEST(WaitForAny, ClaimsAnAutoResetSignalThatComesDuringTheWait) {
  TAutoResetEvent event;
  TriggerEvent trigger([&] { event.Signal(); });
  unsigned int index = Untouched;
  EXPECT_TRUE(WaitForAny({&event, &trigger}, 0ms, index));
  EXPECT_EQ(index, 0u);
  EXPECT_FALSE(event.IsSet());
}

TEST(WaitForAny, APositionWhoseSignalWasLostCannotCountAgain) {
  TAutoResetEvent event;
  event.Signal();
  TriggerEvent trigger([&] { event.Signal(); });
  EXPECT_FALSE(WaitForAny({&event, &trigger}, 1ms));
  EXPECT_TRUE(event.IsSet()) << "the later signal was not claimed";
}

TEST(WaitForAny, AnotherWaiterTakesTheSignalAndThePositionIsLost) {
  EXPECT_TRUE(OnceAllHaveArrived([](milliseconds) {
    TAutoResetEvent event;
    const std::jthread other([&] { event.Wait(); });
    EXPECT_TRUE(Eventually([&] { return Waiters(event) == 1; }));
    TriggerEvent trigger([&] {
      event.Signal();  // Goes to the other waiter.
      event.Signal();  // Is not looked at any more.
    });
    unsigned int index = Untouched;
    return !WaitForAny({&event, &trigger}, 1ms, index) && index == Untouched && event.IsSet();
  }));
}

TEST(WaitForAny, GivesThePositionOfTheLastToFire) {
  TEvent a(true);
  TEvent b(true);
  unsigned int index = Untouched;
  EXPECT_TRUE(WaitForAny({&a, &b}, 0ms, index));
  EXPECT_EQ(index, 1u);
}

TEST(WaitForAny, AnEventThatFiresLaterStillClaimsAndOverwritesTheIndex) {
  TAutoResetEvent late;
  TEvent first(true);
  TriggerEvent trigger([&] { late.Signal(); });
  unsigned int index = Untouched;
  EXPECT_TRUE(WaitForAny({&late, &first, &trigger}, 0ms, index));
  EXPECT_EQ(index, 0u);
  EXPECT_FALSE(late.IsSet());
}

TEST(WaitForAny, APositionFiresOnce) {
  TEvent a;
  TEvent b;
  TriggerEvent trigger([&] {
    a.Signal();
    b.Signal();
    a.Signal();  // Had its turn: the index stays with b.
  });
  unsigned int index = Untouched;
  EXPECT_TRUE(WaitForAny({&a, &b, &trigger}, 0ms, index));
  EXPECT_EQ(index, 1u);
}

TEST(WaitForAll, ThatRunsOutOfTimeKeepsWhatItHasClaimed) {
  TAutoResetEvent claimed;
  TEvent never;
  TriggerEvent trigger([&] { claimed.Signal(); });
  EXPECT_FALSE(WaitForAll({&claimed, &never, &trigger}, 1ms));
  EXPECT_FALSE(claimed.IsSet());
}

TEST(WaitForAll, ReturnsWhenTheLastIsSignalledByAnotherThread) {
  TEvent a;
  TEvent b;
  std::atomic<bool> result{false};
  {
    // The second position stands registered when its trigger runs, so both signals come from outside and late.
    std::atomic<bool> isWaiting{false};
    TriggerEvent trigger([&] { isWaiting = true; });
    trigger.Signal();
    std::jthread waiter([&] { result = WaitForAll({&a, &b, &trigger}, milliseconds(0xFFFFFFFF)); });
    ASSERT_TRUE(Eventually([&] { return isWaiting.load(); }));
    a.Signal();
    b.Signal();
  }
  EXPECT_TRUE(result);
}

TEST(WaitForAny, RemovesItsCallbacksInOrderWhenItReturns) {
  CountingEvent event;
  event.Signal();
  EXPECT_TRUE(WaitForAny({&event, &event}, 0ms));
  ASSERT_EQ(event.m_added.size(), 2u);
  EXPECT_NE(event.m_added[0], event.m_added[1]);
  EXPECT_EQ(event.m_removed, event.m_added);
}

TEST(WaitForAny, RemovesItsCallbacksWhenTimeRunsOut) {
  CountingEvent event;
  EXPECT_FALSE(WaitForAny({&event}, 0ms));
  EXPECT_EQ(event.m_removed, event.m_added);
}

TEST(WaitForAny, ANegativeTimeIsAnAssertionAndRemovesItsCallbacks) {
  CountingEvent event;
  EXPECT_EQ(CatchAssertion([&] { WaitForAny({&event}, -1ms); }),
            (CaughtAssertion{"main/synchronize/TEventBase_win", 64, "timeout.count() >= 0", 0x65AA68CA,
                             "LogicException_LogicAssert_0x65AA68CA"}));
  EXPECT_EQ(event.m_added.size(), 1u);
  EXPECT_EQ(event.m_removed, event.m_added);
}

TEST(WaitForAll, RemovesItsCallbacksWhenARegistrationThrows) {
  CountingEvent event;
  TriggerEvent throwing([] { throw std::runtime_error("no"); });
  EXPECT_THROW(WaitForAll({&event, &throwing}, 0ms), std::runtime_error);
  EXPECT_EQ(event.m_added.size(), 1u);
  EXPECT_EQ(event.m_removed, event.m_added);
}

}  // namespace
