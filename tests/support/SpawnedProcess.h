/// A program that a test has started, with its standard input and output.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qilsys::test {

/// The exit code of a program that was killed.
constexpr int KilledBySignal = -9;

/// Killed and waited for by the destructor; where the test itself is killed, the system kills the program too.
class SpawnedProcess {
 public:
  /// Starts the program named by the first word with the others as its arguments. Throws std::runtime_error.
  explicit SpawnedProcess(const std::vector<std::string>& words);
  SpawnedProcess(const SpawnedProcess&) = delete;
  SpawnedProcess& operator=(const SpawnedProcess&) = delete;
  ~SpawnedProcess();

  unsigned int Pid() const;

  /// What `GetProcessMemoryInfo` knows the process by. Gone after `Wait`.
  void* Handle() const;

  void Kill() const;

  /// Kills the program and waits until it has ended; the system still keeps what `Wait` asks for.
  void KillUnreaped() const;

  /// Stops all threads of the program where they are, and lets them go on.
  void Suspend() const;
  void Resume() const;

  /// False if the program no longer listens.
  bool Write(const std::string& text) const;

  /// What has been written since, waiting for at most `time` for the first of it; nothing at the end of the output.
  std::optional<std::string> Read(std::chrono::milliseconds time);

  /// Waits for the end of the program and lets the system forget it: its exit code.
  int Wait();

 private:
  struct System;
  std::unique_ptr<System> m_system;
};

}  // namespace qilsys::test
