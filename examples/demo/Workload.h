/// What a member does with memory and processors, on command.
#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <thread>
#include <vector>

#include "qilsys/TEvent.h"
#include "qilsys/TLocks.h"

namespace demo {

/// Holds a quantity of private memory and grows or shrinks towards a target at a steady pace, so that a watcher can
/// follow it. Safe to use from any thread.
class Hoard {
 public:
  Hoard();
  ~Hoard();

  Hoard(const Hoard&) = delete;
  Hoard& operator=(const Hoard&) = delete;

  /// Sets how much to hold, in MiB; growing takes time.
  void GrowTo(unsigned int mebibytes);

  /// Gives back all above `mebibytes` at once and stops growing. Returns the MiB given back.
  unsigned int DropTo(unsigned int mebibytes);

 private:
  void Run();
  void Step();

  TRecursiveMutex m_mutex;
  unsigned int m_target = 0;
  std::list<std::vector<unsigned char>> m_blocks;
  TEvent m_stop;
  std::thread m_thread;
};

/// Keeps processors busy for a share of the time. Safe to use from any thread.
class Burner {
 public:
  Burner() = default;
  ~Burner();

  Burner(const Burner&) = delete;
  Burner& operator=(const Burner&) = delete;

  /// Sets the share of every processor to keep busy, 0 to 100 percent.
  void Burn(unsigned int percent);

 private:
  void Run();

  std::atomic<unsigned int> m_percent = 0;
  TEvent m_stop;
  TRecursiveMutex m_mutex;
  std::vector<std::thread> m_threads;
};

}  // namespace demo
