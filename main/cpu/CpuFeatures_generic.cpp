// What other processors have is not asked yet: their code is the portable one. The x86-64 sibling is
// CpuFeatures_x86.cpp.
#include "cpu/CpuFeatures.h"

namespace qilsys::cpu {

CpuFeatures ReadCpuFeatures() { return NoFeatures; }

}  // namespace qilsys::cpu
