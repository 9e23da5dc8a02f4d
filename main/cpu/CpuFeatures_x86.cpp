// Asks by CPUID. The sibling for other processors is CpuFeatures_generic.cpp.
#include "cpu/CpuFeatures.h"

#if defined(_MSC_VER)
#include <intrin.h>
#else
#include <cpuid.h>
#endif

namespace qilsys::cpu {

namespace {

struct Registers {
  unsigned int eax = 0;
  unsigned int ebx = 0;
  unsigned int ecx = 0;
  unsigned int edx = 0;
};

/// The answer of CPUID, all zeros where the processor does not know the question.
Registers Ask(unsigned int leaf) {
  Registers r;
#if defined(_MSC_VER)
  int values[4] = {};
  __cpuidex(values, static_cast<int>(leaf), 0);
  r = {static_cast<unsigned int>(values[0]), static_cast<unsigned int>(values[1]), static_cast<unsigned int>(values[2]),
       static_cast<unsigned int>(values[3])};
#else
  __get_cpuid_count(leaf, 0, &r.eax, &r.ebx, &r.ecx, &r.edx);
#endif
  return r;
}

bool Bit(unsigned int word, int bit) { return ((word >> bit) & 1) != 0; }

// What the system saves for each thread: without that, wide registers must not be touched.
constexpr unsigned long long YmmState = 0x06;
constexpr unsigned long long ZmmState = 0xE6;

/// The register that says so; to be read only where the processor has it.
unsigned long long SavedState() {
#if defined(_MSC_VER)
  return _xgetbv(0);
#else
  unsigned int low = 0;
  unsigned int high = 0;
  __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return (static_cast<unsigned long long>(high) << 32) | low;
#endif
}

}  // namespace

CpuFeatures ReadCpuFeatures() {
  const Registers basic = Ask(1);
  const Registers extended = Ask(7);
  const bool bmi = Bit(extended.ebx, 3);
  const bool ssse3AndSse41 = Bit(basic.ecx, 9) && Bit(basic.ecx, 19);
  const unsigned long long saved = Bit(basic.ecx, 27) ? SavedState() : 0;
  const auto having = [](bool condition, CpuFeatures feature) { return condition ? feature : NoFeatures; };
  return having(bmi && Bit(extended.ebx, 8), Bmi2) | having(ssse3AndSse41 && Bit(extended.ebx, 29), Sha) |
         having((saved & YmmState) == YmmState && Bit(extended.ebx, 5), Avx2) |
         having((saved & ZmmState) == ZmmState && Bit(extended.ebx, 16) && Bit(extended.ebx, 31), Avx512vl);
}

}  // namespace qilsys::cpu
