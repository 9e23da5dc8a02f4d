/// What each system gives for reading a floating-point number.
#pragma once

namespace qilsys {

/// The C runtime's `strtod` in the "C" locale, whatever locale the host or the thread is in. `errno` is set as that
/// function sets it, and otherwise left alone.
double StringToDouble(const char* text, char** end);

}  // namespace qilsys
