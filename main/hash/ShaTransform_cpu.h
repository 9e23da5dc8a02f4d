/// What each kind of processor adds to the portable forms; one source file a kind gives it.
#pragma once

#include "hash/ShaTransform.h"

namespace qilsys::hash {

constexpr size_t MaxCpuShaTransforms = 4;

/// Writes to `sets` those that this very processor can run, each faster than the one before, and returns how many.
/// A member for which the processor has nothing better is taken from `portable` or from the set before.
size_t AddCpuShaTransforms(const ShaTransforms& portable, ShaTransforms* sets);

}  // namespace qilsys::hash
