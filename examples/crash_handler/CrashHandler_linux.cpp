// Signals, and a helper that is started by the crash. The sibling for Windows is CrashHandler_win.cpp.
#include "crash_handler/CrashHandler.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <qilsys/CrashDump.h>
#include <qilsys/TStringCore.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <fstream>

#include "crash_handler/StackLines_linux.h"

namespace crash_handler {

namespace {

constexpr char HelperWord[] = "--crashed";
constexpr std::array CrashSignals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};

/// All that the handler needs, made ready when it is installed.
struct Prepared {
  std::string folder;
  std::array<char, 24> process{};
  std::array<char*, 5> words{};
  /// Whoever has used up its stack has none for a handler.
  std::array<char, 65536> stack{};
};
Prepared g_prepared;
std::atomic_flag g_hasCrashed = ATOMIC_FLAG_INIT;

/// By a copy of this process that shares its memory until it becomes the helper: nothing is copied, no hook runs, and no
/// lock of the C library is taken.
pid_t StartHelper() {
  const pid_t helper = vfork();
  if (helper == 0) {
    execve("/proc/self/exe", g_prepared.words.data(), environ);
    _exit(127);
  }
  return helper;
}

// Whatever stands here must be allowed in a signal handler.
void HandleCrash(int number) {
  // A second thread that crashes waits for the end that the first one brings.
  while (g_hasCrashed.test_and_set()) pause();
  // Where only ancestors may trace, the helper is one that has been allowed to, as a child of this process.
  prctl(PR_SET_PTRACER, getpid());
  *std::to_chars(g_prepared.process.begin(), g_prepared.process.end() - 1, getpid()).ptr = '\0';
  const pid_t helper = StartHelper();
  int status = 0;
  while (helper > 0 && waitpid(helper, &status, 0) == -1 && errno == EINTR) continue;
  // The process ends as it would have without a handler: the kernel's own dump, and the exit code, say the true reason.
  signal(number, SIG_DFL);
  syscall(SYS_tgkill, getpid(), syscall(SYS_gettid), number);
}

int Help(const std::string& process, const std::string& folder) {
  // The handler's signals are blocked where it runs, and a program inherits that.
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const std::string stem = folder + "/crash-" + process;
  const TStringCore dump = TStringCore::fromStdString(stem + ".dmp");
  const bool isDumped = WriteCrashDump(nullptr, std::stoul(process), dump.data(), MiniDumpWithFullMemory) != 0;
  std::ofstream file(stem + ".txt");
  for (const std::string& line : StackLinesOf(stem + ".dmp")) file << line << '\n';
  return isDumped && file.flush() ? 0 : 1;
}

}  // namespace

bool Install(const std::string& folder) {
  static std::string s_name = "crash helper";
  static std::string s_word = HelperWord;
  g_prepared.folder = folder;
  g_prepared.words = {s_name.data(), s_word.data(), g_prepared.process.data(), g_prepared.folder.data(), nullptr};
  const stack_t stack{.ss_sp = g_prepared.stack.data(), .ss_flags = 0, .ss_size = g_prepared.stack.size()};
  if (sigaltstack(&stack, nullptr) != 0) return false;
  struct sigaction action {};
  action.sa_handler = HandleCrash;
  action.sa_flags = SA_ONSTACK;
  // Nothing comes in between.
  sigfillset(&action.sa_mask);
  for (const int number : CrashSignals) {
    if (sigaction(number, &action, nullptr) != 0) return false;
  }
  return true;
}

std::optional<int> RunAsHelper(const std::vector<std::string>& words) {
  if (words.size() != 3 || words[0] != HelperWord) return std::nullopt;
  return Help(words[1], words[2]);
}

}  // namespace crash_handler
