/// What the forms for x86-64 share.
#pragma once

#include "cpu/Compiler.h"
#include "cpu/Vectors_x86.h"
#include "transcode/UnicodeKernel.h"

#define QILSYS_AVX2 QILSYS_TARGET("avx2")
#define QILSYS_AVX2_PART QILSYS_TARGET("avx2") QILSYS_ALWAYS_INLINE

namespace qilsys::transcode {

using cpu::Load;
using cpu::Store;

inline void StoreWidened(__m128i bytes, TCodeUnit* target) {
  const __m128i zero = _mm_setzero_si128();
  Store(target, _mm_unpacklo_epi8(bytes, zero));
  Store(target + 8, _mm_unpackhi_epi8(bytes, zero));
}

/// All of Unicode, for processors that have AVX2.
Progress FromUtf8Avx2(const char* source, size_t length, TCodeUnit* target, size_t room);
Progress FromUtf16Avx2(const TCodeUnit* source, size_t length, char* target, size_t room);

}  // namespace qilsys::transcode
