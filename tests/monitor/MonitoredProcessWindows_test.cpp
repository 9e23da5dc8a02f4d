// What is Windows' own about readings of processes: ids, and a macro.
#include <gtest/gtest.h>

#include "monitor/ChildProcess.h"
#include "monitor/PsapiOrder_win.h"
#include "qilsys/MonitoredProcess.h"
#include "qilsys/QuillonException.h"

namespace qilsys::test {
namespace {

// The system takes each of them for the id itself.
TEST(MonitoredProcessWindowsTest, TheThreeNumbersBehindAnIdAreNoProcess) {
  const ChildProcess child;
  EXPECT_TRUE(MonitoredProcess::IsRunning(child.Pid()));
  for (unsigned int id = child.Pid() + 1; id < child.Pid() + 4; ++id) {
    EXPECT_FALSE(MonitoredProcess::IsRunning(id));
    EXPECT_THROW(MonitoredProcess{id}, QuillonException);
  }
}

TEST(MonitoredProcessWindowsTest, PsapiMayComeBeforeOrAfterTheHeader) {
  const ChildProcess child;
  EXPECT_GT(ReadWithPsapiBefore(child.Handle()).WorkingSetSize, 0U);
  EXPECT_GT(ReadWithPsapiAfter(child.Handle()).WorkingSetSize, 0U);
  EXPECT_GT(WorkingSetBySystem(child.Handle()), 0U);
}

}  // namespace
}  // namespace qilsys::test
