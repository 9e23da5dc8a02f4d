// What do our locks cost beside those of the standard library: alone, again on their thread, and among threads? And,
// apart from speed, how evenly do threads that compete get their turns?
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

#include "qilsys/TEvent.h"
#include "qilsys/TLocks.h"
#include "qilsys/TSemaphore.h"

namespace {

// The standard locks under our names.
template <class Mutex>
class Standard {
 public:
  void Lock() { m_mutex.lock(); }
  void Unlock() { m_mutex.unlock(); }
  void LockRead() { m_mutex.lock_shared(); }
  void UnlockRead() { m_mutex.unlock_shared(); }

 private:
  Mutex m_mutex;
};

template <class Lock>
void BM_Uncontended(benchmark::State& state) {
  Lock lock;
  int guarded = 0;
  for (auto _ : state) {
    lock.Lock();
    benchmark::DoNotOptimize(++guarded);
    lock.Unlock();
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Uncontended<TRecursiveMutex>);
BENCHMARK(BM_Uncontended<TReadWriteLock>);
BENCHMARK(BM_Uncontended<Standard<std::mutex>>);
BENCHMARK(BM_Uncontended<Standard<std::recursive_mutex>>);
BENCHMARK(BM_Uncontended<Standard<std::shared_mutex>>);

template <class Lock>
void BM_AgainOnItsThread(benchmark::State& state) {
  Lock lock;
  lock.Lock();
  for (auto _ : state) {
    lock.Lock();
    lock.Unlock();
  }
  lock.Unlock();
}
BENCHMARK(BM_AgainOnItsThread<TRecursiveMutex>);
BENCHMARK(BM_AgainOnItsThread<Standard<std::recursive_mutex>>);

template <class Lock>
void BM_UncontendedRead(benchmark::State& state) {
  Lock lock;
  for (auto _ : state) {
    lock.LockRead();
    lock.UnlockRead();
  }
}
BENCHMARK(BM_UncontendedRead<TReadWriteLock>);
BENCHMARK(BM_UncontendedRead<Standard<std::shared_mutex>>);

void BM_UncontendedSemaphore(benchmark::State& state) {
  const RefCntPtr<TSemaphore> semaphore = TSemaphore::Construct(1);
  for (auto _ : state) {
    semaphore->Acquire();
    semaphore->Release();
  }
}
BENCHMARK(BM_UncontendedSemaphore);

// Time for one turn, all threads together, with a short section and some work outside of it.
template <class Lock>
void BM_Contended(benchmark::State& state) {
  static Lock s_lock;
  static long s_guarded = 0;
  for (auto _ : state) {
    {
      const TScopedLock<Lock> guard(s_lock);
      benchmark::DoNotOptimize(++s_guarded);
    }
    for (int i = 0; i < 50; ++i) {
      benchmark::DoNotOptimize(i);
    }
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Contended<TRecursiveMutex>)->ThreadRange(1, 8)->UseRealTime();
BENCHMARK(BM_Contended<Standard<std::mutex>>)->ThreadRange(1, 8)->UseRealTime();
BENCHMARK(BM_Contended<Standard<std::recursive_mutex>>)->ThreadRange(1, 8)->UseRealTime();

// Not a matter of speed: four threads take the lock for a fixed time. `evenness` is the fewest turns of a thread
// divided by the most; 1 is fair, 0 means that one got none.
template <class Lock>
void BM_Fairness(benchmark::State& state) {
  constexpr int Threads = 4;
  double evenness = 0;
  for (auto _ : state) {
    Lock lock;
    std::atomic<bool> stop{false};
    std::vector<long> turns(Threads);
    const TCountdownEvent start(Threads + 1);
    {
      std::vector<std::jthread> threads;
      for (long& mine : turns) {
        threads.emplace_back([&] {
          start.Signal();
          start.Wait();
          long count = 0;
          while (!stop.load(std::memory_order_relaxed)) {
            const TScopedLock<Lock> guard(lock);
            benchmark::DoNotOptimize(++count);
          }
          mine = count;
        });
      }
      start.Signal();
      start.Wait();
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      stop = true;
    }
    const auto [least, most] = std::minmax_element(turns.begin(), turns.end());
    evenness += static_cast<double>(*least) / static_cast<double>(std::max(*most, 1L));
  }
  state.counters["evenness"] = evenness / static_cast<double>(state.iterations());
}
BENCHMARK(BM_Fairness<TRecursiveMutex>)->Iterations(5)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Fairness<Standard<std::mutex>>)->Iterations(5)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
