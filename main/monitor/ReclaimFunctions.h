/// The callbacks by which a host gives processor time or memory back.
#pragma once

#include <functional>
#include <map>

#include "qilsys/TLocks.h"
#include "qilsys/TStringCore.h"

/// The host's callbacks that give one resource back. Any thread may change the list; it waits while the callbacks run.
class ReclaimFunctions {
 public:
  /// `name` is the resource's, for log lines.
  explicit ReclaimFunctions(const TStringCore& name);

  /// An empty `func` or a name in use is a logic assertion; the first registration stays.
  void Add(const TStringCore& name, std::function<void(double)> func);

  /// An unknown name is a logic assertion.
  void Remove(const TStringCore& name);

  /// Calls all functions in order of their names, with the lock held, and logs each. True if there are any, whether or
  /// not they freed something. What a function throws ends the walk and passes out of here.
  bool Reclaim(std::function<void(const TStringCore&)> logFunc, double argument);

 private:
  TStringCore m_name;
  TRecursiveMutex m_lock;
  std::map<TStringCore, std::function<void(double)>> m_functions;
};
