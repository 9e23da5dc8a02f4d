// Many threads at tasks' states, cancellation and threads at once. Each case makes one small object a round, lets all
// threads at it, and looks at what has come of it.
#include "qilsys/AsyncTask.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "PlainState.h"
#include "qilsys/NonThreadPoolWorkerManager.h"
#include "qilsys/TThreadPool.h"
#include "support/Latch.h"
#include "support/Random.h"

namespace {

using namespace std::chrono_literals;
using AsyncTask::Cancel;
using AsyncTask::ScopedCancelImpersonation;
using qilsys::test::Latch;
using qilsys::test::PlainState;
using qilsys::test::Rounds;
using qilsys::test::SeededRandom;

constexpr auto NoTimeLimit = std::chrono::milliseconds::max();

// Gives the processor away now and then.
void Dawdle(SeededRandom& random) {
  if (random.OneIn(8)) std::this_thread::yield();
}

// Runs `work` on each of `threads` threads, all let go at once.
void AllAtOnce(int threads, const std::function<void(int thread, SeededRandom& random)>& work, int round) {
  Latch start(threads);
  std::vector<std::jthread> running;
  for (int thread = 0; thread < threads; ++thread) {
    running.emplace_back([&, thread] {
      SeededRandom random(static_cast<std::uint64_t>(round * threads + thread));
      start.ArriveAndWait();
      work(thread, random);
    });
  }
}

TEST(TaskStress, ADeferredTaskIsTakenByOneOfThemAll) {
  for (int round = 0; round < Rounds(300); ++round) {
    PlainState state;
    state.SetDeferred();
    std::atomic<int> takers{0};
    int ofTheTaker = 0;
    AllAtOnce(
        4,
        [&](int, SeededRandom& random) {
          Dawdle(random);
          if (state.TryTakingDeferredOwnership()) {
            ++takers;
            ++ofTheTaker;
          }
        },
        round);
    ASSERT_EQ(takers, 1);
    ASSERT_EQ(ofTheTaker, 1);
  }
}

TEST(TaskStress, WhatIsWrittenBeforeReadyIsReadAfterIt) {
  for (int round = 0; round < Rounds(300); ++round) {
    const auto state = std::make_shared<PlainState>();
    int result = 0;
    std::atomic<int> wrong{0};
    std::atomic<int> callbacks{0};
    state->AddOnReadyCallback(&result, [&] { callbacks += result == 42; });
    AllAtOnce(
        4,
        [&](int thread, SeededRandom& random) {
          Dawdle(random);
          if (thread == 0) {
            result = 42;
            state->SetException(std::make_exception_ptr(round));
            state->MarkAsReady();
            return;
          }
          if (thread == 1) {
            while (!state->WaitFor(0ms)) std::this_thread::yield();
          } else {
            state->Wait();
          }
          wrong += result != 42 || !state->HasException();
        },
        round);
    ASSERT_EQ(wrong, 0);
    ASSERT_EQ(callbacks, 1);
  }
}

TEST(TaskStress, TheFirstOfManyExceptionsStays) {
  for (int round = 0; round < Rounds(200); ++round) {
    PlainState state;
    AllAtOnce(
        4, [&](int thread, SeededRandom&) { state.SetException(std::make_exception_ptr(thread)); }, round);
    std::array<int, 2> caught{-1, -2};
    for (int& one : caught) {
      try {
        state.CheckForException();
      } catch (int thread) {
        one = thread;
      }
    }
    ASSERT_GE(caught[0], 0);
    ASSERT_EQ(caught[0], caught[1]);
  }
}

// The signal comes before, while or after a state gets its event; the function runs in every case but the last.
TEST(TaskStress, ASignalMeetsAStateThatGetsItsEvent) {
  for (int round = 0; round < Rounds(300); ++round) {
    const RefCntPtr<TCancelEvent> event(new TCancelEvent);
    const auto state = std::make_shared<PlainState>();
    std::atomic<int> calls{0};
    state->SetOnCancelFunction(std::make_unique<std::function<void()>>([&] { ++calls; }));
    AllAtOnce(
        3,
        [&](int thread, SeededRandom& random) {
          Dawdle(random);
          if (thread == 0) {
            state->SetCancelEvent(event);
            if (event->IsSet() && calls == 0) state->SignalCancelEventIfSet();
          } else {
            event->Signal();
          }
        },
        round);
    ASSERT_GE(calls, 1);
    ASSERT_TRUE(event->IsSet());
    state->RemoveCancelOnSignalCallback();
    const int before = calls;
    event->Signal();
    ASSERT_EQ(calls, before);
  }
}

// Tasks are taken over and ended while their event is signalled: a state that has been let go is cancelled no more, and
// one that was taken over before the signal has been.
TEST(TaskStress, ImpersonationsComeAndGoUnderSignals) {
  for (int round = 0; round < Rounds(300); ++round) {
    const RefCntPtr<TCancelEvent> event(new TCancelEvent);
    std::atomic<int> lost{0};
    std::atomic<int> late{0};
    AllAtOnce(
        4,
        [&](int thread, SeededRandom& random) {
          Dawdle(random);
          if (thread == 0) {
            event->Signal();
            return;
          }
          const auto state = std::make_shared<PlainState>();
          const bool restore = random.OneIn(2);
          {
            const ScopedCancelImpersonation scope(restore, event, state);
            if (random.OneIn(2)) event->Wait();
            Dawdle(random);
          }
          const int cancels = state->Cancels();
          std::this_thread::yield();
          late += state->Cancels() != cancels;
          late += state.use_count() != 1;
          lost += restore && Cancel::Get() != event;
          Cancel::Set(nullptr);
        },
        round);
    ASSERT_EQ(late, 0);
    ASSERT_EQ(lost, 0);
    ASSERT_EQ(event->UseCount(), 1);
  }
}

// A task polls while it is cancelled from elsewhere, through an event above its own.
TEST(TaskStress, ATaskThatPollsEndsByTheExceptionOnce) {
  for (int round = 0; round < Rounds(200); ++round) {
    const RefCntPtr<TCancelEvent> root(new TCancelEvent);
    std::atomic<int> cancelled{0};
    AllAtOnce(
        4,
        [&](int thread, SeededRandom& random) {
          Dawdle(random);
          if (thread == 0) {
            root->Signal();
            return;
          }
          const RefCntPtr<TCancelEvent> own(new TCancelEvent);
          root->Add(own);
          {
            const Cancel::CancelEventSetter setter(own);
            try {
              for (;;) {
                if (random.OneIn(4)) {
                  const Cancel::SuppressParentCancel suppressing;
                  Cancel::ThrowIfCancelled();
                }
                Cancel::ThrowIfCancelled();
              }
            } catch (const AsyncTask::CancelException&) {
              ++cancelled;
            }
          }
          root->Remove(own);
        },
        round);
    ASSERT_EQ(cancelled, 3);
    ASSERT_EQ(root->UseCount(), 1);
  }
}

// Items are offered by many threads, and by items, while the pool closes. Each is run once or refused, and gone then.
TEST(TaskStress, EveryItemOfAPoolRunsOnceOrIsRefused) {
  for (int round = 0; round < Rounds(100); ++round) {
    std::atomic<int> taken{0};
    std::atomic<int> run{0};
    std::atomic<int> wrong{0};
    const auto live = std::make_shared<int>(0);
    {
      SeededRandom random(static_cast<std::uint64_t>(round));
      TThreadPool pool(random.Between(1u, 4u), nullptr, nullptr);
      AllAtOnce(
          4,
          [&](int thread, SeededRandom& own) {
            if (thread == 0) {
              Dawdle(own);
              wrong += !pool.JoinAll(NoTimeLimit);
              return;
            }
            for (int i = 0; i < 20; ++i) {
              const auto kind = own.OneIn(2) ? TThreadPoolWork::Always : TThreadPoolWork::IfThreadIsFree;
              const auto item = [&run, &wrong, &pool, live] {
                ++run;
                wrong += !pool.IsThreadPoolThread();
              };
              taken += pool.AddWork(item, kind);
              Dawdle(own);
            }
          },
          round);
      wrong += pool.GetThreadPoolUseCount() != 0;
    }
    ASSERT_EQ(run, taken);
    ASSERT_EQ(wrong, 0);
    ASSERT_EQ(live.use_count(), 1);
  }
}

TEST(TaskStress, TasksOfDedicatedThreadsAreCountedOrDropped) {
  for (int round = 0; round < Rounds(100); ++round) {
    std::atomic<int> begun{0};
    std::atomic<int> ended{0};
    std::atomic<int> endedAtClose{-1};
    const auto live = std::make_shared<int>(0);
    {
      NonThreadPoolWorkerManager manager(nullptr, nullptr);
      AllAtOnce(
          3,
          [&](int thread, SeededRandom& random) {
            if (thread == 0) {
              Dawdle(random);
              manager.Close(NoTimeLimit);
              endedAtClose = ended.load();
              return;
            }
            for (int i = 0; i < 5; ++i) {
              manager.RunTask([&, live] { ++begun, ++ended; });
            }
          },
          round);
      ASSERT_EQ(manager.GetThreadCount(), 0u);
    }
    ASSERT_EQ(begun, ended);
    ASSERT_EQ(endedAtClose, ended) << "none begins once the close has returned";
    ASSERT_EQ(live.use_count(), 1);
  }
}

TEST(TaskStress, ParallelLoopsSeeToEachIndexOnce) {
  for (int round = 0; round < Rounds(50); ++round) {
    SeededRandom random(static_cast<std::uint64_t>(round));
    const auto count = random.Between(0ULL, 200ULL);
    std::vector<std::atomic<int>> calls(count);
    ParallelForThread(random.Between(1u, 4u), 0, count, [&](unsigned long long i) { ++calls[i]; });
    for (const auto& one : calls) {
      ASSERT_EQ(one, 1);
    }
  }
}

}  // namespace
