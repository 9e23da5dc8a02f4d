/// The precondition checks of the functions of namespace Unicode, and what they raise.
#pragma once

namespace qilsys::transcode {

/// Raises unless `source` is there and `length` is not negative. `function` is the full name that the text shows.
void RequireSource(const void* source, const char* function);
void RequireLength(int length, const char* function);
inline void RequireText(const void* source, int length, const char* function) {
  RequireSource(source, function);
  RequireLength(length, function);
}

/// Raises for every status of ICU but success, warnings too.
void RequireSuccess(int status, const char* function, const char* interface);

[[noreturn]] void ThrowTargetTooSmall(int capacity, const char* function);
[[noreturn]] void ThrowSourceLeft(const char* function);

}  // namespace qilsys::transcode
