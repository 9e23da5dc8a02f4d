#include "thread/ParallelFor.h"

#include <tbb/concurrent_vector.h>

#include <exception>

#include "qilsys/TThreadPool.h"

bool qilsys::thread::g_isThreadingEnabled = true;

namespace {

using Body = std::function<void(unsigned long long)>;
using Failures = tbb::concurrent_vector<std::exception_ptr>;

// Only the first failure is reported, and room for some has been made beforehand: where no more can be had, none that
// matters is lost.
void Note(Failures& failures, std::exception_ptr failure) noexcept {
  try {
    failures.push_back(std::move(failure));
  } catch (...) {
  }
}

void RunItem(const Body& body, unsigned long long index, Failures& failures) noexcept {
  try {
    body(index);
  } catch (...) {
    Note(failures, std::current_exception());
  }
}

void RethrowFirst(const Failures& failures) {
  for (const std::exception_ptr& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
}

}  // namespace

void ParallelForThread(unsigned int threads, unsigned long long begin, unsigned long long end,
                       const std::function<void(unsigned long long)>& body) {
  // Outlives the pool, whose items write to it.
  Failures failures;
  failures.reserve(threads + 1);
  TThreadPool pool(threads, nullptr, nullptr);
  for (unsigned long long i = begin; i < end; ++i) {
    const bool isTaken =
        qilsys::thread::g_isThreadingEnabled &&
        pool.AddWork([i, body, &failures] { RunItem(body, i, failures); }, TThreadPoolWork::IfThreadIsFree);
    if (!isTaken) body(i);
  }
  pool.JoinAll(std::chrono::milliseconds::max());
  RethrowFirst(failures);
}
