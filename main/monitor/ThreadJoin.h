/// Joining a thread that may be the calling one.
#pragma once

#include <system_error>
#include <thread>

namespace qilsys::monitor {

/// Waits for the end of `thread`, if it can be waited for. On that thread itself the standard error is raised before the
/// join is tried, since ThreadSanitizer takes a join that the system refuses for one that was done.
inline void JoinIfJoinable(std::thread& thread) {
  if (thread.get_id() == std::this_thread::get_id()) {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
  if (thread.joinable()) thread.join();
}

}  // namespace qilsys::monitor
