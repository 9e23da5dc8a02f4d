/// Which instructions beyond the common ones this x86-64 processor has, and the system lets programs use.
#pragma once

namespace qilsys::cpu {

struct CpuFeatures {
  bool bmi2 = false;
  bool sha = false;
  bool avx2 = false;
  bool avx512vl = false;
};

CpuFeatures ReadCpuFeatures();

}  // namespace qilsys::cpu
