/// A process of a test that does nothing until it is ended.
#pragma once

#include <gtest/gtest.h>

#include "support/SpawnedProcess.h"

namespace qilsys::test {

class ChildProcess {
 public:
  ChildProcess() : m_process({QILSYS_MEMBER_PROGRAM, "0"}) {
    EXPECT_TRUE(m_process.Read(std::chrono::seconds(20)).value_or("").starts_with("READY"));
  }

  unsigned int Pid() const { return m_process.Pid(); }

  /// What `GetProcessMemoryInfo` knows it by.
  void* Handle() const { return m_process.Handle(); }

  /// Ends the process; the system does not forget it before it is reaped.
  void EndUnreaped() const { m_process.KillUnreaped(); }

  void Reap() { EXPECT_EQ(m_process.Wait(), KilledBySignal); }

 private:
  SpawnedProcess m_process;
};

}  // namespace qilsys::test
