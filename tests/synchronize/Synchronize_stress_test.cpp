// Many threads at the primitives at once. Each case sets up its shared state, says what one thread does in one round,
// and what must hold in the end; one driver runs them all.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "qilsys/TEvent.h"
#include "qilsys/TLocks.h"
#include "qilsys/TSemaphore.h"
#include "support/Latch.h"
#include "support/Random.h"
#include "support/RowName.h"
#include "synchronize/NoLimit.h"
#include "synchronize/TEventBase_platform.h"

namespace {

using namespace std::chrono_literals;
using qilsys::synchronize::NoLimit;
using qilsys::synchronize::TPlatformEvent;
using qilsys::test::Latch;
using qilsys::test::Rounds;
using qilsys::test::RowName;
using qilsys::test::SeededRandom;
using std::chrono::milliseconds;

// Gives the processor away now and then, in the middle of what others must not see half done.
void Dawdle(SeededRandom& random) {
  if (random.OneIn(16)) {
    std::this_thread::yield();
  }
}

/// What the threads of one case share.
class Scenario {
 public:
  virtual ~Scenario() = default;
  virtual void Round(int thread, SeededRandom& random) = 0;
  /// Once for each thread, after its last round.
  virtual void End(int) {}
  /// After all threads have ended, with the number of rounds that each has done.
  virtual void Check(int rounds) = 0;
};

struct StressCase {
  const char* name;
  int threads;
  int rounds;
  std::unique_ptr<Scenario> (*make)(int threads);
};

template <class T>
std::unique_ptr<Scenario> Make(int threads) {
  return std::make_unique<T>(threads);
}

class SynchronizeStressTest : public testing::TestWithParam<StressCase> {};

TEST_P(SynchronizeStressTest, Holds) {
  const StressCase& row = GetParam();
  const int rounds = Rounds(row.rounds);
  const std::unique_ptr<Scenario> scenario = row.make(row.threads);
  {
    Latch start(row.threads);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < row.threads; ++thread) {
      threads.emplace_back([&, thread] {
        SeededRandom random(static_cast<std::uint64_t>(thread));
        start.ArriveAndWait();
        for (int round = 0; round < rounds; ++round) {
          scenario->Round(thread, random);
        }
        scenario->End(thread);
      });
    }
  }
  scenario->Check(rounds);
}

// ---- Locks ----

// A plain number under the lock, taken at a random depth and sometimes only if it is free.
class MutexCounts : public Scenario {
 public:
  explicit MutexCounts(int) {}

  void Round(int, SeededRandom& random) override {
    const int depth = random.Between(1, 3);
    for (int i = 0; i < depth; ++i) {
      Take(random);
    }
    const int before = m_guarded;
    Dawdle(random);
    m_guarded = before + 1;
    for (int i = 0; i < depth; ++i) {
      m_mutex.Unlock();
    }
    ++m_done;
  }

  void Check(int) override { EXPECT_EQ(m_guarded, m_done); }

 private:
  void Take(SeededRandom& random) {
    if (!random.OneIn(4) || !m_mutex.TryLock()) {
      m_mutex.Lock();
    }
  }

  TRecursiveMutex m_mutex;
  int m_guarded = 0;
  std::atomic<int> m_done{0};
};

// Writers keep two numbers equal; readers must never see them differ.
class ReadersSeeWholeWrites : public Scenario {
 public:
  explicit ReadersSeeWholeWrites(int) {}

  void Round(int, SeededRandom& random) override {
    if (random.OneIn(4)) {
      Write(random);
    } else {
      const TScopedReadLock guard(m_lock);
      Dawdle(random);
      m_torn += m_first != m_second;
    }
  }

  void Check(int) override {
    EXPECT_EQ(m_torn, 0);
    EXPECT_EQ(m_first, m_writes);
  }

 private:
  void Write(SeededRandom& random) {
    const TScopedLock guard(m_lock);
    ++m_first;
    Dawdle(random);
    if (random.OneIn(3)) {
      const TScopedLock again(m_lock);
      const TScopedReadLock within(m_lock);
      m_torn += m_first != m_second + 1;
    }
    ++m_second;
    ++m_writes;
  }

  TReadWriteLock m_lock;
  int m_first = 0;
  int m_second = 0;
  std::atomic<int> m_torn{0};
  std::atomic<int> m_writes{0};
};

// ---- Semaphores ----

