// A host that is built with ThreadSanitizer and uses the library as it is delivered, without. None of its stories has a
// race; each is one to whoever does not know what the library orders.
#include "ThreadSanitizerHost.h"

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

#include "qilsys/SharedState.h"
#include "qilsys/TEvent.h"
#include "qilsys/TLocks.h"
#include "qilsys/TSemaphore.h"
#include "qilsys/TStringCore.h"
#include "qilsys/TThreadPool.h"

namespace {

constexpr int Rounds = 100;

std::atomic<int> g_reports{0};

// Reads that nobody used would be left out.
std::atomic<int> g_seen{0};

void See(int value) { g_seen.fetch_add(value, std::memory_order_relaxed); }

template <class... Threads>
void RunTogether(Threads... threads) {
  const std::jthread running[] = {std::jthread(threads)...};
}

void RecursiveMutex() {
  TRecursiveMutex mutex;
  int guarded = 0;
  const auto count = [&] {
    for (int i = 0; i < Rounds; ++i) {
      const TScopedLock outer(mutex);
      const TScopedLock inner(mutex);
      ++guarded;
    }
  };
  RunTogether(count, count);
}

void TriedMutex() {
  TRecursiveMutex mutex;
  int guarded = 0;
  const auto count = [&] {
    for (int i = 0; i < Rounds; ++i) {
      while (!mutex.TryLock()) {
        std::this_thread::yield();
      }
      ++guarded;
      mutex.Unlock();
    }
  };
  RunTogether(count, count);
}

void ReadWriteLock() {
  TReadWriteLock lock;
  int guarded = 0;
  const auto write = [&] {
    for (int i = 0; i < Rounds; ++i) {
      const TScopedLock guard(lock);
      ++guarded;
    }
  };
  const auto read = [&] {
    for (int i = 0; i < Rounds; ++i) {
      const TScopedReadLock guard(lock);
      See(guarded);
    }
  };
  RunTogether(write, read, read, write);
}

void Event() {
  const TEvent event;
  int written = 0;
  const auto read = [&] {
    event.Wait();
    See(written);
  };
  RunTogether(
      [&] {
        written = 1;
        event.Signal();
      },
      read, read);
}

void PolledEvent() {
  const TEvent event;
  int written = 0;
  RunTogether(
      [&] {
        written = 1;
        event.Signal();
      },
      [&] {
        while (!event.IsSet()) {
          std::this_thread::yield();
        }
        ++written;
      });
}

void AutoResetEvents() {
  const TAutoResetEvent ping;
  const TAutoResetEvent pong;
  int ball = 0;
  RunTogether(
      [&] {
        for (int i = 0; i < Rounds; ++i) {
          ++ball;
          ping.Signal();
          pong.Wait();
        }
      },
      [&] {
        for (int i = 0; i < Rounds; ++i) {
          ping.Wait();
          ++ball;
          pong.Signal();
        }
      });
}

void CountdownEvent() {
  const TCountdownEvent event(2);
  int written[2] = {};
  const auto write = [&](int& mine) {
    return [&] {
      mine = 1;
      event.Signal();
    };
  };
  RunTogether(write(written[0]), write(written[1]), [&] {
    event.Wait();
    See(written[0] + written[1]);
  });
}

void CancelTree() {
  const RefCntPtr<TCancelEvent> parent(new TCancelEvent);
  const RefCntPtr<TCancelEvent> child(new TCancelEvent);
  parent->Add(child);
  int written = 0;
  RunTogether(
      [&] {
        written = 1;
        parent->Signal();
      },
      [&] {
        child->Wait();
        ++written;
      });
}

void RemovedCallback() {
  const TEvent event;
  int key = 0;
  int calls = 0;
  std::atomic<bool> hasRun{false};
  event.AddOnSignalCallback(&key, [&] {
    ++calls;
    hasRun.store(true, std::memory_order_relaxed);
  });
  RunTogether(
      [&] {
        for (int i = 0; i < Rounds; ++i) {
          event.Signal();
        }
      },
      [&] {
        while (!hasRun.load(std::memory_order_relaxed)) {
          std::this_thread::yield();
        }
        event.RemoveOnSignalCallback(&key);
        ++calls;
      });
}

void WaitForSeveral() {
  TEvent never;
  TEvent first;
  TEvent second;
  int written[2] = {};
  const auto write = [&](int& mine, const TEvent& event) {
    return [&] {
      mine = 1;
      event.Signal();
    };
  };
  RunTogether(write(written[0], first), write(written[1], second), [&] {
    WaitForAll({&first, &second}, std::chrono::milliseconds(0xFFFFFFFF));
    See(written[0] + written[1]);
    WaitForAny({&never, &second}, std::chrono::milliseconds(0xFFFFFFFF));
  });
}

void Semaphore() {
  const RefCntPtr<TSemaphore> items = TSemaphore::Construct(0);
  int written = 0;
  RunTogether(
      [&] {
        written = 1;
        items->Release();
      },
      [&] {
        items->Acquire();
        ++written;
      });
}

void SemaphoreScope() {
  const RefCntPtr<TSemaphore> semaphore = TSemaphore::Construct(1);
  int guarded = 0;
  const auto count = [&] {
    for (int i = 0; i < Rounds; ++i) {
      const RefCntPtr<TSemaphoreScope> scope(new TSemaphoreScope(semaphore));
      ++guarded;
    }
  };
  RunTogether(count, count);
}

class OwnEvent : public TCancelEvent {
 public:
  int m_value = 0;

