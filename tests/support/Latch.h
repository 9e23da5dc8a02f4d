/// A line that threads wait at until all have come.
#pragma once

#include <condition_variable>
#include <mutex>

namespace qilsys::test {

/// As std::latch, which on Windows has been seen to hang: where the standard library has no futex to wait on, a count
/// that reaches zero between its look and its wait is lost.
class Latch {
 public:
  explicit Latch(int count) : m_count(count) {}
  Latch(const Latch&) = delete;
  Latch& operator=(const Latch&) = delete;

  void CountDown() {
    const std::lock_guard lock(m_mutex);
    if (--m_count == 0) {
      m_condition.notify_all();
    }
  }
  void Wait() {
    std::unique_lock lock(m_mutex);
    m_condition.wait(lock, [this] { return m_count == 0; });
  }
  void ArriveAndWait() {
    CountDown();
    Wait();
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_condition;
  int m_count;
};

}  // namespace qilsys::test