// Never more threads inside than there are units, with waits that give up among them; none is lost or made.
class UnitsBoundThreads : public Scenario {
 public:
  explicit UnitsBoundThreads(int) {}

  void Round(int, SeededRandom& random) override {
    const unsigned int timeout = random.Between(0u, 1u);
    if (random.OneIn(3) ? m_semaphore->Acquire(timeout) : (m_semaphore->Acquire(), true)) {
      m_tooMany += ++m_inside > Units;
      Dawdle(random);
      --m_inside;
      m_semaphore->Release();
    }
  }

  void Check(int) override {
    EXPECT_EQ(m_tooMany, 0);
    for (int i = 0; i < Units; ++i) {
      EXPECT_TRUE(m_semaphore->TryAcquire());
    }
    EXPECT_FALSE(m_semaphore->TryAcquire());
  }

 private:
  static constexpr int Units = 2;

  const RefCntPtr<TSemaphore> m_semaphore = TSemaphore::Construct(Units);
  std::atomic<int> m_inside{0};
  std::atomic<int> m_tooMany{0};
};

// ---- Events ----

// Two threads hand the turn to and fro; a lost signal would hang them, a doubled one would break the turns.
class PingPong : public Scenario {
 public:
  explicit PingPong(int) { m_turns[0].Signal(); }

  void Round(int thread, SeededRandom&) override {
    m_turns[static_cast<std::size_t>(thread)].Wait();
    m_outOfTurn += m_count++ % 2 != thread;
    m_turns[static_cast<std::size_t>(1 - thread)].Signal();
  }

  void Check(int rounds) override {
    EXPECT_EQ(m_outOfTurn, 0);
    EXPECT_EQ(m_count, 2 * rounds);
  }

 private:
  std::array<TAutoResetEvent, 2> m_turns;
  int m_count = 0;
  int m_outOfTurn = 0;
};

// One thread signals and waits until the signal was taken; the others wait with and without a limit. Every signal is
// taken exactly once, also where it meets a wait whose time runs out.
class SignalsAreTakenOnce : public Scenario {
 public:
  explicit SignalsAreTakenOnce(int threads) : m_waiting(threads - 1) {}

  void Round(int thread, SeededRandom& random) override {
    if (thread == 0) {
      m_event.Signal();
      m_taken.Wait();
    } else if (m_event.Wait(random.OneIn(2) ? 1ms : milliseconds(random.Between(0, 1)))) {
      Take();
    }
  }

  void End(int thread) override {
    if (thread == 0) {
      m_hasEnded = true;
      return;
    }
    while (!m_hasEnded) {
      if (m_event.Wait(1ms)) {
        Take();
      }
    }
    --m_waiting;
  }

  void Check(int rounds) override {
    EXPECT_EQ(m_count, rounds);
    EXPECT_EQ(m_waiting, 0);
    EXPECT_FALSE(m_event.IsSet());
  }

 private:
  void Take() {
    ++m_count;
    m_taken.Signal();
  }

  TAutoResetEvent m_event;
  TAutoResetEvent m_taken;
  std::atomic<int> m_count{0};
  std::atomic<int> m_waiting;
  std::atomic<bool> m_hasEnded{false};
};

// One thread makes pulses, set and at once reset, as long as others wait. Each waiter needs a pulse a round.
class PulsesReleaseAllThatWait : public Scenario {
 public:
  explicit PulsesReleaseAllThatWait(int threads) : m_waiting(threads - 1) {}

  void Round(int thread, SeededRandom&) override {
    if (thread != 0) {
      m_released += m_event.Wait() ? 1 : 0;
    }
  }

  void End(int thread) override {
    if (thread != 0) {
      --m_waiting;
      return;
    }
    while (m_waiting != 0) {
      m_event.Signal();
      m_event.Reset();
      std::this_thread::yield();
    }
  }

  void Check(int rounds) override { EXPECT_EQ(m_released, 3 * rounds); }

 private:
  TEvent m_event;
  std::atomic<int> m_waiting;
  std::atomic<int> m_released{0};
};

// Each round makes an event that the one thread signals and the other, once released, destroys.
class WaiterDestroysItsEvent : public Scenario {
 public:
  explicit WaiterDestroysItsEvent(int) {}

  void Round(int thread, SeededRandom& random) override {
    if (thread == 0) {
      Signal();
    } else {
      WaitAndDestroy(random.OneIn(2));
    }
  }

