/// A member in a process of its own, seen through its output. It is killed and reaped by the destructor.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string>
#include <vector>

namespace qilsys::test {

/// What a member is started with; the limits are far away unless a test brings them near.
struct MemberArguments {
  unsigned short m_port = 0;
  unsigned long long m_memoryLimit = 1ULL << 40;
  unsigned long long m_allProcessesLimit = 1ULL << 50;
  unsigned int m_cpuLimit = 0;
  bool m_version1 = false;
};

class MemberProcess {
 public:
  explicit MemberProcess(const MemberArguments& arguments) { Spawn(arguments); }
  MemberProcess(const MemberProcess&) = delete;
  MemberProcess& operator=(const MemberProcess&) = delete;
  ~MemberProcess() {
    if (m_pid > 0) kill(m_pid, SIGKILL);
    Exit();
    close(m_input);
    close(m_output);
  }

  unsigned int Pid() const { return static_cast<unsigned int>(m_pid); }
  void Signal(int signal) const { kill(m_pid, signal); }

  void Command(const std::string& command) {
    const std::string line = command + "\n";
    EXPECT_EQ(write(m_input, line.data(), line.size()), static_cast<ssize_t>(line.size()));
  }

  /// All lines so far.
  const std::vector<std::string>& Lines() {
    ReadFor(std::chrono::milliseconds(0));
    return m_lines;
  }

  /// Waits for some output, at most this long.
  void AwaitOutput(std::chrono::milliseconds time) { ReadFor(time); }

  /// Reads until a line satisfies `wanted`, among those after the first `from`. False when patience has run out.
  template <class TWanted>
  bool Await(TWanted wanted, std::size_t from = 0) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    for (std::size_t next = from;; ++next) {
      while (next >= m_lines.size()) {
        if (m_ended || std::chrono::steady_clock::now() > end) return false;
        ReadFor(std::chrono::milliseconds(100));
      }
      if (wanted(m_lines[next])) return true;
    }
  }

  bool AwaitLine(const std::string& line, std::size_t from = 0) {
    return Await([&](const std::string& other) { return other == line; }, from);
  }

  /// Waits for a line, after the first `from` or after all that are there now, that counts `count` members.
  bool AwaitInfoCount(int count, std::size_t from) {
    const std::string end = "; " + std::to_string(count) + " (info count)";
    return Await([&](const std::string& line) { return line.ends_with(end); }, from);
  }
  bool AwaitInfoCount(int count) { return AwaitInfoCount(count, Lines().size()); }

  /// How many of the lines so far are `line`.
  long Count(const std::string& line) { return std::count(Lines().begin(), Lines().end(), line); }

  /// Waits for the end of the process: its exit code, or minus its signal. All its lines have been read then.
  int Exit() {
    if (m_pid <= 0) return m_exit;
    while (!m_ended) ReadFor(std::chrono::milliseconds(100));
    int status = 0;
    while (waitpid(m_pid, &status, 0) == -1 && errno == EINTR) continue;
    m_pid = -1;
    m_exit = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return m_exit;
  }

 private:
  void Spawn(const MemberArguments& arguments) {
    int input[2];
    int output[2];
    ASSERT_EQ(pipe2(input, O_CLOEXEC), 0);
    ASSERT_EQ(pipe2(output, O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    std::vector<std::string> words{QILSYS_MEMBER_PROGRAM,
                                   std::to_string(arguments.m_port),
                                   std::to_string(arguments.m_memoryLimit),
                                   std::to_string(arguments.m_allProcessesLimit),
                                   std::to_string(arguments.m_cpuLimit),
                                   arguments.m_version1 ? "1" : "2"};
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    EXPECT_EQ(posix_spawn(&m_pid, argv[0], &actions, nullptr, argv.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);
    m_input = input[1];
    m_output = output[0];
  }

  // Takes what has been written, waiting for at most this long for the first of it.
  void ReadFor(std::chrono::milliseconds time) {
    pollfd request{m_output, POLLIN, 0};
    int wait = static_cast<int>(time.count());
    while (!m_ended && poll(&request, 1, wait) > 0) {
      char buffer[4096];
      const ssize_t got = read(m_output, buffer, sizeof buffer);
      if (got <= 0) m_ended = true;
      if (got > 0) Take(std::string(buffer, static_cast<std::size_t>(got)));
      wait = 0;
    }
  }

  void Take(const std::string& text) {
    m_partial += text;
    for (std::size_t end = m_partial.find('\n'); end != std::string::npos; end = m_partial.find('\n')) {
      m_lines.push_back(m_partial.substr(0, end));
      m_partial.erase(0, end + 1);
    }
  }

  pid_t m_pid = -1;
  int m_exit = 0;
  int m_input = -1;
  int m_output = -1;
  bool m_ended = false;
  std::string m_partial;
  std::vector<std::string> m_lines;
};

}  // namespace qilsys::test
