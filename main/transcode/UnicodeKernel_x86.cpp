// ASCII with SSE2, which every x86-64 processor has, and the choice among the forms.

#include "transcode/UnicodeKernel_x86.h"

#include <iterator>

#include "cpu/RunnableForms.h"
#include "units/Utf.h"

namespace qilsys::transcode {

namespace {

/// True if any of the units is not ASCII.
bool HasOther(__m128i units) {
  const __m128i high = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
  return _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) != 0xFFFF;
}

Progress AsciiFromUtf8(const char* source, size_t length, TCodeUnit* target, size_t room) {
  const size_t most = length < room ? length : room;
  size_t done = 0;
  for (; done + 32 <= most; done += 32) {
    const __m128i low = Load(source + done);
    const __m128i high = Load(source + done + 16);
    if (_mm_movemask_epi8(_mm_or_si128(low, high)) != 0) break;
    StoreWidened(low, target + done);
    StoreWidened(high, target + done + 16);
  }
  for (; done + 16 <= most; done += 16) {
    const __m128i bytes = Load(source + done);
    if (_mm_movemask_epi8(bytes) != 0) break;
    StoreWidened(bytes, target + done);
  }
  return {done, done};
}

Progress AsciiFromUtf16(const TCodeUnit* source, size_t length, char* target, size_t room) {
  const size_t most = length < room ? length : room;
  size_t done = 0;
  for (; done + 16 <= most; done += 16) {
    const __m128i low = Load(source + done);
    const __m128i high = Load(source + done + 8);
    if (HasOther(_mm_or_si128(low, high))) break;
    Store(target + done, _mm_packus_epi16(low, high));
  }
  return {done, done};
}

/// One for each lane in which `units`, shifted right, is not zero; as minus one.
__m128i CountAtLeast(__m128i units, int shift) {
  const __m128i zeros = _mm_cmpeq_epi16(_mm_srli_epi16(units, shift), _mm_setzero_si128());
  return _mm_xor_si128(zeros, _mm_set1_epi16(-1));
}

__m128i IsSurrogate(__m128i units, int kind) {
  return _mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFC00))),
                         _mm_set1_epi16(static_cast<short>(kind)));
}

/// The sum of eight signed lanes, each small.
std::int64_t Sum(__m128i lanes) {
  const __m128i pairs = _mm_madd_epi16(lanes, _mm_set1_epi16(1));
  alignas(16) std::int32_t sums[4];
  _mm_store_si128(reinterpret_cast<__m128i*>(sums), pairs);
  return std::int64_t{sums[0]} + sums[1] + sums[2] + sums[3];
}

/// Each unit counts by its value alone, a surrogate as 3; a pair counts 2 too many then. Unit 0 is left to the tail,
/// since a low surrogate is judged with the unit before it.
std::int64_t CountUtf8(const TCodeUnit* source, size_t length) {
  constexpr size_t MostBlocks = 4096;  // A lane grows by 2 a block and must stay within 16 bits.
  std::int64_t bytes = units::CountUtf8(source, 0, length < 1 ? length : 1);
  size_t i = 1;
  while (i + 8 <= length) {
    __m128i more = _mm_setzero_si128();
    const size_t begin = i;
    for (size_t block = 0; block < MostBlocks && i + 8 <= length; ++block, i += 8) {
      const __m128i units = Load(source + i);
      const __m128i pairs = _mm_and_si128(IsSurrogate(units, 0xDC00), IsSurrogate(Load(source + i - 1), 0xD800));
      more = _mm_sub_epi16(more, _mm_add_epi16(CountAtLeast(units, 7), CountAtLeast(units, 11)));
      more = _mm_add_epi16(more, _mm_add_epi16(pairs, pairs));
    }
    bytes += static_cast<std::int64_t>(i - begin) + Sum(more);
  }
  return bytes + units::CountUtf8(source, i, length);
}

/// The wide form, and what ASCII follows where too little is left for it.
template <auto Wide, auto Ascii, class S, class T>
Progress WideThenAscii(const S* source, size_t length, T* target, size_t room) {
  const Progress wide = Wide(source, length, target, room);
  const Progress ascii =
      Ascii(source + wide.consumed, length - wide.consumed, target + wide.written, room - wide.written);
  return {wide.consumed + ascii.consumed, wide.written + ascii.written};
}

constexpr Kernel Forms[] = {
    {"Sse2", cpu::NoFeatures, false, AsciiFromUtf8, AsciiFromUtf16, CountUtf8},
    {"Avx2", cpu::Avx2, true, WideThenAscii<FromUtf8Avx2, AsciiFromUtf8>, WideThenAscii<FromUtf16Avx2, AsciiFromUtf16>,
     CountUtf8},
};

}  // namespace

std::span<const Kernel> Kernels() {
  static const cpu::RunnableForms<Kernel, std::size(Forms)> Runnable{Forms};
  return Runnable.All();
}

}  // namespace qilsys::transcode
