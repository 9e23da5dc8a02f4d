/// What each kind of processor adds to the portable forms; one source file a kind gives it.
#pragma once

#include <span>

#include "hash/ShaTransform.h"

namespace qilsys::hash {

constexpr std::size_t MaxCpuShaTransforms = 4;

/// At most so many, each faster than the one before. A null loop is that of the form before it.
std::span<const ShaTransforms> CpuShaTransforms();

}  // namespace qilsys::hash
