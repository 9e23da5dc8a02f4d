#include "monitor/ReclaimFunctions.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/CaughtAssertion.h"

namespace qilsys::test {
namespace {

using Lines = std::vector<std::string>;

const CaughtAssertion EmptyFunction{"main/monitor/ReclaimFunctions", 19, "func", 0x90402CEB,
                                    "LogicException_LogicAssert_0x90402CEB"};
const CaughtAssertion NameTaken{"main/monitor/ReclaimFunctions", 23,
                                "m_functions.insert(std::make_pair(name, func)).second", 0x4A8DFC55,
                                "LogicException_LogicAssert_0x4A8DFC55"};
const CaughtAssertion NameUnknown{"main/monitor/ReclaimFunctions", 31, "m_functions.erase(name) > 0", 0x559557CC,
                                  "LogicException_LogicAssert_0x559557CC"};

class ReclaimFunctionsTest : public testing::Test {
 protected:
  std::function<void(const TStringCore&)> Log() {
    return [this](const TStringCore& line) { m_lines.push_back(line.toStdString()); };
  }

  std::function<void(double)> Call(const char* name) {
    return [this, name](double) { m_lines.push_back(std::string("call ") + name); };
  }

  ReclaimFunctions m_functions{u"memory"};
  Lines m_lines;
};

TEST_F(ReclaimFunctionsTest, AnEmptyTableLogsItsCountAndIsFalse) {
  EXPECT_FALSE(m_functions.Reclaim(Log(), 0.5));
  EXPECT_EQ(m_lines, Lines{"Resource Manager: Reclaiming memory. Number registered functions: 0"});
}

TEST_F(ReclaimFunctionsTest, CallsInOrderOfNamesAndLogsEach) {
  m_functions.Add(u"b", Call("b"));
  m_functions.Add(u"a", Call("a"));
  EXPECT_TRUE(m_functions.Reclaim(Log(), 0.5));
  EXPECT_EQ(m_lines, (Lines{"Resource Manager: Reclaiming memory. Number registered functions: 2",
                            "Resource Manager: Calling reclaim function named: a", "call a",
                            "Resource Manager: Calling reclaim function named: b", "call b"}));
}

TEST_F(ReclaimFunctionsTest, IsTrueWhenTheFunctionsDoNothing) {
  m_functions.Add(u"idle", [](double) {});
  EXPECT_TRUE(m_functions.Reclaim(Log(), 0.5));
}

TEST_F(ReclaimFunctionsTest, PassesTheArgumentOn) {
  double seen = 0;
  m_functions.Add(u"a", [&](double argument) { seen = argument; });
  m_functions.Reclaim(Log(), 1.25);
  EXPECT_EQ(seen, 1.25);
}

TEST_F(ReclaimFunctionsTest, AnEmptyFunctionIsAnAssertion) {
  EXPECT_EQ(CatchAssertion([&] { m_functions.Add(u"a", nullptr); }), EmptyFunction);
  EXPECT_FALSE(m_functions.Reclaim(Log(), 0));
}

TEST_F(ReclaimFunctionsTest, ATakenNameIsAnAssertionAndTheFirstStays) {
  m_functions.Add(u"a", Call("first"));
  EXPECT_EQ(CatchAssertion([&] { m_functions.Add(u"a", Call("second")); }), NameTaken);
  m_functions.Reclaim(Log(), 0);
  EXPECT_EQ(m_lines.back(), "call first");
}

TEST_F(ReclaimFunctionsTest, AnUnknownNameIsAnAssertion) {
  EXPECT_EQ(CatchAssertion([&] { m_functions.Remove(u"a"); }), NameUnknown);
  m_functions.Add(u"a", Call("a"));
  EXPECT_EQ(CatchAssertion([&] { m_functions.Remove(u"A"); }), NameUnknown);
}

TEST_F(ReclaimFunctionsTest, RemovesByName) {
  m_functions.Add(u"a", Call("a"));
  m_functions.Remove(u"a");
  EXPECT_FALSE(m_functions.Reclaim(Log(), 0));
  m_functions.Add(u"a", Call("again"));
  EXPECT_TRUE(m_functions.Reclaim(Log(), 0));
}

TEST_F(ReclaimFunctionsTest, AHookThatReturnsLeavesTheTableAsItWas) {
  const ScopedAssertHook hook([](const char*, int, const char*, const QuillonError&) {});
  m_functions.Add(u"a", nullptr);
  m_functions.Add(u"b", Call("first"));
  m_functions.Add(u"b", Call("second"));
  m_functions.Remove(u"c");
  m_functions.Reclaim(Log(), 0);
  EXPECT_EQ(m_lines, (Lines{"Resource Manager: Reclaiming memory. Number registered functions: 1",
                            "Resource Manager: Calling reclaim function named: b", "call first"}));
}

TEST_F(ReclaimFunctionsTest, AnAssertionReleasesTheLock) {
  CatchAssertion([&] { m_functions.Remove(u"a"); });
  std::thread([&] { m_functions.Add(u"a", Call("a")); }).join();
  EXPECT_TRUE(m_functions.Reclaim(Log(), 0));
}

TEST_F(ReclaimFunctionsTest, AThrowEndsTheWalkAndReleasesTheLock) {
  m_functions.Add(u"a", [](double) { throw std::runtime_error("no"); });
  m_functions.Add(u"b", Call("b"));
  EXPECT_THROW(m_functions.Reclaim(Log(), 0), std::runtime_error);
  EXPECT_EQ(m_lines, (Lines{"Resource Manager: Reclaiming memory. Number registered functions: 2",
                            "Resource Manager: Calling reclaim function named: a"}));
  std::thread([&] { m_functions.Remove(u"a"); }).join();
}

TEST_F(ReclaimFunctionsTest, AFunctionMayRemoveItselfAndAddOthers) {
  m_functions.Add(u"a", [this](double) {
    m_functions.Remove(u"a");
    m_functions.Add(u"b", Call("b"));
  });
  EXPECT_TRUE(m_functions.Reclaim(Log(), 0));
  EXPECT_EQ(m_lines, (Lines{"Resource Manager: Reclaiming memory. Number registered functions: 1",
                            "Resource Manager: Calling reclaim function named: a",
                            "Resource Manager: Calling reclaim function named: b", "call b"}));
}

TEST_F(ReclaimFunctionsTest, ChangingTheTableWaitsForTheEndOfTheWalk) {
  std::thread other;
  std::atomic<bool> asked = false;
  std::atomic<bool> removed = false;
  m_functions.Add(u"a", [&](double) {
    other = std::thread([&] {
      asked = true;
      m_functions.Remove(u"a");
      removed = true;
    });
    while (!asked) std::this_thread::yield();
    EXPECT_FALSE(removed);
  });
  m_functions.Add(u"b", [&](double) { EXPECT_FALSE(removed); });
  m_functions.Reclaim(Log(), 0);
  other.join();
  EXPECT_TRUE(removed);
}

}  // namespace
}  // namespace qilsys::test
