// The long and the short native form.
#include "qilsys/TPathCore.h"

#include "paths/NativePath.h"

using namespace qilsys::paths;

TStringCore TPathCore::NativeLongPath() const {
  return NativePathByForm(*this, [](const TCodeUnit* path, TCodeUnit* buffer, unsigned int size) {
    return AskNativeForm(NativeForm::Long, path, buffer, size);
  });
}

TStringCore TPathCore::NativeShortPath() const {
  return NativePathByForm(*this, [](const TCodeUnit* path, TCodeUnit* buffer, unsigned int size) {
    return AskNativeForm(NativeForm::Short, path, buffer, size);
  });
}
