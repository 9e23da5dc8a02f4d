// The Windows sibling has the same operations.
#include "base/SystemError_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <langinfo.h>
#include <string.h>

#include <cerrno>
#include <string_view>
#include <system_error>

namespace {

// Translated texts come in the codeset of the process's locale.
bool IsUtf8(std::string_view codeset) { return codeset == "UTF-8" || codeset == "ANSI_X3.4-1968"; }

}  // namespace

int qilsys::base::LastSystemError() noexcept { return errno; }

// Where the codeset is another one, the text that is not translated is ASCII.
std::string qilsys::base::SystemErrorText(int number) {
  const char* const plain = IsUtf8(nl_langinfo(CODESET)) ? nullptr : strerrordesc_np(number);
  return plain ? plain : std::system_category().message(number);
}
