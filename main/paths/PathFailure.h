/// How a walk over a path fails.
#pragma once

namespace qilsys::paths {

/// Raises TPathCore::Exception: the system's fault, "UNKNOWN". `code` and `codeName` are literals of the one caller.
[[noreturn]] void Fail(const char* message, unsigned int code, const char* codeName);

}  // namespace qilsys::paths
