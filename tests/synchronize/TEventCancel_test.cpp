#include "qilsys/TEvent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "EventKinds.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "support/Latch.h"

namespace {

using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::Eventually;
using qilsys::test::Latch;
using qilsys::test::ScopedAssertHook;
using qilsys::test::Waiters;

using CancelPtr = RefCntPtr<TCancelEvent>;

CancelPtr MakeCancel() { return CancelPtr(new TCancelEvent); }

TEST(TCancelEvent, SignalsItsChildrenDownTheTree) {
  const CancelPtr parent = MakeCancel();
  const CancelPtr child = MakeCancel();
  const CancelPtr grandchild = MakeCancel();
  const CancelPtr other = MakeCancel();
  child->Add(grandchild);
  parent->Add(child);
  parent->Add(other);
  child->Signal();
  EXPECT_FALSE(parent->IsSet());
  EXPECT_TRUE(grandchild->IsSet());
  EXPECT_FALSE(other->IsSet());
  parent->Signal();
  EXPECT_TRUE(other->IsSet());
}

TEST(TCancelEvent, RunsItsOwnCallbacksFirstAndThenItsChildrenByAddress) {
  const CancelPtr parent = MakeCancel();
  std::vector<CancelPtr> children{MakeCancel(), MakeCancel(), MakeCancel()};
  std::vector<const TCancelEvent*> order;
  parent->AddOnSignalCallback(nullptr, [&] { order.push_back(parent.get()); });
  for (auto child = children.rbegin(); child != children.rend(); ++child) {
    parent->Add(*child);
    (*child)->AddOnSignalCallback(nullptr, [&order, event = child->get()] { order.push_back(event); });
  }
  parent->Signal();
  std::sort(children.begin(), children.end());
  ASSERT_EQ(order.size(), 4u);
  EXPECT_EQ(order.front(), parent.get());
  EXPECT_TRUE(std::equal(children.begin(), children.end(), order.begin() + 1,
                         [](const CancelPtr& child, const TCancelEvent* event) { return child.get() == event; }));
}

TEST(TCancelEvent, AddToASetParentSignalsTheChildBeforeItReturns) {
  const CancelPtr parent = MakeCancel();
  const CancelPtr child = MakeCancel();
  parent->Signal();
  parent->Add(child);
  EXPECT_TRUE(child->IsSet());
  child->Reset();
  parent->Signal();
  EXPECT_TRUE(child->IsSet()) << "the child must have stayed in the set";
}

TEST(TCancelEvent, ResetLeavesChildrenSet) {
  const CancelPtr parent = MakeCancel();
  const CancelPtr child = MakeCancel();
  parent->Add(child);
  parent->Signal();
  parent->Reset();
  EXPECT_FALSE(parent->IsSet());
  EXPECT_TRUE(child->IsSet());
}

TEST(TCancelEvent, RemoveLeavesTheChildAsItIs) {
  const CancelPtr parent = MakeCancel();
  const CancelPtr unsetChild = MakeCancel();
  const CancelPtr setChild = MakeCancel();
  parent->Add(unsetChild);
  parent->Add(setChild);
  setChild->Signal();
  parent->Remove(unsetChild);
  parent->Remove(setChild);
  parent->Signal();
  EXPECT_FALSE(unsetChild->IsSet());
  EXPECT_TRUE(setChild->IsSet());
}

TEST(TCancelEvent, OwnsOneReferenceToEachChild) {
  const CancelPtr child = MakeCancel();
  {
    const CancelPtr parent = MakeCancel();
    parent->Add(child);
    EXPECT_EQ(child->UseCount(), 2);
    parent->Remove(child);
    EXPECT_EQ(child->UseCount(), 1);
    parent->Add(child);
    parent->Signal();
    EXPECT_EQ(child->UseCount(), 2);
    child->Reset();
  }
  EXPECT_EQ(child->UseCount(), 1);
  EXPECT_FALSE(child->IsSet()) << "a parent that goes signals nobody";
}

TEST(TCancelEvent, ADuplicateChildIsAnAssertionAndLeavesTheSetAsItWas) {
  const CancelPtr parent = MakeCancel();
  const CancelPtr child = MakeCancel();
  parent->Add(child);
  EXPECT_EQ(CatchAssertion([&] { parent->Add(child); }),
            (CaughtAssertion{"main/synchronize/TEvent", 94, "Attempted to insert duplicate event.", 0x8DB0B7A4,
                             "LogicException_LogicAssert_0x8DB0B7A4"}));
  EXPECT_EQ(child->UseCount(), 2);
  std::jthread([&] { parent->Remove(child); }).join();  // The lock was released on the way out.
  EXPECT_EQ(child->UseCount(), 1);
}

TEST(TCancelEvent, AnAbsentChildIsAnAssertionAndLeavesTheSetAsItWas) {
  const CancelPtr parent = MakeCancel();
  const CancelPtr child = MakeCancel();
  const CancelPtr absent = MakeCancel();
  parent->Add(child);
  EXPECT_EQ(CatchAssertion([&] { parent->Remove(absent); }),
            (CaughtAssertion{"main/synchronize/TEvent", 106, "it != m_childEvents.end()", 0xE1DDA3CC,
                             "LogicException_LogicAssert_0xE1DDA3CC"}));
  std::jthread([&] { parent->Signal(); }).join();
  EXPECT_TRUE(child->IsSet());
  EXPECT_FALSE(absent->IsSet());
}

TEST(TCancelEvent, AnAbsentChildIsLetBeWhereTheHookReturns) {
  const ScopedAssertHook hook([](const char*, int, const char*, const QuillonError&) {});
  const CancelPtr parent = MakeCancel();
  parent->Remove(MakeCancel());
}

TEST(TCancelEvent, ANullChildIsAnAssertionOutOfTheWalk) {
  const CancelPtr parent = MakeCancel();
  parent->Add(nullptr);
  const CaughtAssertion caught = CatchAssertion([&] { parent->Signal(); });
  EXPECT_EQ(caught, (CaughtAssertion{"public/qilsys/ReferenceCount", 340, "Null pointer dereferenced", 0x00BF554A,
                                     "LogicException_LogicAssert_0x00BF554A"}));
  EXPECT_TRUE(parent->IsSet());
  std::jthread([&] { parent->Remove(nullptr); }).join();
}

TEST(TCancelEvent, AChildMayTakeItselfOutWhileItIsSignalled) {
  const CancelPtr parent = MakeCancel();
  std::vector<CancelPtr> children{MakeCancel(), MakeCancel(), MakeCancel()};
  for (const CancelPtr& child : children) {
    parent->Add(child);
    child->AddOnSignalCallback(nullptr, [&parent, event = child.get()] { parent->Remove(event); });
  }
  parent->Signal();
  for (const CancelPtr& child : children) {
    EXPECT_TRUE(child->IsSet());
    EXPECT_EQ(child->UseCount(), 1);
  }
}

TEST(TCancelEvent, MayBeLetGoByTheWaiterThatItWoke) {
  CancelPtr signallers = MakeCancel();
  std::jthread waiter([waiters = signallers]() mutable {
    waiters->Wait();
    waiters.reset();
  });
  ASSERT_TRUE(Eventually([&] { return Waiters(*signallers) == 1; }));
  signallers->Signal();
  signallers.reset();
}

TEST(TCancelEvent, IsDestroyedByItsLastReferenceOnly) { EXPECT_FALSE(std::is_destructible_v<TCancelEvent>); }

// ---- Trees of any depth ----

// The callbacks of these events write down their numbers.
class CancelTreeTest : public testing::Test {
 protected:
  const CancelPtr& Make() {
    m_events.push_back(MakeCancel());
    m_events.back()->AddOnSignalCallback(nullptr, [this, number = m_events.size() - 1] { m_order.push_back(number); });
    return m_events.back();
  }
  // Events 0 to `depth` - 1, each the parent of the next.
  void MakeChain(std::size_t depth) {
    for (std::size_t i = 0; i < depth; ++i) {
      Make();
      if (i > 0) {
        m_events[i - 1]->Add(m_events[i]);
      }
    }
  }
  void ExpectNoLocksHeld() {
    std::jthread([this] {
      for (const CancelPtr& event : m_events) {
        const CancelPtr child = MakeCancel();
        event->Add(child);
        event->Remove(child);
      }
    }).join();
  }

