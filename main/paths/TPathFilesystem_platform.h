/// What each system must give for the way to the C++ library's paths and back.
#pragma once

#include <filesystem>
#include <optional>

#include "qilsys/TPathCore.h"
#include "qilsys/TStringCore.h"

namespace qilsys::paths {

/// The path in the form and the units that the system's files are opened by.
std::filesystem::path FilesystemPathOf(const TPathCore& path);

/// The units of a path as text, nothing where no text gives these units back.
std::optional<TStringCore> TextOfFilesystemPath(const std::filesystem::path& path);

}  // namespace qilsys::paths
