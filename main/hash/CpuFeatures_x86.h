/// Which instructions beyond the common ones this x86-64 processor has, and the system lets programs use.
#pragma once

// Lets one function, and what becomes part of it, use instructions that not every x86-64 processor has.
#if defined(__GNUC__)
#define QILSYS_WITH_INSTRUCTIONS(names) __attribute__((target(names)))
#else
#define QILSYS_WITH_INSTRUCTIONS(names)
#endif

namespace qilsys::hash {

struct CpuFeatures {
  bool bmi2 = false;
  bool sha = false;
  bool avx2 = false;
  bool avx512vl = false;
};

CpuFeatures ReadCpuFeatures();

}  // namespace qilsys::hash
