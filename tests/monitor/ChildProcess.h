/// A forked process of a test: does nothing until it is killed, dies with its parent, and is reaped by the destructor.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qilsys::test {

class ChildProcess {
 public:
  ChildProcess() : m_pid(fork()) {
    if (m_pid == 0) Idle();
    EXPECT_GT(m_pid, 0);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() {
    if (m_pid <= 0) return;
    kill(m_pid, SIGKILL);
    Reap();
  }

  unsigned int Pid() const { return static_cast<unsigned int>(m_pid); }

  /// Ends the process and waits until it is a zombie.
  void EndUnreaped() const {
    kill(m_pid, SIGKILL);
    siginfo_t info{};
    EXPECT_EQ(waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOWAIT), 0);
  }

  void Reap() {
    EXPECT_EQ(waitpid(m_pid, nullptr, 0), m_pid);
    m_pid = -1;
  }

 private:
  [[noreturn]] static void Idle() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have ended before the signal was asked for.
    if (getppid() == 1) _exit(0);
    for (;;) pause();
  }

  pid_t m_pid;
};

}  // namespace qilsys::test
