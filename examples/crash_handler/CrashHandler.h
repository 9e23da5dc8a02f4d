/// What a host does so that a crash leaves something to look at: a dump of the process and the stacks of its threads.
///
/// A process that crashes can trust little of itself: its heap may be broken, and a thread may hold any lock for ever. So
/// the handler takes no memory and no lock: it calls the helper and waits. The helper, which is this same program started
/// with other words, writes the dump and the lines.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace crash_handler {

/// From now on a crash leaves a dump and a text in the folder, which exists: `crash-` with the process's number, and `.dmp`
/// or `.txt`. To be called once, in the first thread, which can overflow its stack from then on. False if the system does
/// not let it.
bool Install(const std::string& folder);

/// If the program has been started as a helper, does the helper's work and gives its exit code. Main calls it first, with
/// its arguments without the program's name.
std::optional<int> RunAsHelper(const std::vector<std::string>& words);

}  // namespace crash_handler
