/// The children of the host, whose use is counted as its own.
#pragma once

#include <functional>
#include <map>

#include "qilsys/MonitoredProcess.h"
#include "qilsys/TLocks.h"
#include "qilsys/TStringCore.h"

/// The child processes whose use counts as the host's own. Any thread may change the set. A child that has ended stays
/// in it and reads as 0 until it is removed.
class ChildProcessManager {
 public:
  explicit ChildProcessManager(std::function<void(const TStringCore&)> logFunc);

  /// A pid already present is a logic assertion; a process that is not running throws a `QuillonException`.
  void AddChild(unsigned int pid);

  /// A pid that is not present is a logic assertion.
  void RemoveChild(unsigned int pid);

  /// The children's percent of the machine since the last reading, added in eight bits and limited to 100.
  unsigned int GetCpuUsage();

  /// The children's private bytes.
  unsigned long long GetMemoryUsage();

 private:
  TRecursiveMutex m_lock;
  std::map<unsigned int, MonitoredProcess> m_processes;
  std::function<void(const TStringCore&)> m_logFunc;
};
