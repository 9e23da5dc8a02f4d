#include "qilsys/TLocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "RefusedWaits.h"
#include "support/CaughtAssertion.h"
#include "support/Eventually.h"
#include "synchronize/SynchronizeForTest.h"
#include "synchronize/TLocks_platform.h"

namespace {

using qilsys::synchronize::TConditionVariable;
using qilsys::synchronize::TCriticalSection;
using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::Eventually;
using qilsys::test::RefusedWaits;
using qilsys::test::ScopedAssertHook;

// Runs `action` on a thread of its own and waits for it.
template <class Action>
void OnAnotherThread(Action action) {
  std::jthread thread(action);
}

// ---- What holds for every lock: exclusive use, again on its thread ----

// The standard library's mutex under our names: the suite must hold for it too.
class StandardLock {
 public:
  void Lock() { Take(); }
  void LockRead() { Take(); }
  void Unlock() { m_mutex.unlock(); }
  void UnlockRead() { m_mutex.unlock(); }
  bool IsContended() const { return m_waiting != 0; }

 private:
  void Take() {
    if (!m_mutex.try_lock()) {
      ++m_waiting;
      m_mutex.lock();
      --m_waiting;
    }
  }

  std::recursive_mutex m_mutex;
  std::atomic<int> m_waiting{0};
};

bool IsContended(const StandardLock& lock) { return lock.IsContended(); }
template <class Lock>
bool IsContended(const Lock& lock) {
  return SynchronizeForTest::IsContended(lock);
}

template <class Lock>
class EveryLockTest : public testing::Test {
 protected:
  // Holds the lock by `hold`, shows that `enter` on another thread waits, and that `release` lets it go on.
  void ExpectExcluded(std::function<void()> hold, std::function<void()> enter, std::function<void()> release) {
    hold();
    std::atomic<bool> hasEntered{false};
    std::jthread other([&] {
      enter();
      hasEntered = true;
    });
    ASSERT_TRUE(Eventually([&] { return IsContended(m_lock); }));
    EXPECT_FALSE(hasEntered);
    release();
    other.join();
    EXPECT_TRUE(hasEntered);
  }

  Lock m_lock;
};

using EveryLock = testing::Types<TRecursiveMutex, TReadWriteLock, StandardLock>;
TYPED_TEST_SUITE(EveryLockTest, EveryLock);

TYPED_TEST(EveryLockTest, OneWriterExcludesAnother) {
  auto& lock = this->m_lock;
  this->ExpectExcluded([&] { lock.Lock(); },
                       [&] {
                         lock.Lock();
                         lock.Unlock();
                       },
                       [&] { lock.Unlock(); });
}

TYPED_TEST(EveryLockTest, AWriterExcludesAReader) {
  auto& lock = this->m_lock;
  this->ExpectExcluded([&] { lock.Lock(); },
                       [&] {
                         lock.LockRead();
                         lock.UnlockRead();
                       },
                       [&] { lock.Unlock(); });
}

TYPED_TEST(EveryLockTest, ALockTakenTwiceIsFreeAfterTheSecondUnlockOnly) {
  auto& lock = this->m_lock;
  this->ExpectExcluded(
      [&] {
        lock.Lock();
        lock.Lock();
        lock.Unlock();
      },
      [&] {
        lock.Lock();
        lock.Unlock();
      },
      [&] { lock.Unlock(); });
}

TYPED_TEST(EveryLockTest, AWriterMayReadWithin) {
  auto& lock = this->m_lock;
  lock.Lock();
  lock.LockRead();
  lock.UnlockRead();
  lock.Unlock();
  OnAnotherThread([&] {
    lock.Lock();
    lock.Unlock();
  });
}

TYPED_TEST(EveryLockTest, AGuardReleasesWhenAnExceptionPasses) {
  auto& lock = this->m_lock;
  try {
    const TScopedLock guard(lock);
    throw std::runtime_error("passes");
  } catch (const std::runtime_error&) {
  }
  try {
    const TScopedReadLock guard(lock);
    throw std::runtime_error("passes");
  } catch (const std::runtime_error&) {
  }
  OnAnotherThread([&] { const TScopedLock guard(lock); });
}

TYPED_TEST(EveryLockTest, WhatWasWrittenInsideIsSeenByTheNextInside) {
  int guarded = 0;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        for (int round = 0; round < 1000; ++round) {
          const TScopedLock guard(this->m_lock);
          ++guarded;
        }
      });
    }
  }
  EXPECT_EQ(guarded, 4000);
}

