// The Linux sibling has the same operation.
#include "paths/TPathCore_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

namespace qilsys::paths {

NativeFormAnswer AskNativeForm(NativeForm form, const TCodeUnit* path, TCodeUnit* buffer, unsigned int size) {
  const auto ask = form == NativeForm::Long ? &GetLongPathNameW : &GetShortPathNameW;
  const unsigned int length = ask(path, buffer, size);
  const DWORD error = length == 0 ? GetLastError() : ERROR_SUCCESS;
  return {length, error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND};
}

}  // namespace qilsys::paths
