// The sibling for Windows is Signals_win.cpp.
#include "monitor/Signals.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <pthread.h>

#include <algorithm>
#include <csignal>
#include <iterator>

namespace qilsys::test {

std::optional<SignalsTaken> SignalsTakenHere() {
  constexpr int outside[] = {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGCHLD, SIGALRM, SIGUSR1, SIGUSR2, SIGPIPE, SIGPROF};
  constexpr int ofOwnFaults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT};
  sigset_t blocked;
  pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
  const auto isTaken = [&](int signal) { return sigismember(&blocked, signal) == 0; };
  return SignalsTaken{std::any_of(std::begin(outside), std::end(outside), isTaken),
                      std::all_of(std::begin(ofOwnFaults), std::end(ofOwnFaults), isTaken)};
}

}  // namespace qilsys::test
