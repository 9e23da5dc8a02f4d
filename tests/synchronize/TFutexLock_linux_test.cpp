#include "synchronize/TFutexLock_linux.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>

#include "support/Eventually.h"
#include "synchronize/SynchronizeForTest.h"

namespace {

using qilsys::synchronize::TFutexGuard;
using qilsys::synchronize::TFutexLock;
using qilsys::test::Eventually;

TEST(TFutexLock, TryLockTakesAFreeLockOnly) {
  TFutexLock lock;
  EXPECT_TRUE(lock.TryLock());
  EXPECT_FALSE(lock.TryLock());
  lock.Unlock();
  EXPECT_TRUE(lock.TryLock());
  lock.Unlock();
}

TEST(TFutexLock, UnlockLetsASleeperIn) {
  TFutexLock lock;
  int guarded = 0;
  lock.Lock();
  std::jthread other([&] {
    const TFutexGuard guard(lock);
    guarded *= 2;
  });
  ASSERT_TRUE(Eventually([&] { return lock.IsContendedForTest(); }));
  guarded = 21;
  lock.Unlock();
  other.join();
  EXPECT_EQ(guarded, 42);
}

TEST(TFutexLock, IsTakenAlsoWhereTheSystemCannotWait) {
  TFutexLock lock;
  lock.Lock();
  std::jthread other([&] {
    SynchronizeForTest::FailWaits(EPERM);
    lock.Lock();
  });
  ASSERT_TRUE(Eventually([&] { return lock.IsContendedForTest(); }));
  lock.Unlock();
  other.join();
  EXPECT_FALSE(lock.TryLock());
}

}  // namespace
