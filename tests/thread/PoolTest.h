/// Pools that a test can hold still, and a process without a pool of its own before and after each test.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "qilsys/NonThreadPoolWorkerManager.h"
#include "qilsys/TThreadPool.h"
#include "support/Latch.h"

namespace qilsys::test {

inline constexpr auto NoTimeLimit = std::chrono::milliseconds::max();

/// Keeps a number of threads busy, each with an item of its own, until it is told to let them go.
class BusyThreads {
 public:
  /// Returns once all of them are at work.
  BusyThreads(TThreadPool& pool, int threads) : m_haveBegun(std::make_shared<Latch>(threads)) {
    for (int i = 0; i < threads; ++i) {
      pool.AddWork([begun = m_haveBegun, mayEnd = m_mayEnd] { begun->CountDown(), mayEnd->Wait(); },
                   TThreadPoolWork::Always);
    }
    m_haveBegun->Wait();
  }
  BusyThreads(const BusyThreads&) = delete;
  BusyThreads& operator=(const BusyThreads&) = delete;
  ~BusyThreads() { LetGo(); }

  void LetGo() {
    if (!std::exchange(m_haveBeenLetGo, true)) m_mayEnd->CountDown();
  }

 private:
  const std::shared_ptr<Latch> m_haveBegun;
  const std::shared_ptr<Latch> m_mayEnd = std::make_shared<Latch>(1);
  bool m_haveBeenLetGo = false;
};

/// Leaves neither pool nor configuration of the process behind.
class ProcessPoolTest : public testing::Test {
 protected:
  ~ProcessPoolTest() override {
    TThreadPool::Shutdown(NoTimeLimit);
    NonThreadPoolWorkerManager::Shutdown(NoTimeLimit);
    TThreadPool::Configure(0, nullptr, nullptr, nullptr);
  }
};

}  // namespace qilsys::test