// ---- Recursive mutex ----

TEST(TRecursiveMutex, TryLockOnItsOwnThreadIsTrueAndNeedsOneMoreUnlock) {
  TRecursiveMutex mutex;
  EXPECT_TRUE(mutex.TryLock());
  EXPECT_TRUE(mutex.TryLock());
  mutex.Unlock();
  OnAnotherThread([&] { EXPECT_FALSE(mutex.TryLock()); });
  mutex.Unlock();
  OnAnotherThread([&] {
    EXPECT_TRUE(mutex.TryLock());
    mutex.Unlock();
  });
}

TEST(TRecursiveMutex, LockReadIsExclusive) {
  TRecursiveMutex mutex;
  mutex.LockRead();
  OnAnotherThread([&] { EXPECT_FALSE(mutex.TryLock()); });
  std::jthread reader([&] {
    mutex.LockRead();
    mutex.UnlockRead();
  });
  EXPECT_TRUE(Eventually([&] { return SynchronizeForTest::IsContended(mutex); }));
  mutex.UnlockRead();
}

TEST(TRecursiveMutex, IsOnePointerAndIgnoresItsArgument) {
  EXPECT_EQ(sizeof(TRecursiveMutex), sizeof(void*));
  EXPECT_EQ(sizeof(TReadWriteLock), sizeof(void*));
  TRecursiveMutex mutex(12345);
  EXPECT_TRUE(mutex.TryLock());
  mutex.Unlock();
  TReadWriteLock lock(0xFFFFFFFF);
  lock.LockRead();
  lock.UnlockRead();
}

// ---- Reader-writer lock ----

class TReadWriteLockTest : public testing::Test {
 protected:
  // Starts a writer and returns once it sleeps until the readers have gone.
  std::jthread StartWaitingWriter() {
    const unsigned int before = SynchronizeForTest::WaitingWriters(m_lock);
    std::jthread writer([this] {
      m_lock.Lock();
      ++m_writes;
      m_lock.Unlock();
    });
    EXPECT_TRUE(Eventually([&] { return SynchronizeForTest::WaitingWriters(m_lock) == before + 1; }));
    return writer;
  }

  TReadWriteLock m_lock;
  int m_writes = 0;  // Guarded by the lock.
};

TEST_F(TReadWriteLockTest, ReadersShare) {
  m_lock.LockRead();
  OnAnotherThread([&] {
    m_lock.LockRead();
    m_lock.UnlockRead();
  });
  m_lock.UnlockRead();
}

TEST_F(TReadWriteLockTest, NewReadersPassAWriterThatWaits) {
  m_lock.LockRead();
  std::jthread writer = StartWaitingWriter();
  OnAnotherThread([&] {
    m_lock.LockRead();
    EXPECT_EQ(m_writes, 0);
    m_lock.UnlockRead();
  });
  EXPECT_EQ(SynchronizeForTest::WaitingWriters(m_lock), 1u);
  m_lock.UnlockRead();
  writer.join();
  EXPECT_EQ(m_writes, 1);
}

TEST_F(TReadWriteLockTest, EveryWaitingWriterIsWokenInTurn) {
  m_lock.LockRead();
  std::vector<std::jthread> writers;
  for (int i = 0; i < 3; ++i) {
    writers.push_back(StartWaitingWriter());
  }
  m_lock.UnlockRead();
  writers.clear();
  EXPECT_EQ(m_writes, 3);
}

