#include "monitor/ChildProcessManager.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "monitor/ChildProcess.h"
#include "qilsys/QuillonException.h"
#include "support/CaughtAssertion.h"

namespace qilsys::test {
namespace {

using Lines = std::vector<std::string>;

const CaughtAssertion Present{"main/monitor/ChildProcessManager", 19, "m_processes.emplace(pid, pid).second",
                              0xB2145A1B, "LogicException_LogicAssert_0xB2145A1B"};
const CaughtAssertion Absent{"main/monitor/ChildProcessManager", 28, "m_processes.erase(pid) > 0", 0xD96CB2C8,
                             "LogicException_LogicAssert_0xD96CB2C8"};

std::string Adding(unsigned int pid) { return "Resource Manager: Adding child process: " + std::to_string(pid); }
std::string Removing(unsigned int pid) { return "Resource Manager: Removing child process: " + std::to_string(pid); }

class ChildProcessManagerTest : public testing::Test {
 protected:
  Lines m_lines;
  ChildProcessManager m_children{[this](const TStringCore& line) { m_lines.push_back(line.toStdString()); }};
};

TEST_F(ChildProcessManagerTest, NoChildrenUseNothing) {
  EXPECT_EQ(m_children.GetCpuUsage(), 0U);
  EXPECT_EQ(m_children.GetMemoryUsage(), 0U);
}

TEST_F(ChildProcessManagerTest, AddsUpTheChildren) {
  const ChildProcess first;
  const ChildProcess second;
  m_children.AddChild(first.Pid());
  const unsigned long long one = m_children.GetMemoryUsage();
  EXPECT_GT(one, 0U);
  m_children.AddChild(second.Pid());
  EXPECT_GT(m_children.GetMemoryUsage(), one);
  EXPECT_LE(m_children.GetCpuUsage(), 100U);
  m_children.RemoveChild(first.Pid());
  m_children.RemoveChild(second.Pid());
  EXPECT_EQ(m_children.GetMemoryUsage(), 0U);
  EXPECT_EQ(m_lines, (Lines{Adding(first.Pid()), Adding(second.Pid()), Removing(first.Pid()), Removing(second.Pid())}));
}

TEST_F(ChildProcessManagerTest, ARegisteredPidLogsAndThenAsserts) {
  const ChildProcess child;
  m_children.AddChild(child.Pid());
  EXPECT_EQ(CatchAssertion([&] { m_children.AddChild(child.Pid()); }), Present);
  EXPECT_EQ(m_lines, (Lines{Adding(child.Pid()), Adding(child.Pid())}));
}

TEST_F(ChildProcessManagerTest, AnUnknownPidLogsAndThenAsserts) {
  EXPECT_EQ(CatchAssertion([&] { m_children.RemoveChild(12); }), Absent);
  EXPECT_EQ(m_lines, Lines{Removing(12)});
}

TEST_F(ChildProcessManagerTest, AProcessThatIsNotRunningIsNotInserted) {
  try {
    m_children.AddChild(0x7FFFFFFF);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const QuillonException& exception) {
    EXPECT_EQ(exception.GetMessagesFront().toStdString(), "Process pid=2147483647 is not running");
    EXPECT_EQ(exception.GetErrorCode(), 0xC1062A71U);
  }
  EXPECT_EQ(m_lines, Lines{Adding(0x7FFFFFFF)});
  EXPECT_EQ(CatchAssertion([&] { m_children.RemoveChild(0x7FFFFFFF); }), Absent);
}

TEST_F(ChildProcessManagerTest, AnEndedChildStaysAndReadsAsNothing) {
  ChildProcess child;
  m_children.AddChild(child.Pid());
  child.EndUnreaped();
  // The first reading after the end may still cover time that was used.
  m_children.GetCpuUsage();
  EXPECT_EQ(m_children.GetCpuUsage(), 0U);
  EXPECT_EQ(m_children.GetMemoryUsage(), 0U);
  EXPECT_EQ(CatchAssertion([&] { m_children.AddChild(child.Pid()); }), Present);
  m_children.RemoveChild(child.Pid());
}

TEST_F(ChildProcessManagerTest, AHookThatReturnsLeavesTheSetAsItWas) {
  const ChildProcess child;
  m_children.AddChild(child.Pid());
  const ScopedAssertHook hook([](const char*, int, const char*, const QuillonError&) {});
  m_children.AddChild(child.Pid());
  m_children.RemoveChild(12);
  EXPECT_GT(m_children.GetMemoryUsage(), 0U);
  m_children.RemoveChild(child.Pid());
  EXPECT_EQ(m_children.GetMemoryUsage(), 0U);
}

TEST_F(ChildProcessManagerTest, AnAssertionReleasesTheLock) {
  CatchAssertion([&] { m_children.RemoveChild(12); });
  std::thread([&] { EXPECT_EQ(m_children.GetMemoryUsage(), 0U); }).join();
}

}  // namespace
}  // namespace qilsys::test
