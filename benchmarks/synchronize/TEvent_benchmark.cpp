// What does it cost to wake a thread and be woken back, beside a condition variable; and what do the operations cost
// that wake nobody?
#include <benchmark/benchmark.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "qilsys/TEvent.h"
#include "qilsys/TSemaphore.h"

namespace {

using std::chrono::milliseconds;

// An auto-reset event as one writes it with the standard library.
class StandardEvent {
 public:
  void Signal() {
    {
      const std::lock_guard lock(m_mutex);
      m_isSet = true;
    }
    m_condition.notify_one();
  }
  void Wait() {
    std::unique_lock lock(m_mutex);
    m_condition.wait(lock, [this] { return m_isSet; });
    m_isSet = false;
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_condition;
  bool m_isSet = false;
};

class SemaphoreEvent {
 public:
  void Signal() { m_semaphore->Release(); }
  void Wait() { m_semaphore->Acquire(); }

 private:
  const RefCntPtr<TSemaphore> m_semaphore = TSemaphore::Construct(0);
};

// One iteration is a way there and back between two threads.
template <class Event>
void BM_PingPong(benchmark::State& state) {
  Event ping;
  Event pong;
  std::atomic<bool> stop{false};
  std::jthread other([&] {
    for (ping.Wait(); !stop; ping.Wait()) {
      pong.Signal();
    }
  });
  for (auto _ : state) {
    ping.Signal();
    pong.Wait();
  }
  stop = true;
  ping.Signal();
}
BENCHMARK(BM_PingPong<TAutoResetEvent>)->UseRealTime();
BENCHMARK(BM_PingPong<SemaphoreEvent>)->UseRealTime();
BENCHMARK(BM_PingPong<StandardEvent>)->UseRealTime();

template <class Event>
void BM_SignalAndTake(benchmark::State& state) {
  Event event;
  for (auto _ : state) {
    event.Signal();
    event.Wait();
  }
}
BENCHMARK(BM_SignalAndTake<TAutoResetEvent>);
BENCHMARK(BM_SignalAndTake<StandardEvent>);

void BM_IsSet(benchmark::State& state) {
  const RefCntPtr<TCancelEvent> event(new TCancelEvent);
  for (auto _ : state) {
    benchmark::DoNotOptimize(event->IsSet());
  }
}
BENCHMARK(BM_IsSet)->ThreadRange(1, 2);

void BM_MakeAndDestroy(benchmark::State& state) {
  for (auto _ : state) {
    const TEvent event;
    benchmark::DoNotOptimize(&event);
  }
}
BENCHMARK(BM_MakeAndDestroy);

RefCntPtr<TCancelEvent> MakeTree(int levels, int children) {
  const RefCntPtr<TCancelEvent> event(new TCancelEvent);
  for (int i = 0; levels > 1 && i < children; ++i) {
    event->Add(MakeTree(levels - 1, children));
  }
  return event;
}

// A chain, a fan, and a tree of 1023.
void BM_SignalTree(benchmark::State& state) {
  const RefCntPtr<TCancelEvent> root = MakeTree(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    root->Signal();
  }
}
BENCHMARK(BM_SignalTree)->Args({1, 0})->Args({1000, 1})->Args({2, 1000})->Args({10, 2});

void BM_MakeAndDestroyTree(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(MakeTree(static_cast<int>(state.range(0)), static_cast<int>(state.range(1))));
  }
}
BENCHMARK(BM_MakeAndDestroyTree)->Args({1, 0})->Args({1000, 1})->Args({2, 1000})->Args({10, 2});

// All events are set, so this is the cost of registering, looking and removing.
void BM_WaitForAllOfSetEvents(benchmark::State& state) {
  std::vector<TEvent> events(static_cast<std::size_t>(state.range(0)));
  std::vector<IEvent*> pointers;
  for (TEvent& event : events) {
    event.Signal();
    pointers.push_back(&event);
  }
  if (!WaitForAll(pointers, milliseconds(0))) {
    state.SkipWithError("all events are set");
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(WaitForAll(pointers, milliseconds(0)));
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_WaitForAllOfSetEvents)->RangeMultiplier(8)->Range(1, 512)->Complexity();

}  // namespace
