/// The way to the C++ library's paths and back. A path comes through whole or not at all: where the other side could not
/// hold it, or would make another one of it, both raise TPathCore::Exception, the client's fault, "INVALID_ARGUMENT".
///
/// So no path comes through that has a lone surrogate, a NUL, or a separator at its end that is not its root's; and none
/// with a "\" in a name.
#pragma once

#include <filesystem>

#include "qilsys/Export.h"
#include "qilsys/TPathCore.h"

namespace qilsys {

/// With "/" between names, in UTF-8, on Linux; with "\" on Windows.
QILSYS_API std::filesystem::path ToFilesystemPath(const TPathCore& path);

/// Raises for bytes too that are not UTF-8. On Windows both separators are taken.
QILSYS_API TPathCore FromFilesystemPath(const std::filesystem::path& path);

}  // namespace qilsys
