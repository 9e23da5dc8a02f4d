/// The lengths of texts that end with NUL.
#pragma once

#include "qilsys/TCodeUnit.h"

namespace qilsys::units {

/// Elements before the NUL, 0 for null. Raises TStringCore::CapacityException where they reach LengthLimit.
int TerminatedLength(const char* text);
int TerminatedLength(const char32_t* text);
int TerminatedLength(const TCodeUnit* text);
int TerminatedLength(const TForeignUnit* text);

/// Elements before the first NUL among `limit`, or `limit`; 0 for null. Raises nothing.
int TerminatedLength(const TForeignUnit* text, int limit);

}  // namespace qilsys::units
