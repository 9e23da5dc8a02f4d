/// The conversions between UTF-8 and UTF-16 that give what ICU gives, faster.
#pragma once

#include "qilsys/TCodeUnit.h"
#include "transcode/UnicodeKernel.h"

namespace qilsys::transcode {

/// Converts from the start while whole code points fit, and stops between two of them: at the end, where the next one
/// does not fit, and where ICU is faster. What ICU makes of the rest, put behind what was written, is what it makes of
/// the whole. Writes no terminator.
Progress ConvertUtf8(const char* source, int length, TCodeUnit* target, int capacity,
                     const Kernel& kernel = BestKernel());
Progress ConvertUtf16(const TCodeUnit* source, int length, char* target, int capacity,
                      const Kernel& kernel = BestKernel());

/// Converts the whole text into the `bytes` that MeasureUtf16ToUtf8 gave for it. Writes no terminator, so that a result
/// of INT_MAX bytes is possible.
void WriteMeasuredUtf8(const TCodeUnit* source, int length, char* target, int bytes);

}  // namespace qilsys::transcode
