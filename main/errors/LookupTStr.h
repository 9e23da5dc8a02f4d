/// Public texts by number.
#pragma once

#include "qilsys/TStringCore.h"

/// The text of this id, by the function that InjectLookupTStr gave, else "Internal error.". Raises what that function
/// raises.
TStringCore LookupTStr(unsigned int id);