  std::vector<CancelPtr> m_events;
  std::vector<std::size_t> m_order;
};

// Far more levels than a stack holds calls of anything.
constexpr int Deep = 200000;

CancelPtr MakeDeepChain(CancelPtr& last) {
  CancelPtr first = last = MakeCancel();
  for (int i = 1; i < Deep; ++i) {
    CancelPtr parent = MakeCancel();
    parent->Add(first);
    first = std::move(parent);
  }
  return first;
}

TEST_F(CancelTreeTest, AChainTooDeepForTheStackIsSignalledAndDestroyed) {
  CancelPtr last;
  CancelPtr first = MakeDeepChain(last);
  first->Signal();
  EXPECT_TRUE(last->IsSet());
  EXPECT_EQ(last->UseCount(), 2);
  first.reset();
  EXPECT_EQ(last->UseCount(), 1);
}

TEST_F(CancelTreeTest, AChainTooDeepForTheStackMayBeTakenOut) {
  const CancelPtr parent = MakeCancel();
  CancelPtr last;
  CancelPtr first = MakeDeepChain(last);
  parent->Add(first);
  parent->Remove(std::exchange(first, nullptr));
  EXPECT_EQ(last->UseCount(), 1);
}

TEST_F(CancelTreeTest, EachEventComesBeforeItsChildrenAndThoseInTheOrderOfAddresses) {
  MakeChain(2);
  m_events[0]->Add(Make());
  m_events[1]->Add(Make());
  m_events[1]->Add(Make());
  m_events[2]->Add(Make());
  // Beneath 0 stand 1 and 2; beneath 1, 3 and 4; beneath 2, 5.
  const auto byAddress = [this](std::size_t a, std::size_t b) {
    return m_events[a] < m_events[b] ? std::vector{a, b} : std::vector{b, a};
  };
  std::vector<std::size_t> expected{0};
  for (const std::size_t child : byAddress(1, 2)) {
    expected.push_back(child);
    const std::vector<std::size_t> below = child == 1 ? byAddress(3, 4) : std::vector<std::size_t>{5};
    expected.insert(expected.end(), below.begin(), below.end());
  }
  m_events[0]->Signal();
  EXPECT_EQ(m_order, expected);
}

TEST_F(CancelTreeTest, AChildOfTwoParentsIsSignalledByEach) {
  for (int i = 0; i < 4; ++i) {
    Make();
  }
  m_events[0]->Add(m_events[1]);
  m_events[0]->Add(m_events[2]);
  m_events[1]->Add(m_events[3]);
  m_events[2]->Add(m_events[3]);
  m_events[0]->Signal();
  EXPECT_EQ(std::count(m_order.begin(), m_order.end(), 3u), 2);
  const CancelPtr shared = m_events[3];
  m_events.clear();
  EXPECT_EQ(shared->UseCount(), 1);
}

TEST_F(CancelTreeTest, WhatACallbackThrowsLeavesNoLockHeldOnAnyLevel) {
  MakeChain(4);
  int key = 0;
  m_events[3]->AddOnSignalCallback(&key, [] { throw std::runtime_error("callback"); });
  EXPECT_THROW(m_events[0]->Signal(), std::runtime_error);
  ExpectNoLocksHeld();
  m_events[3]->RemoveOnSignalCallback(&key);
  m_order.clear();
  m_events[0]->Signal();
  EXPECT_EQ(m_order, (std::vector<std::size_t>{0, 1, 2, 3}));
  ExpectNoLocksHeld();
}

TEST_F(CancelTreeTest, ACallbackMaySignalAnEventAboveOnceMore) {
  MakeChain(4);
  int key = 0;
  int calls = 0;
  m_events[2]->AddOnSignalCallback(&key, [&] {
    if (++calls == 1) {
      m_order.clear();
      m_events[0]->Signal();
      EXPECT_EQ(m_order.back(), 3u);
      m_order.clear();
    }
  });
  m_events[0]->Signal();
  EXPECT_EQ(calls, 2);
  // The own callback of event 2 may have come before or after that one.
  EXPECT_EQ(m_order.back(), 3u);
  ExpectNoLocksHeld();
}

TEST_F(CancelTreeTest, TheLocksOfAllEventsAboveAreHeldWhileOneIsSignalled) {
  MakeChain(3);
  Latch haveStarted(2);
  std::atomic<bool> hasEnded{false};
  std::atomic<int> tooEarly{0};
  std::vector<std::jthread> removers;
  int key = 0;
  m_events[2]->AddOnSignalCallback(&key, [&] {
    for (const std::size_t parent : {0u, 1u}) {
      removers.emplace_back([&, parent] {
        haveStarted.CountDown();
        m_events[parent]->Remove(m_events[parent + 1]);
        tooEarly += !hasEnded;
      });
    }
    haveStarted.Wait();
    std::this_thread::yield();
    hasEnded = true;
  });
  m_events[0]->Signal();
  removers.clear();
  EXPECT_EQ(tooEarly, 0);
}

TEST_F(CancelTreeTest, ACallbackMayTakeOutTheBranchThatItStandsIn) {
  MakeChain(4);
  const CancelPtr root = m_events[0];
  int key = 0;
  m_events[3]->AddOnSignalCallback(&key, [&] {
    m_events[0]->Remove(m_events[1]);
    m_events.erase(m_events.begin(), m_events.end() - 1);
  });
  root->Signal();
  EXPECT_EQ(m_order, (std::vector<std::size_t>{0, 1, 2, 3}));
  EXPECT_EQ(m_events.front()->UseCount(), 1);
}

// A host may have cancel events of its own.
class OwnEvent : public TCancelEvent {
 public:
  explicit OwnEvent(std::vector<std::size_t>& order, bool signalsAtItsEnd = false)
      : m_order(order), m_signalsAtItsEnd(signalsAtItsEnd) {}
  void Signal() const override {
    m_order.push_back(100);
    TCancelEvent::Signal();
  }

