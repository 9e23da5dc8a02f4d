/// What a `MonitoredProcess` holds.
#pragma once

#include <memory>

#include "monitor/MonitoredProcess_platform.h"
#include "qilsys/MonitoredProcess.h"

/// The handle of a watched process, and the sample that its next CPU reading is compared with.
struct MonitoredProcess::Impl {
  /// Throws a `QuillonException` if the handle is null or gives no first sample.
  Impl(unsigned int pid, std::unique_ptr<qilsys::monitor::IProcessHandle> handle);

  /// The percent since the last sample, which this reading replaces. A failed reading gives 0 and replaces nothing.
  unsigned char NextCpuPercent(unsigned int numberOfCpus);

  /// Never null once constructed.
  std::unique_ptr<ProcessTimesSample> m_lastSample;
  unsigned int m_pid;
  std::unique_ptr<qilsys::monitor::IProcessHandle> m_handle;
};
