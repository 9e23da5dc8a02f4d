#include "monitor/ResourceReporterManager.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "support/CaughtAssertion.h"

namespace qilsys::test {
namespace {

const CaughtAssertion NotRegistered{"main/monitor/ResourceReporterManager", 39, "el != mng.m_reporters.end()",
                                    0xD0963F53, "LogicException_LogicAssert_0xD0963F53"};

class Reporter : public ResourceReporter {
 public:
  explicit Reporter(std::function<void(unsigned int)> report) : m_report(std::move(report)) {}
  Reporter(const Reporter&) = default;

  void Report(unsigned int seconds) override { m_report(seconds); }

 private:
  std::function<void(unsigned int)> m_report;
};

void ReportAll(unsigned int seconds) { ResourceReporterManager::Get().ReportAll(seconds); }

TEST(ResourceReporterTest, IsCalledInOrderOfRegistrationWhileItLives) {
  std::string calls;
  const auto named = [&](char name) {
    return [&calls, name](unsigned int seconds) { calls += name + std::to_string(seconds) + ' '; };
  };
  auto first = std::make_unique<Reporter>(named('a'));
  const Reporter second(named('b'));
  const Reporter third(named('c'));
  ReportAll(30);
  EXPECT_EQ(calls, "a30 b30 c30 ");
  first.reset();
  calls.clear();
  ReportAll(0);
  EXPECT_EQ(calls, "b0 c0 ");
}

TEST(ResourceReporterTest, NobodyRegisteredIsNobodyCalled) {
  {
    const Reporter gone([](unsigned int) { FAIL(); });
  }
  ReportAll(1);
}

TEST(ResourceReporterTest, ACopyIsNotRegisteredAndItsEndIsAnAssertion) {
  int calls = 0;
  const Reporter original([&](unsigned int) { ++calls; });
  auto* copy = new Reporter(original);  // a smart pointer would not let the assertion through
  ReportAll(1);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(CatchAssertion([&] { delete copy; }), NotRegistered);
  ReportAll(1);
  EXPECT_EQ(calls, 2);
}

TEST(ResourceReporterTest, AHookThatReturnsLetsACopyGo) {
  int calls = 0;
  const Reporter original([&](unsigned int) { ++calls; });
  {
    const ScopedAssertHook hook([](const char*, int, const char*, const QuillonError&) {});
    const Reporter copy(original);
  }
  ReportAll(1);
  EXPECT_EQ(calls, 1);
}

class PlainReporter : public ResourceReporter {
 public:
  void Report(unsigned int) override { ++m_calls; }

  int m_calls = 0;
};

TEST(ResourceReporterTest, AssigningDoesNothing) {
  PlainReporter first;
  PlainReporter second;
  ResourceReporter& base = first;
  base = second;
  ReportAll(1);
  EXPECT_EQ(first.m_calls, 1);
  EXPECT_EQ(second.m_calls, 1);
}

TEST(ResourceReporterTest, OneRegisteredDuringTheWalkIsReached) {
  std::unique_ptr<Reporter> late;
  int calls = 0;
  const Reporter first([&](unsigned int) {
    if (!late) late = std::make_unique<Reporter>([&](unsigned int) { ++calls; });
  });
  ReportAll(1);
  EXPECT_EQ(calls, 1);
}

TEST(ResourceReporterTest, OneDestroyedDuringTheWalkShiftsTheRest) {
  std::string calls;
  auto victim = std::make_unique<Reporter>([&](unsigned int) { calls += 'v'; });
  const Reporter killer([&](unsigned int) {
    calls += 'k';
    victim.reset();
  });
  const Reporter skipped([&](unsigned int) { calls += 's'; });
  const Reporter last([&](unsigned int) { calls += 'l'; });
  ReportAll(1);
  EXPECT_EQ(calls, "vkl");
}

TEST(ResourceReporterTest, AnAssertionReleasesTheLock) {
  int calls = 0;
  const Reporter original([&](unsigned int) { ++calls; });
  auto* copy = new Reporter(original);  // a smart pointer would not let the assertion through
  CatchAssertion([&] { delete copy; });
  std::thread([] { ReportAll(1); }).join();
  EXPECT_EQ(calls, 1);
}

TEST(FunctionReporterTest, IsCalledWhileItLives) {
  std::string calls;
  {
    const FunctionReporter first([&](unsigned int seconds) { calls += "a" + std::to_string(seconds) + " "; });
    const FunctionReporter second([&](unsigned int seconds) { calls += "b" + std::to_string(seconds) + " "; });
    ReportAll(30);
    EXPECT_EQ(calls, "a30 b30 ");
  }
  calls.clear();
  ReportAll(30);
  EXPECT_EQ(calls, "");
}

TEST(FunctionReporterTest, AnEmptyFunctionIsNeverCalled) {
  const FunctionReporter reporter(nullptr);
  EXPECT_NO_THROW(ReportAll(1));
}

TEST(FunctionReporterTest, MayEndInItsOwnFunction) {
  std::unique_ptr<FunctionReporter> reporter;
  int calls = 0;
  reporter = std::make_unique<FunctionReporter>([&reporter, &calls, kept = std::string(100, 'x')](unsigned int) {
    reporter.reset();
    calls += kept == std::string(100, 'x') ? 1 : 100;
  });
  ReportAll(1);
  ReportAll(1);
  EXPECT_EQ(calls, 1);
}

// The base alone can't do this: it is registered before its derived class is there, and after that has gone.
TEST(FunctionReporterTest, ComesAndGoesWhileTheReportersAreCalled) {
  std::atomic<bool> ended = false;
  std::atomic<int> walks = 0;
  std::thread reporting([&] {
    while (!ended) {
      ReportAll(1);
      ++walks;
    }
  });
  while (walks == 0) std::this_thread::yield();
  std::atomic<int> calls = 0;
  for (int i = 0; i < 2000; ++i) {
    const FunctionReporter reporter([&](unsigned int) { ++calls; });
  }
  ended = true;
  reporting.join();
  const int before = calls;
  ReportAll(1);
  EXPECT_EQ(calls, before);
}

}  // namespace
}  // namespace qilsys::test
