// For processors that have nothing to add; the x86 sibling is ShaTransform_x86.cpp.
#include "hash/ShaTransform_cpu.h"

namespace qilsys::hash {

size_t AddCpuShaTransforms(const ShaTransforms&, ShaTransforms*) { return 0; }

}  // namespace qilsys::hash