 protected:
  ~OwnEvent() override { ++m_value; }
};

// One thread drops its reference inside of the library, by way of a parent, the other in the host. Whoever is last
// destroys what the other has written. The count alone says that the other one is done.
struct Shared {
  Shared() { parent->Add(object); }
  void AwaitOthers() const {
    while (object->UseCount() != 1) {
      std::this_thread::yield();
    }
  }

  RefCntPtr<TCancelEvent> parent{new TCancelEvent};
  RefCntPtr<OwnEvent> object{new OwnEvent};
};

void CountDroppedLastByTheHost() {
  Shared shared;
  OwnEvent* const raw = shared.object.get();
  RunTogether(
      [&] {
        raw->m_value = 1;
        shared.parent.reset();
      },
      [&] {
        shared.AwaitOthers();
        shared.object.reset();
      });
}

void CountDroppedLastByTheLibrary() {
  Shared shared;
  OwnEvent* const raw = shared.object.get();
  RunTogether(
      [&] {
        raw->m_value = 1;
        shared.object.reset();
      },
      [&] {
        while (raw->UseCount() != 1) {
          std::this_thread::yield();
        }
        shared.parent.reset();
      });
}

void PoolWork() {
  TThreadPool pool(2, nullptr, nullptr);
  int value = 1;
  pool.AddWork([&value] { ++value; }, TThreadPoolWork::Always);
  pool.JoinAll(std::chrono::milliseconds::max());
  See(++value);
}

// The thread that finds itself the only holder of a text writes to it in place.
void SharedText() {
  TStringCore text(u"longer than a string can hold without a block");
  TStringCore copy = text;
  std::atomic<bool> isDropped = false;
  RunTogether(
      [&] {
        See(*copy.constData());
        copy = TStringCore();
        isDropped.store(true, std::memory_order_relaxed);
      },
      [&] {
        while (!isDropped.load(std::memory_order_relaxed)) {
          std::this_thread::yield();
        }
        text.replace(0, 6, u"as long as all that");
      });
}

class DeferredState : public AsyncTask::SharedStateBase {
 public:
  void Cancel() override {}
};

void DeferredTask() {
  DeferredState state;
  int written = 0;
  RunTogether(
      [&] {
        written = 1;
        state.SetDeferred();
      },
      [&] {
        while (!state.TryTakingDeferredOwnership()) {
          std::this_thread::yield();
        }
        ++written;
      });
}

struct Story {
  const char* name;
  void (*run)();
};

constexpr Story Stories[] = {{"RecursiveMutex", RecursiveMutex},
                             {"TriedMutex", TriedMutex},
                             {"ReadWriteLock", ReadWriteLock},
                             {"Event", Event},
                             {"PolledEvent", PolledEvent},
                             {"AutoResetEvents", AutoResetEvents},
                             {"CountdownEvent", CountdownEvent},
                             {"CancelTree", CancelTree},
                             {"RemovedCallback", RemovedCallback},
                             {"WaitForSeveral", WaitForSeveral},
                             {"Semaphore", Semaphore},
                             {"SemaphoreScope", SemaphoreScope},
                             {"PoolWork", PoolWork},
                             {"DeferredTask", DeferredTask},
                             {"SharedText", SharedText},
                             {"CountDroppedLastByTheHost", CountDroppedLastByTheHost},
                             {"CountDroppedLastByTheLibrary", CountDroppedLastByTheLibrary}};

}  // namespace

// The tool asks for this when it starts: stories reuse addresses, and the outcome is ours.
extern "C" [[gnu::visibility("default")]] const char* __tsan_default_options() {
  return "suppress_equal_addresses=0:exitcode=0";
}

// The tool calls this with each race that it reports.
extern "C" [[gnu::visibility("default")]] void __tsan_on_report(void*) { ++g_reports; }

// Without announcements every story must be reported, or it would prove nothing.
int main() {
  int wrong = 0;
  for (const Story& story : Stories) {
    const int before = g_reports;
    story.run();
    const int reports = g_reports - before;
    const bool isRight = (reports == 0) == qilsys::test::AreAnnouncementsHeard();
    std::printf("%s: %d reports%s\n", story.name, reports, isRight ? "" : ", which is wrong");
    wrong += !isRight;
  }
  return wrong == 0 ? 0 : 1;
}
