#include "support/SystemError.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

namespace qilsys::test {

int NumberOf(SystemError error) {
  switch (error) {
    case SystemError::InvalidHandle:
      return ERROR_INVALID_HANDLE;
    case SystemError::InvalidParameter:
      return ERROR_INVALID_PARAMETER;
    case SystemError::TooManyUnits:
      return ERROR_TOO_MANY_POSTS;
    case SystemError::Refused:
      return ERROR_ACCESS_DENIED;
  }
  return 0;
}

int LastErrorNumber() { return static_cast<int>(GetLastError()); }

void SetLastErrorNumber(int number) { SetLastError(static_cast<DWORD>(number)); }

}  // namespace qilsys::test
