// For processors that have nothing to add; the x86 sibling is ShaTransform_x86.cpp.
#include "hash/ShaTransform_cpu.h"

namespace qilsys::hash {

std::span<const ShaTransforms> CpuShaTransforms() { return {}; }

}  // namespace qilsys::hash
