// The Windows sibling is ChildProcess_win.cpp.
#include "demo/ChildProcess.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace demo {

namespace {

/// A descriptor that is closed once.
class Descriptor {
 public:
  Descriptor() = default;
  ~Descriptor() { Reset(-1); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Get() const { return m_descriptor; }
  void Reset(int descriptor) {
    if (m_descriptor >= 0) ::close(m_descriptor);
    m_descriptor = descriptor;
  }

 private:
  int m_descriptor = -1;
};

struct Pipe {
  Pipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe2");
    m_read.Reset(ends[0]);
    m_write.Reset(ends[1]);
  }

  Descriptor m_read;
  Descriptor m_write;
};

[[noreturn]] void BecomeProgram(const Pipe& input, const Pipe& output, char** arguments, pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(127);
  // Ctrl-C reaches the whole foreground group: the director alone decides what happens then.
  ::setpgid(0, 0);
  ::dup2(input.m_read.Get(), STDIN_FILENO);
  ::dup2(output.m_write.Get(), STDOUT_FILENO);
  ::execv("/proc/self/exe", arguments);
  ::_exit(127);
}

// Not every C library has a function for it that C++ can call.
int OpenProcess(pid_t pid) { return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)); }

}  // namespace

struct ChildProcess::System {
  pid_t m_pid = -1;
  // Stays with the child when its pid is used again.
  Descriptor m_child;
  Pipe m_input;
  Pipe m_output;
  std::optional<int> m_exitCode;
};

ChildProcess::ChildProcess(const std::vector<std::string>& arguments) : m_system(std::make_unique<System>()) {
  std::vector<std::string> words = arguments;
  words.insert(words.begin(), "qilsys_demo");
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);

  // Where it is ignored, which a parent can leave behind, the system keeps no exit codes.
  ::signal(SIGCHLD, SIG_DFL);
  const pid_t parent = ::getpid();
  const pid_t pid = ::fork();
  if (pid < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid == 0) BecomeProgram(m_system->m_input, m_system->m_output, pointers.data(), parent);

  m_system->m_pid = pid;
  m_system->m_child.Reset(OpenProcess(pid));
  if (m_system->m_child.Get() < 0) {
    const int error = errno;
    // Not waited for yet, so the pid is still the child's.
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
    throw std::system_error(error, std::generic_category(), "pidfd_open");
  }
  m_system->m_input.m_read.Reset(-1);
  m_system->m_output.m_write.Reset(-1);
  ::fcntl(m_system->m_output.m_read.Get(), F_SETFL, O_NONBLOCK);
  ::signal(SIGPIPE, SIG_IGN);
}

ChildProcess::~ChildProcess() {
  if (ExitCode()) return;
  ::syscall(SYS_pidfd_send_signal, m_system->m_child.Get(), SIGKILL, nullptr, 0);
  siginfo_t end{};
  while (::waitid(P_PIDFD, static_cast<id_t>(m_system->m_child.Get()), &end, WEXITED) != 0 && errno == EINTR) {
  }
}

unsigned int ChildProcess::Id() const { return static_cast<unsigned int>(m_system->m_pid); }

void ChildProcess::Tell(const std::string& line) {
  const std::string text = line + "\n";
  [[maybe_unused]] const ssize_t written = ::write(m_system->m_input.m_write.Get(), text.data(), text.size());
}

std::string ChildProcess::ReadWhatCame() {
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t n = 0; (n = ::read(m_system->m_output.m_read.Get(), buffer.data(), buffer.size())) > 0;) {
    text.append(buffer.data(), static_cast<size_t>(n));
  }
  return text;
}

void ChildProcess::Dismiss() { m_system->m_input.m_write.Reset(-1); }

std::optional<int> ChildProcess::ExitCode() {
  if (m_system->m_exitCode) return m_system->m_exitCode;
  siginfo_t end{};
  const auto child = static_cast<id_t>(m_system->m_child.Get());
  if (::waitid(P_PIDFD, child, &end, WEXITED | WNOHANG) != 0 || end.si_pid == 0) return std::nullopt;
  m_system->m_exitCode = end.si_code == CLD_EXITED ? end.si_status : -end.si_status;
  return m_system->m_exitCode;
}

}  // namespace demo
