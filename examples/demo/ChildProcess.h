/// A child process with which its parent talks by lines.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace demo {

/// A running program. It is ended, if need be, and reaped by the destructor; it ends by itself when its parent dies.
class ChildProcess {
 public:
  /// Starts this very program again with `arguments`. Throws std::system_error.
  explicit ChildProcess(const std::vector<std::string>& arguments);
  ~ChildProcess();

  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  unsigned int Id() const;

  /// Sends one line. A child that no longer listens is no failure: its end is told by ExitCode.
  void Tell(const std::string& line);

  /// The whole lines that came since the last call; never waits.
  std::vector<std::string> Hear();

  /// Ends the child's input, by which it is asked to go.
  void Dismiss();

  /// The exit code of a child that has ended, or nothing while it runs. Where a signal ended it: minus that signal.
  std::optional<int> ExitCode();

 private:
  struct System;

  std::string ReadWhatCame();

  std::unique_ptr<System> m_system;
  std::string m_unfinished;
};

}  // namespace demo
