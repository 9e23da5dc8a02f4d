/// Words read from bytes at any address.
#pragma once

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace qilsys::hash {

#if defined(__GNUC__)
inline uint32_t SwapBytes(uint32_t word) { return __builtin_bswap32(word); }
inline uint64_t SwapBytes(uint64_t word) { return __builtin_bswap64(word); }
#else
inline uint32_t SwapBytes(uint32_t word) { return _byteswap_ulong(word); }
inline uint64_t SwapBytes(uint64_t word) { return _byteswap_uint64(word); }
#endif

/// A word in the machine's own order.
template <class Word>
Word ReadNative(const unsigned char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

inline uint32_t ReadLittle32(const unsigned char* bytes) {
  const auto word = ReadNative<uint32_t>(bytes);
  return std::endian::native == std::endian::little ? word : SwapBytes(word);
}

template <class Word>
Word ReadBig(const unsigned char* bytes) {
  const auto word = ReadNative<Word>(bytes);
  return std::endian::native == std::endian::little ? SwapBytes(word) : word;
}

}  // namespace qilsys::hash
