/// The channel that a debugger or a developer at the machine watches.
#pragma once

namespace qilsys::base {

/// Writes one text (UTF-8). Any thread; never fails in a way that the caller sees.
void WriteToDebugChannel(const char* text) noexcept;

}  // namespace qilsys::base
