/// What each system must give for TPathCore.
#pragma once

#include "qilsys/TCodeUnit.h"

namespace qilsys::paths {

/// In full, or by the short names that a file has besides.
enum class NativeForm { Long, Short };

struct NativeFormAnswer {
  /// The units written, less the NUL; where they don't fit, those that are needed. 0 on failure.
  unsigned int length;
  /// Whether what failed is that there is no such file, or no such folder.
  bool isMissing;
};

/// Asks for a form of `path`, which ends with NUL, in `size` units from `buffer` on; these may be none. A system that
/// knows no such forms always fails, with nothing missing.
NativeFormAnswer AskNativeForm(NativeForm form, const TCodeUnit* path, TCodeUnit* buffer, unsigned int size);

}  // namespace qilsys::paths
