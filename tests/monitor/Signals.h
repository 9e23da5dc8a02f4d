/// Which signals the calling thread lets through.
#pragma once

#include <optional>

namespace qilsys::test {

struct SignalsTaken {
  /// One at least of those that are sent to the process, such as the wish that it end.
  bool fromOutside;
  /// All of those that the thread's own faults raise.
  bool ofOwnFaults;

  bool operator==(const SignalsTaken&) const = default;
};

/// Nothing where the system interrupts no thread.
std::optional<SignalsTaken> SignalsTakenHere();

}  // namespace qilsys::test
