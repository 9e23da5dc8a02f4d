// The sibling for Windows is ThreadStart_win.cpp.
#include "monitor/ThreadStart_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <pthread.h>

#include <csignal>
#include <utility>

namespace {

// Blocks what comes from outside while it lives: a thread begins with the mask of the one that makes it, and would
// else have a moment without.
class OutsideSignalsBlocked {
 public:
  OutsideSignalsBlocked() {
    sigset_t outside;
    sigfillset(&outside);
    for (const int ofOwnFaults : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT}) {
      sigdelset(&outside, ofOwnFaults);
    }
    pthread_sigmask(SIG_SETMASK, &outside, &m_before);
  }
  OutsideSignalsBlocked(const OutsideSignalsBlocked&) = delete;
  OutsideSignalsBlocked& operator=(const OutsideSignalsBlocked&) = delete;
  ~OutsideSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

 private:
  sigset_t m_before;
};

}  // namespace

std::thread qilsys::monitor::StartThread(std::function<void()> run) {
  const OutsideSignalsBlocked blocked;
  return std::thread(std::move(run));
}