TEST_F(TReadWriteLockTest, AReadLockMayBeGivenBackOnAnotherThread) {
  m_lock.LockRead();
  OnAnotherThread([&] { m_lock.UnlockRead(); });
  OnAnotherThread([&] {
    m_lock.Lock();
    m_lock.Unlock();
  });
}

// The only way for a writer to wait while it is inside: it reads within, and another thread gives that lock back.
TEST_F(TReadWriteLockTest, AWaitingWriterGivesUpASectionEnteredTwiceAndGetsItsDepthBack) {
  std::atomic<int> step{0};
  std::jthread writer([&] {
    m_lock.Lock();
    m_lock.LockRead();
    m_lock.Lock();
    step = 1;
    Eventually([&] { return SynchronizeForTest::IsContended(m_lock); });
    m_lock.Unlock();
    step = 2;
    m_lock.Unlock();
  });
  ASSERT_TRUE(Eventually([&] { return SynchronizeForTest::WaitingWriters(m_lock) == 1; }));
  m_lock.LockRead();  // Passes only if the section was given up whole.
  m_lock.UnlockRead();
  m_lock.UnlockRead();
  ASSERT_TRUE(Eventually([&] { return step == 1; }));
  m_lock.LockRead();
  EXPECT_EQ(step, 2) << "free after the first unlock already";
  m_lock.UnlockRead();
}

TEST_F(TReadWriteLockTest, ReadLock65536IsAnAssertion) {
  for (int i = 0; i < 65535; ++i) {
    m_lock.LockRead();
  }
  EXPECT_EQ(CatchAssertion([&] { m_lock.LockRead(); }),
            (CaughtAssertion{"main/synchronize/TLocks", 245,
                             "m_readerCount < std::numeric_limits<decltype(m_readerCount)>::max()", 0x88DFEC71,
                             "LogicException_LogicAssert_0x88DFEC71"}));
}

TEST_F(TReadWriteLockTest, WriteLock65536IsAnAssertion) {
  for (int i = 0; i < 65535; ++i) {
    m_lock.Lock();
  }
  EXPECT_EQ(CatchAssertion([&] { m_lock.Lock(); }),
            (CaughtAssertion{"main/synchronize/TLocks", 223,
                             "m_writerCount < std::numeric_limits<decltype(m_writerCount)>::max()", 0xA44EBAAD,
                             "LogicException_LogicAssert_0xA44EBAAD"}));
}

TEST_F(TReadWriteLockTest, AnAssertionLeavesTheLockWedged) {
  for (int i = 0; i < 65535; ++i) {
    m_lock.LockRead();
  }
  CatchAssertion([&] { m_lock.LockRead(); });
  std::jthread other([&] { m_lock.UnlockRead(); });
  EXPECT_TRUE(Eventually([&] { return SynchronizeForTest::IsContended(m_lock); }));
  // Gives back what the assertion left entered, so that the other thread can end.
  CatchAssertion([&] { m_lock.Unlock(); });
}

TEST_F(TReadWriteLockTest, ASleepThatTheSystemRefusesIsAnAssertion) {
  m_lock.LockRead();
  const RefusedWaits refused;
  const CaughtAssertion caught = CatchAssertion([&] { m_lock.Lock(); });
  EXPECT_EQ(caught, (CaughtAssertion{"main/synchronize/TLocks", 151,
                                     "SleepConditionVariableCS(&m_cv, mutex.native_handle(), 0xFFFFFFFF)", 0xA4874C3A,
                                     "LogicException_LogicAssert_0xA4874C3A"}));
}

TReadWriteLock* g_lockOfHook = nullptr;

