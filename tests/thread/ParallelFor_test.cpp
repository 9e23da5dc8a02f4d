#include "thread/ParallelFor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "qilsys/TThreadPool.h"
#include "support/Eventually.h"
#include "support/Latch.h"

namespace {

using qilsys::test::Eventually;
using qilsys::test::Latch;
using qilsys::thread::g_isThreadingEnabled;

using Index = unsigned long long;

TEST(ParallelForThread, CallsTheBodyOnceForEachIndex) {
  for (const unsigned int threads : {1u, 2u, 5u}) {
    std::vector<std::atomic<int>> calls(1000);
    ParallelForThread(threads, 100, 1000, [&](Index i) { ++calls[i]; });
    for (std::size_t i = 0; i < calls.size(); ++i) {
      EXPECT_EQ(calls[i], i < 100 ? 0 : 1) << i;
    }
  }
}

TEST(ParallelForThread, AnEmptyRangeCallsNothingAndReturns) {
  const auto fail = [](Index) { ADD_FAILURE(); };
  ParallelForThread(2, 7, 7, fail);
  ParallelForThread(1, 8, 7, fail);
  ParallelForThread(1, ~0ULL, ~0ULL, fail);
}

TEST(ParallelForThread, TheCallerTakesWhatThePoolDoesNot) {
  const std::thread::id caller = std::this_thread::get_id();
  Latch haveMet(2);
  std::atomic<int> ofTheCaller{0};
  ParallelForThread(1, 0, 2, [&](Index) {
    ofTheCaller += std::this_thread::get_id() == caller;
    haveMet.CountDown();
    haveMet.Wait();
  });
  EXPECT_EQ(ofTheCaller, 1);
}

TEST(ParallelForThread, RethrowsOneOfTheFailuresOnceAllHaveEnded) {
  std::atomic<int> calls{0};
  const std::thread::id caller = std::this_thread::get_id();
  std::atomic<int> failuresLeft{2};
  std::string caught;
  // On pool threads only: a failure on the caller leaves at once.
  try {
    ParallelForThread(2, 0, 500, [&](Index) {
      ++calls;
      if (std::this_thread::get_id() == caller) {
        // Lets the others come to their share.
        while (failuresLeft > 0) std::this_thread::yield();
      } else if (failuresLeft-- > 0) {
        throw std::runtime_error("failure");
      }
    });
  } catch (const std::runtime_error& error) {
    caught = error.what();
  }
  EXPECT_EQ(caught, "failure");
  EXPECT_EQ(calls, 500);
}

TEST(ParallelForThread, AFailureOnTheCallerLeavesAtOnceAndWaitsForWhatRuns) {
  const std::thread::id caller = std::this_thread::get_id();
  Latch hasBegun(1);
  std::atomic<bool> hasEnded{false};
  std::atomic<bool> hasFailed{false};
  std::atomic<int> calls{0};
  EXPECT_THROW(ParallelForThread(1, 0, 1000,
                                 [&](Index) {
                                   ++calls;
                                   if (std::this_thread::get_id() == caller) {
                                     hasBegun.Wait();
                                     hasFailed = true;
                                     throw std::logic_error("caller");
                                   }
                                   hasBegun.CountDown();
                                   Eventually([&] { return hasFailed.load(); });
                                   std::this_thread::yield();
                                   hasEnded = true;
                                 }),
               std::logic_error);
  EXPECT_TRUE(hasEnded);
  EXPECT_EQ(calls, 2) << "the other indices are left out";
}

TEST(ParallelForThread, RunsOnTheCallerAloneWhereThreadingIsOff) {
  struct Off {
    Off() { g_isThreadingEnabled = false; }
    ~Off() { g_isThreadingEnabled = true; }
  };
  EXPECT_TRUE(g_isThreadingEnabled) << "from the start";
  const Off off;
  std::vector<Index> order;
  ParallelForThread(2, 3, 6, [&](Index i) { order.push_back(i); });
  EXPECT_EQ(order, (std::vector<Index>{3, 4, 5}));
}

}  // namespace
