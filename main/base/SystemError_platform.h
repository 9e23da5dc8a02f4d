/// What the system says of a call that has failed.
#pragma once

#include <string>

namespace qilsys::base {

/// The calling thread's last error number.
int LastSystemError() noexcept;

/// The system's own text for an error number: UTF-8, without a line break or blanks at its end.
std::string SystemErrorText(int number);

}  // namespace qilsys::base
