/// What the forms for x86-64 share.
#pragma once

#if !defined(__x86_64__) && !defined(_M_X64)
#error "This file is for x86-64; UnicodeKernel_generic.cpp is for the others."
#endif

#include <immintrin.h>

#include "transcode/UnicodeKernel.h"

// Lets one function use instructions that not every x86-64 processor has.
#if defined(__GNUC__)
#define QILSYS_AVX2 __attribute__((target("avx2")))
#define QILSYS_AVX2_PART __attribute__((target("avx2"), always_inline)) inline
#else
#define QILSYS_AVX2
#define QILSYS_AVX2_PART __forceinline
#endif

namespace Unicode {

inline __m128i Load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void Store(void* p, __m128i value) { _mm_storeu_si128(static_cast<__m128i*>(p), value); }

inline void StoreWidened(__m128i bytes, TCodeUnit* target) {
  const __m128i zero = _mm_setzero_si128();
  Store(target, _mm_unpacklo_epi8(bytes, zero));
  Store(target + 8, _mm_unpackhi_epi8(bytes, zero));
}

/// All of Unicode, for processors that have AVX2.
Progress FromUtf8Avx2(const char* source, size_t length, TCodeUnit* target, size_t room);
Progress FromUtf16Avx2(const TCodeUnit* source, size_t length, char* target, size_t room);

}  // namespace Unicode
