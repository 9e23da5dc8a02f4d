/// One member of the group: a host program of its own that starts the monitor and obeys the director.
#pragma once

#include <string>

namespace demo {

/// Runs a member on `port` until its standard input ends or its monitor asks it to end itself; returns its exit code.
///
/// The director talks to it by lines on standard input: "peers PID...", "hold MIB", "cache MIB", "burn PERCENT",
/// "cooperate", "defy". It answers by lines on standard output: "log TEXT" for each line of its monitor, "did TEXT"
/// for what it does by itself, "end CODE TEXT" right before it ends because its monitor asked for it.
int RunMember(const std::string& name, unsigned short port);

}  // namespace demo
