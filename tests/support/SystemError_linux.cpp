#include "support/SystemError.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <cerrno>

namespace qilsys::test {

int NumberOf(SystemError error) {
  switch (error) {
    case SystemError::InvalidHandle:
      return EBADF;
    case SystemError::InvalidParameter:
      return EINVAL;
    case SystemError::TooManyUnits:
      return EOVERFLOW;
    case SystemError::Refused:
      return EPERM;
  }
  return 0;
}

int LastErrorNumber() { return errno; }

void SetLastErrorNumber(int number) { errno = number; }

}  // namespace qilsys::test
