// The Windows sibling has the same operations.
#include "paths/TPathFilesystem_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

namespace qilsys::paths {

std::filesystem::path FilesystemPathOf(const TPathCore& path) { return path.GenericString().toStdString(); }

// What is not UTF-8 has become other units, which give other bytes.
std::optional<TStringCore> TextOfFilesystemPath(const std::filesystem::path& path) {
  TStringCore text = TStringCore::fromStdString(path.native());
  if (text.toStdString() != path.native()) return std::nullopt;
  return text;
}

}  // namespace qilsys::paths
