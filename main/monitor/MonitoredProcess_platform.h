/// What the readings of processes need of the system. A failed reading is never an error: it is nothing, or zeros.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "monitor/ProcessSample.h"
#include "monitor/ProcessorClock.h"

namespace qilsys::monitor {

/// A handle that stays with one process, also when its id is used again, and is closed by its destructor.
class IProcessHandle {
 public:
  IProcessHandle() = default;
  IProcessHandle(const IProcessHandle&) = delete;
  IProcessHandle& operator=(const IProcessHandle&) = delete;
  virtual ~IProcessHandle() = default;

  /// The time the process has used, and the time of the reading. Nothing if it can't be had.
  virtual std::optional<ProcessTimesSample> ReadTimes() const = 0;

  /// The private bytes now, 0 if they can't be had.
  virtual std::uint64_t ReadPrivateBytes() = 0;

  /// False once the process has ended.
  virtual bool IsAlive() const = 0;
};

/// The calling process; needs no permission and so is never null.
std::unique_ptr<IProcessHandle> CurrentProcess();

/// A handle for readings. Null for an id that no process has, or if the caller may not read that process's memory.
std::unique_ptr<IProcessHandle> OpenProcessToWatch(unsigned int pid);

/// Whether a process of the id is alive. Asks for less than a reading does, where the system grants that more readily,
/// and for no memory.
bool IsProcessAlive(unsigned int pid);

/// The processors of the machine, 0 if they can't be counted.
unsigned int CountProcessors();

/// The clock of each processor of which it is known; empty if of none.
std::vector<ProcessorClock> ReadProcessorClocks();

}  // namespace qilsys::monitor