 protected:
  ~OwnEvent() override {
    if (m_signalsAtItsEnd) {
      TCancelEvent::Signal();
    }
  }

 private:
  std::vector<std::size_t>& m_order;
  const bool m_signalsAtItsEnd;
};

TEST_F(CancelTreeTest, AClassOfTheHostsOwnIsSignalledInItsOwnWay) {
  const RefCntPtr<OwnEvent> own(new OwnEvent(m_order));
  MakeChain(2);
  m_events[0]->Remove(m_events[1]);
  m_events[0]->Add(own);
  own->Add(m_events[1]);
  m_events[0]->Signal();
  EXPECT_EQ(m_order, (std::vector<std::size_t>{0, 100, 1}));
}

TEST_F(CancelTreeTest, AClassOfTheHostsOwnStillHasItsChildrenWhenItGoesWithItsParent) {
  CancelPtr parent = MakeCancel();
  const CancelPtr child = MakeCancel();
  {
    const RefCntPtr<OwnEvent> own(new OwnEvent(m_order, true));
    parent->Add(own);
    own->Add(child);
  }
  parent.reset();
  EXPECT_TRUE(child->IsSet());
  EXPECT_EQ(child->UseCount(), 1);
}

TEST_F(CancelTreeTest, ANullChildHoldsUpNeitherTheOthersNorTheEnd) {
  const CancelPtr child = MakeCancel();
  CancelPtr parent = MakeCancel();
  CancelPtr root = MakeCancel();
  parent->Add(nullptr);
  parent->Add(child);
  root->Add(std::exchange(parent, nullptr));
  root.reset();
  EXPECT_EQ(child->UseCount(), 1);
}

}  // namespace
