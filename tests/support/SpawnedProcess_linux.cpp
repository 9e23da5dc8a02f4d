// The sibling for Windows is SpawnedProcess_win.cpp.
#include "support/SpawnedProcess.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <stdexcept>

namespace qilsys::test {

namespace {

/// Both ends of a pipe, closed once.
class Pipe {
 public:
  Pipe() {
    if (pipe2(m_ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    CloseReadEnd();
    CloseWriteEnd();
  }

  int ReadEnd() const { return m_ends[0]; }
  int WriteEnd() const { return m_ends[1]; }
  void CloseReadEnd() { Close(m_ends[0]); }
  void CloseWriteEnd() { Close(m_ends[1]); }

 private:
  static void Close(int& end) {
    if (end >= 0) close(end);
    end = -1;
  }

  std::array<int, 2> m_ends{};
};

pid_t Spawn(std::vector<std::string> words, const Pipe& input, const Pipe& output) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.ReadEnd(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.WriteEnd(), STDOUT_FILENO);
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  pid_t pid = -1;
  const int error = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("can't start " + words[0]);
  return pid;
}

}  // namespace

struct SpawnedProcess::System {
  Pipe m_input;
  Pipe m_output;
  pid_t m_pid = -1;
  std::optional<int> m_exitCode;
};

SpawnedProcess::SpawnedProcess(const std::vector<std::string>& words) : m_system(std::make_unique<System>()) {
  // A program that no longer listens is told by the result of a write.
  signal(SIGPIPE, SIG_IGN);
  m_system->m_pid = Spawn(words, m_system->m_input, m_system->m_output);
  m_system->m_input.CloseReadEnd();
  m_system->m_output.CloseWriteEnd();
}

SpawnedProcess::~SpawnedProcess() {
  Kill();
  Wait();
}

unsigned int SpawnedProcess::Pid() const { return static_cast<unsigned int>(m_system->m_pid); }

void* SpawnedProcess::Handle() const { return reinterpret_cast<void*>(std::uintptr_t{Pid()}); }

void SpawnedProcess::Kill() const {
  if (!m_system->m_exitCode) kill(m_system->m_pid, SIGKILL);
}

void SpawnedProcess::KillUnreaped() const {
  Kill();
  siginfo_t info{};
  while (waitid(P_PID, static_cast<id_t>(m_system->m_pid), &info, WEXITED | WNOWAIT) == -1 && errno == EINTR) continue;
}

void SpawnedProcess::Suspend() const { kill(m_system->m_pid, SIGSTOP); }

void SpawnedProcess::Resume() const { kill(m_system->m_pid, SIGCONT); }

bool SpawnedProcess::Write(const std::string& text) const {
  return write(m_system->m_input.WriteEnd(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

std::optional<std::string> SpawnedProcess::Read(std::chrono::milliseconds time) {
  const int output = m_system->m_output.ReadEnd();
  pollfd request{output, POLLIN, 0};
  if (poll(&request, 1, static_cast<int>(time.count())) <= 0) return std::string();
  std::array<char, 4096> buffer;
  const ssize_t got = read(output, buffer.data(), buffer.size());
  if (got <= 0) return std::nullopt;
  return std::string(buffer.data(), static_cast<std::size_t>(got));
}

int SpawnedProcess::Wait() {
  if (m_system->m_exitCode) return *m_system->m_exitCode;
  int status = 0;
  while (waitpid(m_system->m_pid, &status, 0) == -1 && errno == EINTR) continue;
  m_system->m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  static_assert(KilledBySignal == -SIGKILL);
  return *m_system->m_exitCode;
}

}  // namespace qilsys::test