TEST_F(TReadWriteLockTest, WhereTheHookReturnsTheWriterGoesOnWaiting) {
  m_lock.LockRead();
  g_lockOfHook = &m_lock;
  const ScopedAssertHook hook([](const char*, int, const char*, const QuillonError&) { g_lockOfHook->UnlockRead(); });
  {
    const RefusedWaits refused;
    m_lock.Lock();
  }
  m_lock.Unlock();
  OnAnotherThread([&] {
    m_lock.Lock();
    m_lock.Unlock();
  });
}

// ---- The seam ----

TEST(TConditionVariable, SleepGivesUpASectionEnteredThreeTimesAndGetsItsDepthBack) {
  TCriticalSection section;
  TConditionVariable condition;
  std::jthread sleeper([&] {
    for (int i = 0; i < 3; ++i) {
      section.Enter();
    }
    EXPECT_TRUE(condition.Sleep(section));
    section.Leave();
    section.Leave();
    OnAnotherThread([&] { EXPECT_FALSE(section.TryEnter()); });
    section.Leave();
    OnAnotherThread([&] { EXPECT_TRUE(section.TryEnter()); });
  });
  ASSERT_TRUE(Eventually([&] { return condition.SleepersForTest() == 1; }));
  section.Enter();  // Passes only once the section was given up whole, and then the sleeper is there to be woken.
  section.Leave();
  condition.WakeOne();
}

// Sleepers that note the order in which they wake.
class TConditionVariableTest : public testing::Test {
 protected:
  void StartSleeper(int name) {
    m_threads.emplace_back([this, name] {
      m_section.Enter();
      while (m_wakes == 0) {
        EXPECT_TRUE(m_condition.Sleep(m_section));
      }
      --m_wakes;
      m_order.push_back(name);
      m_section.Leave();
    });
  }
  void WakeOne() {
    m_section.Enter();
    ++m_wakes;
    m_section.Leave();
    m_condition.WakeOne();
  }
  unsigned int Sleepers() {
    m_section.Enter();
    const unsigned int sleepers = m_condition.SleepersForTest();
    m_section.Leave();
    return sleepers;
  }
  std::vector<int> Order() {
    m_section.Enter();
    std::vector<int> order = m_order;
    m_section.Leave();
    return order;
  }

 private:
  TCriticalSection m_section;
  TConditionVariable m_condition;
  int m_wakes = 0;
  std::vector<int> m_order;
  std::vector<std::jthread> m_threads;
};

// Which one that is, is promised only where the queue is the library's own.
TEST_F(TConditionVariableTest, WakesOneAfterAnotherInTheOrderOfArrival) {
  for (int name = 0; name < 3; ++name) {
    StartSleeper(name);
    ASSERT_TRUE(Eventually([&] { return Sleepers() == static_cast<unsigned int>(name) + 1; }));
  }
  std::vector<int> expected;
  for (int name = 0; name < 3; ++name) {
    WakeOne();
    expected.push_back(name);
    ASSERT_TRUE(Eventually([&] { return Order().size() >= expected.size(); }));
    EXPECT_EQ(Sleepers(), static_cast<unsigned int>(2 - name));
    EXPECT_TRUE(Order() == expected || !SynchronizeForTest::OwnsQueues);
  }
  std::vector<int> order = Order();
  std::sort(order.begin(), order.end());
  EXPECT_EQ(order, expected);
}

TEST(TConditionVariable, AWakeWithoutASleeperIsNothing) {
  TConditionVariable condition;
  condition.WakeOne();
  EXPECT_EQ(condition.SleepersForTest(), 0u);
}

TEST(TConditionVariable, ASleepThatTheSystemRefusesIsFalseInsideOfTheSection) {
  TCriticalSection section;
  TConditionVariable condition;
  section.Enter();
  {
    const RefusedWaits refused;
    EXPECT_FALSE(condition.Sleep(section));
  }
  OnAnotherThread([&] { EXPECT_FALSE(section.TryEnter()); });
  section.Leave();
  EXPECT_EQ(condition.SleepersForTest(), 0u);
}

}  // namespace
