/// Who is called beside the periodic log lines and the lines of an excess.
#pragma once

#include <vector>

#include "qilsys/ResourceReporter.h"
#include "qilsys/TLocks.h"

/// The reporters of the process, in order of registration. It owns none of them.
class ResourceReporterManager {
 public:
  /// The one object of the process, made on first use.
  static ResourceReporterManager& Get();

  void Add(ResourceReporter* reporter);

  /// Takes out the first entry of the reporter; none is a logic assertion.
  void Remove(ResourceReporter* reporter);

  /// Calls every reporter with the lock held, so a reporter may come and go from inside a report.
  void ReportAll(unsigned int seconds);

  /// Nobody is called while the result lives, but by the thread that holds it.
  [[nodiscard]] TScopedLock<TRecursiveMutex> HoldReports() { return TScopedLock<TRecursiveMutex>(m_lock); }

 private:
  std::vector<ResourceReporter*> m_reporters;
  TRecursiveMutex m_lock;
};
