/// The long and the short form of a path that need not exist, by what the system says of those that do.
#pragma once

#include <functional>

#include "paths/TPathCore_platform.h"
#include "qilsys/TPathCore.h"
#include "qilsys/TStringCore.h"

namespace qilsys::paths {

/// As AskNativeForm, for one of the forms.
using AskForForm = std::function<NativeFormAnswer(const TCodeUnit* path, TCodeUnit* buffer, unsigned int size)>;

/// What `ask` gives for the path, or for the nearest of its parents that exists and then the rest of the path as it is;
/// the plain native form where that fails.
TStringCore NativePathByForm(const TPathCore& path, const AskForForm& ask);

}  // namespace qilsys::paths
