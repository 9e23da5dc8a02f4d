/// How the monitor starts its threads, which are none of the host's business.
#pragma once

#include <functional>
#include <thread>

namespace qilsys::monitor {

/// Starts a thread to which the system delivers no signal that is meant for the process, such as the wish that it end:
/// the host's own threads wait for those. What the thread's own faults raise it takes. Throws `std::system_error`; the
/// calling thread is as before either way.
std::thread StartThread(std::function<void()> run);

}  // namespace qilsys::monitor