  void Check(int rounds) override { EXPECT_EQ(m_released, rounds); }

 private:
  void Signal() {
    TPlatformEvent* event = nullptr;
    while ((event = m_event.exchange(nullptr)) == nullptr) {
      std::this_thread::yield();
    }
    event->Set();
  }

  void WaitAndDestroy(bool isManual) {
    const auto event = std::make_unique<TPlatformEvent>(isManual ? TPlatformEvent::Kind::ManualReset
                                                                 : TPlatformEvent::Kind::AutoReset);
    m_event = event.get();
    m_released += event->Wait(NoLimit) ? 1 : 0;
  }

  std::atomic<TPlatformEvent*> m_event{nullptr};
  int m_released = 0;
};

// A set event is handed from thread to thread by reference; whoever lets go last destroys it.
class CancelEventsComeAndGo : public Scenario {
 public:
  explicit CancelEventsComeAndGo(int) {}

  void Round(int, SeededRandom& random) override {
    const RefCntPtr<TCancelEvent> child(new TCancelEvent);
    int calls = 0;
    child->AddOnSignalCallback(&calls, [&] { ++calls; });
    m_root->Add(child);
    if (random.OneIn(3)) {
      m_root->Signal();
      m_missed += !child->IsSet();
    }
    if (random.OneIn(5)) {
      m_root->Reset();
    }
    m_root->Remove(child);
    child->RemoveOnSignalCallback(&calls);
    m_missed += child->IsSet() != (calls > 0);
    m_leaked += child->UseCount() != 1;
  }

  void Check(int) override {
    EXPECT_EQ(m_missed, 0);
    EXPECT_EQ(m_leaked, 0);
  }

 private:
  const RefCntPtr<TCancelEvent> m_root{new TCancelEvent};
  std::atomic<int> m_missed{0};
  std::atomic<int> m_leaked{0};
};

// One thread signals two events in a random order, the other waits for any or for all of them; each wait is answered
// before the next begins.
class WaitsForSeveral : public Scenario {
 public:
  explicit WaitsForSeveral(int) {}

  void Round(int thread, SeededRandom& random) override {
    if (thread == 0) {
      Answer(random.Between(0u, 1u));
    } else {
      Ask(random.OneIn(2));
    }
  }

  void Check(int) override { EXPECT_EQ(m_wrong, 0); }

 private:
  void Answer(unsigned int first) {
    m_asked.Wait();
    m_events[first].Signal();
    m_events[1 - first].Signal();
    m_answered.Signal();
  }

  void Ask(bool forAll) {
    const std::vector<IEvent*> both{&m_events[0], &m_events[1]};
    m_events[0].Reset();
    m_events[1].Reset();
    unsigned int index = 2;
    m_asked.Signal();
    m_wrong += forAll ? !WaitForAll(both, milliseconds(NoLimit)) : !WaitForAny(both, milliseconds(NoLimit), index);
    m_wrong += forAll ? !(m_events[0].IsSet() && m_events[1].IsSet()) : index > 1;
    m_answered.Wait();
  }

  std::array<TEvent, 2> m_events;
  TAutoResetEvent m_asked;
  TAutoResetEvent m_answered;
  int m_wrong = 0;
};

const StressCase Cases[] = {
    {"MutexTwoThreads", 2, 10000, Make<MutexCounts>},
    {"MutexEightThreads", 8, 10000, Make<MutexCounts>},
    {"ReadWriteTwoThreads", 2, 20000, Make<ReadersSeeWholeWrites>},
    {"ReadWriteEightThreads", 8, 5000, Make<ReadersSeeWholeWrites>},
    {"SemaphoreSixThreads", 6, 5000, Make<UnitsBoundThreads>},
    {"PingPong", 2, 5000, Make<PingPong>},
    {"SignalsAreTakenOnce", 4, 1000, Make<SignalsAreTakenOnce>},
    {"PulsesReleaseAllThatWait", 4, 5000, Make<PulsesReleaseAllThatWait>},
    {"WaiterDestroysItsEvent", 2, 2000, Make<WaiterDestroysItsEvent>},
    {"CancelEventsComeAndGo", 4, 2000, Make<CancelEventsComeAndGo>},
    {"WaitsForSeveral", 2, 2000, Make<WaitsForSeveral>},
};

INSTANTIATE_TEST_SUITE_P(Cases, SynchronizeStressTest, testing::ValuesIn(Cases), RowName<StressCase>);

}  // namespace
