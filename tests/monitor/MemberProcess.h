/// A member in a process of its own, seen through its output. It is killed and reaped by the destructor.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "support/Eventually.h"
#include "support/SpawnedProcess.h"

namespace qilsys::test {

/// What a member is started with; the limits are far away unless a test brings them near.
struct MemberArguments {
  unsigned short m_port = 0;
  unsigned long long m_memoryLimit = 1ULL << 40;
  unsigned long long m_allProcessesLimit = 1ULL << 50;
  unsigned int m_cpuLimit = 0;
  bool m_version1 = false;
};

/// The words that start `program` as a member.
inline std::vector<std::string> MemberWords(const std::string& program, const MemberArguments& arguments) {
  return {program,
          std::to_string(arguments.m_port),
          std::to_string(arguments.m_memoryLimit),
          std::to_string(arguments.m_allProcessesLimit),
          std::to_string(arguments.m_cpuLimit),
          arguments.m_version1 ? "1" : "2"};
}

class MemberProcess {
 public:
  explicit MemberProcess(const MemberArguments& arguments) : m_process(MemberWords(QILSYS_MEMBER_PROGRAM, arguments)) {}

  unsigned int Pid() const { return m_process.Pid(); }
  void Kill() const { m_process.Kill(); }
  void Suspend() const { m_process.Suspend(); }
  void Resume() const { m_process.Resume(); }

  void Command(const std::string& command) { EXPECT_TRUE(m_process.Write(command + "\n")) << command; }

  /// All lines so far.
  const std::vector<std::string>& Lines() {
    ReadFor(std::chrono::milliseconds(0));
    return m_lines;
  }

  /// Waits for some output, at most this long.
  void AwaitOutput(std::chrono::milliseconds time) { ReadFor(time); }

  /// Reads until a line satisfies `wanted`, among those after the first `from`. False when patience has run out.
  template <class TWanted>
  bool Await(TWanted wanted, std::size_t from = 0, std::chrono::seconds patience = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + patience;
    for (std::size_t next = from;; ++next) {
      while (next >= m_lines.size()) {
        if (m_ended || std::chrono::steady_clock::now() > end) return false;
        ReadFor(std::chrono::milliseconds(100));
      }
      // A copy, since who looks at a line may read on.
      const std::string line = m_lines[next];
      if (wanted(line)) return true;
    }
  }

  bool AwaitLine(const std::string& line, std::size_t from = 0) {
    return Await([&](const std::string& other) { return other == line; }, from);
  }

  /// A member that always checks a moment before another is heard finds that one just aged out, for as long as the two
  /// keep step. Holds this one over the time of its next check, which then comes at another time of the second.
  void PutOutOfStep() {
    ReadFor(std::chrono::milliseconds(0));
    Suspend();
    ReadFor(std::chrono::milliseconds(1100));
    Resume();
  }

  /// Waits for a line, after the first `from` or after all that are there now, that counts `count` members.
  bool AwaitInfoCount(int count, std::size_t from) {
    const std::string end = "; " + std::to_string(count) + " (info count)";
    const auto counted = [&](const std::string& line) { return line.ends_with(end); };
    for (int i = 0; i < 4; ++i) {
      if (Await(counted, from, std::chrono::seconds(8))) return true;
      PutOutOfStep();
    }
    return false;
  }
  bool AwaitInfoCount(int count) { return AwaitInfoCount(count, Lines().size()); }

  /// How many of the lines so far are `line`.
  std::ptrdiff_t Count(const std::string& line) {
    const std::vector<std::string>& lines = Lines();
    return std::count(lines.begin(), lines.end(), line);
  }

  /// Waits for the end of the process, and ends it when patience has run out: its exit code. All its lines have been
  /// read then.
  int Exit() {
    const auto end = std::chrono::steady_clock::now() + Patience;
    while (!m_ended && std::chrono::steady_clock::now() < end) ReadFor(std::chrono::milliseconds(100));
    if (!m_ended) m_process.Kill();
    return m_process.Wait();
  }

 private:
  // Takes what has been written, waiting for at most this long for the first of it.
  void ReadFor(std::chrono::milliseconds time) {
    while (!m_ended) {
      const std::optional<std::string> text = m_process.Read(time);
      m_ended = !text;
      if (!text || text->empty()) return;
      Take(*text);
      time = std::chrono::milliseconds(0);
    }
  }

  // A line may end as either system ends lines.
  void Take(const std::string& text) {
    m_partial += text;
    for (std::size_t end = m_partial.find('\n'); end != std::string::npos; end = m_partial.find('\n')) {
      m_lines.push_back(m_partial.substr(0, end));
      if (m_lines.back().ends_with('\r')) m_lines.back().pop_back();
      m_partial.erase(0, end + 1);
    }
  }

  SpawnedProcess m_process;
  bool m_ended = false;
  std::string m_partial;
  std::vector<std::string> m_lines;
};

}  // namespace qilsys::test
