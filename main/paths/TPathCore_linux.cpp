// The Windows sibling has the same operation.
#include "paths/TPathCore_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

namespace qilsys::paths {

// A file has no second name of another length.
NativeFormAnswer AskNativeForm(NativeForm, const TCodeUnit*, TCodeUnit*, unsigned int) { return {0, false}; }

}  // namespace qilsys::paths
