/// Vectors of sixteen bytes to and from any address.
#pragma once

#if !defined(__x86_64__) && !defined(_M_X64)
#error "This file is for x86-64."
#endif

#include <immintrin.h>

#include "cpu/Compiler.h"

namespace qilsys::cpu {

inline __m128i Load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void Store(void* p, __m128i value) { _mm_storeu_si128(static_cast<__m128i*>(p), value); }

/// Ends the use of wider registers, without which the common instructions of the rest of the program are slow. GCC and
/// Clang put vzeroupper where it belongs by themselves.
QILSYS_ALWAYS_INLINE void LeaveWideRegisters() {
#if defined(_MSC_VER) && !defined(__clang__)
  _mm256_zeroupper();
#endif
}

}  // namespace qilsys::cpu
