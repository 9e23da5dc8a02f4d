// An event or a semaphore may be an object of the system: nothing of it may stay open.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "qilsys/QuillonException.h"
#include "qilsys/TEvent.h"
#include "qilsys/TLocks.h"
#include "qilsys/TSemaphore.h"
#include "support/Eventually.h"
#include "support/OpenHandles.h"
#include "support/RowName.h"
#include "synchronize/SynchronizeForTest.h"

namespace {

using namespace std::chrono_literals;
using qilsys::test::Eventually;
using qilsys::test::MostKeptByThreads;
using qilsys::test::OpenHandles;
using qilsys::test::RowName;

void UseEvent() {
  const TEvent event(true);
  event.Wait();
}

void UseAutoResetEvent() {
  const TAutoResetEvent event;
  event.Signal();
  event.Wait(0ms);
}

void UseCountdownEvent() { TCountdownEvent(1).Signal(); }

void UseCancelEvent() {
  const RefCntPtr<TCancelEvent> parent(new TCancelEvent);
  parent->Add(new TCancelEvent);
  parent->Signal();
}

void WaitForSeveral() {
  TEvent first(true);
  TEvent second;
  std::vector<IEvent*> events{&first, &second};
  WaitForAny(events, 0ms);
  WaitForAll(events, 0ms);
}

void UseSemaphore() { const RefCntPtr<TSemaphoreScope> scope(new TSemaphoreScope(TSemaphore::Construct(1))); }

void FailToMakeSemaphore() { EXPECT_THROW(TSemaphore::Construct(0xFFFFFFFF), QuillonException); }

// A critical section may make an object of the system for the first thread that must sleep.
void ContendForMutex() {
  TRecursiveMutex mutex;
  mutex.Lock();
  const std::jthread other([&] { const TScopedLock lock(mutex); });
  EXPECT_TRUE(Eventually([&] { return SynchronizeForTest::IsContended(mutex); }));
  mutex.Unlock();
}

void ContendForReadWriteLock() {
  TReadWriteLock lock;
  lock.LockRead();
  const std::jthread writer([&] { const TScopedLock guard(lock); });
  EXPECT_TRUE(Eventually([&] { return SynchronizeForTest::WaitingWriters(lock) == 1; }));
  lock.UnlockRead();
}

struct UseCase {
  const char* name;
  void (*use)();
  int rounds;
  unsigned int mostKept = 0;
};

class OpenHandlesTest : public testing::TestWithParam<UseCase> {};

INSTANTIATE_TEST_SUITE_P(
    Uses, OpenHandlesTest,
    testing::Values(UseCase{"Event", UseEvent, 1000}, UseCase{"AutoResetEvent", UseAutoResetEvent, 1000},
                    UseCase{"CountdownEvent", UseCountdownEvent, 1000}, UseCase{"CancelEvent", UseCancelEvent, 1000},
                    UseCase{"WaitForSeveral", WaitForSeveral, 1000}, UseCase{"Semaphore", UseSemaphore, 1000},
                    UseCase{"SemaphoreThatCannotBeMade", FailToMakeSemaphore, 1000},
                    UseCase{"ContendedMutex", ContendForMutex, 50, MostKeptByThreads},
                    UseCase{"ContendedReadWriteLock", ContendForReadWriteLock, 50, MostKeptByThreads}),
    RowName<UseCase>);

// Once before it is counted: what is made once for the process may stay.
TEST_P(OpenHandlesTest, AreNotLeftBehind) {
  GetParam().use();
  const unsigned int before = OpenHandles();
  for (int round = 0; round < GetParam().rounds; ++round) {
    GetParam().use();
  }
  EXPECT_LE(OpenHandles(), before + GetParam().mostKept);
}

TEST(OpenHandles, CountAFileWhileItIsOpen) {
  const unsigned int before = OpenHandles();
  const std::string name = testing::TempDir() + "qilsys_open_handles_test";
  std::FILE* const file = std::fopen(name.c_str(), "w");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(OpenHandles(), before + 1);
  std::fclose(file);
  EXPECT_EQ(OpenHandles(), before);
  std::remove(name.c_str());
}

// What makes the cases above able to fail, where events are objects of the system.
TEST(OpenHandles, CountEventsAndSemaphoresThatLiveWhereTheyAreTheSystems) {
  const unsigned int expected = OpenHandles() + (SynchronizeForTest::OwnsQueues ? 0 : 2);
  const TEvent event;
  const RefCntPtr<TSemaphore> semaphore = TSemaphore::Construct(0);
  EXPECT_EQ(OpenHandles(), expected);
}

}  // namespace
