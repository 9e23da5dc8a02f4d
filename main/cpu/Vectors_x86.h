/// Vectors of sixteen bytes to and from any address.
#pragma once

#if !defined(__x86_64__) && !defined(_M_X64)
#error "This file is for x86-64."
#endif

#include <immintrin.h>

namespace qilsys::cpu {

inline __m128i Load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void Store(void* p, __m128i value) { _mm_storeu_si128(static_cast<__m128i*>(p), value); }

}  // namespace qilsys::cpu
