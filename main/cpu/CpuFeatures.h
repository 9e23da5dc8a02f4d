/// Which instructions beyond the common ones this processor has, and the system lets programs use.
#pragma once

namespace qilsys::cpu {

/// Bits. Other processors than x86-64 have none of these.
enum CpuFeatures : unsigned {
  NoFeatures = 0,
  Bmi2 = 1 << 0,  // BMI1 as well
  Sha = 1 << 1,   // SSSE3 and SSE4.1 as well
  Avx2 = 1 << 2,
  Avx512vl = 1 << 3,  // AVX-512F as well
};

constexpr CpuFeatures operator|(CpuFeatures a, CpuFeatures b) {
  return static_cast<CpuFeatures>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}

/// Asks the processor.
CpuFeatures ReadCpuFeatures();

}  // namespace qilsys::cpu
