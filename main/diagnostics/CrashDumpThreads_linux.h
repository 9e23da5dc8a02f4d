/// The threads of a process, held where they are.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/types.h>

#include <memory_resource>
#include <span>
#include <vector>

namespace qilsys::diagnostics {

struct HeldThread {
  pid_t id = 0;
  /// The signal that was on its way to the thread, and goes on to it afterwards; 0 for none.
  int signal = 0;
};

/// Stops all threads of a process, those too that begin meanwhile, and lets them go on at its own end. Threads that end
/// meanwhile are left out, and so are those that do not stop in time, as one that waits for a broken disk.
class HeldThreads {
 public:
  HeldThreads(pid_t process, std::pmr::memory_resource& memory);
  ~HeldThreads();
  HeldThreads(const HeldThreads&) = delete;
  HeldThreads& operator=(const HeldThreads&) = delete;

  /// Those that stand still. None if the process has ended, or if a thread of it may not be traced, as another traces it.
  std::span<const HeldThread> All() const { return m_threads; }

  /// Moves a thread to the front, if it is there: debuggers show the first one first.
  void PutFirst(pid_t thread);

 private:
  bool HoldNewOnes(pid_t process);
  bool IsKnown(pid_t thread) const;
  void Hold(pid_t process, pid_t thread);
  void Release();

  std::pmr::vector<HeldThread> m_threads;
  /// Threads that did not stop in time.
  std::pmr::vector<pid_t> m_restless;
  bool m_isRefused = false;
  std::pmr::memory_resource& m_memory;
};

}  // namespace qilsys::diagnostics
