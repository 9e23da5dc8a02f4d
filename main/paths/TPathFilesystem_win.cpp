// The Linux sibling has the same operations.
#include "paths/TPathFilesystem_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

namespace qilsys::paths {

// Paths of extended length need the native separators.
std::filesystem::path FilesystemPathOf(const TPathCore& path) { return path.NativeString().toStdWString(); }

std::optional<TStringCore> TextOfFilesystemPath(const std::filesystem::path& path) {
  return TStringCore::fromStdWString(path.native());
}

}  // namespace qilsys::paths
