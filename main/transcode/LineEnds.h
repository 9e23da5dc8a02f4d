/// Line ends of all kinds as one, and the text that has them as CR LF.
#pragma once

#include <cstddef>

#include "qilsys/TCodeUnit.h"

namespace qilsys::transcode {

/// Units of the text with each line end as CR LF; 0 for null.
std::size_t CountDosUnits(const TCodeUnit* text, std::size_t length);
/// Writes that text; `target` has room for as many units as CountDosUnits gives.
void WriteDosUnits(const TCodeUnit* text, std::size_t length, TCodeUnit* target);

}  // namespace qilsys::transcode
