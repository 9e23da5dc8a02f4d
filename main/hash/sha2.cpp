#include "qilsys/sha2.h"

#include <cstring>
#include <stdexcept>
#include <utility>

#include "hash/ReadWord.h"
#include "hash/ShaTransform.h"

namespace {

/// What is laid down for each type, by its value; nothing for 0.
struct Kind {
  const char* name;
  int digestBytes;
  bool wide;
  // Where `wide` does not hold, only words of 32 bits.
  uint64_t initial[8];
};

constexpr Kind Kinds[] = {
    {"Unknown!", 0, false, {}},
    {"SHA160", 20, false, {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0}},
    {"SHA224",
     28,
     false,
     {0xc1059ed8, 0x367cd507, 0x3070dd17, 0xf70e5939, 0xffc00b31, 0x68581511, 0x64f98fa7, 0xbefa4fa4}},
    {"SHA256",
     32,
     false,
     {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19}},
    {"SHA384",
     48,
     true,
     {0xcbbb9d5dc1059ed8, 0x629a292a367cd507, 0x9159015a3070dd17, 0x152fecd8f70e5939, 0x67332667ffc00b31,
      0x8eb44a8768581511, 0xdb0c2e0d64f98fa7, 0x47b5481dbefa4fa4}},
    {"SHA512",
     64,
     true,
     {0x6a09e667f3bcc908, 0xbb67ae8584caa73b, 0x3c6ef372fe94f82b, 0xa54ff53a5f1d36f1, 0x510e527fade682d1,
      0x9b05688c2b3e6c1f, 0x1f83d9abfb41bd6b, 0x5be0cd19137e2179}},
};

constexpr size_t ShortBlock = 64;
constexpr size_t LongBlock = 128;

bool IsValid(sha2::SHA_TYPE type) { return type >= sha2::SHA160 && type <= sha2::SHA512; }

const Kind& KindOf(sha2::SHA_TYPE type) { return Kinds[IsValid(type) ? type : 0]; }

}  // namespace

uint32_t sha2::REVERSE32(uint32_t word) { return qilsys::hash::SwapBytes(word); }
uint64_t sha2::REVERSE64(uint64_t word) { return qilsys::hash::SwapBytes(word); }

void sha2::ADDINC128(uint64_t* count, uint64_t bits) {
  count[0] += bits;
  if (count[0] < bits) ++count[1];
}

void sha2::MEMCPY_BCOPY(void* target, const void* source, size_t length) {
  if (length > 0) std::memcpy(target, source, length);
}

void sha2::MEMSET_BZERO(void* target, size_t length) { std::memset(target, 0, length); }

void sha2::SHA1_Internal_Transform(uint32_t* state, const unsigned char* blocks, size_t count) {
  qilsys::hash::ActiveShaTransforms().sha1(state, blocks, count);
}

void sha2::SHA256_Internal_Transform(uint32_t* state, const unsigned char* blocks, size_t count) {
  qilsys::hash::ActiveShaTransforms().sha256(state, blocks, count);
}

void sha2::SHA512_Internal_Transform(uint64_t* state, const unsigned char* blocks, size_t count) {
  qilsys::hash::ActiveShaTransforms().sha512(state, blocks, count);
}

sha2& sha2::operator=(const sha2& other) {
  // The text is the only member whose copy can fail.
  sha2 copy(other);
  return *this = std::move(copy);
}

void sha2::Init(SHA_TYPE type) {
  m_type = type;
  m_finished = false;
  MEMSET_BZERO(m_state, sizeof(m_state));
  MEMSET_BZERO(m_bitCount, sizeof(m_bitCount));
  MEMSET_BZERO(m_block, sizeof(m_block));
  CheckType();
  const Kind& kind = KindOf(type);
  for (size_t i = 0; i < 8; ++i) {
    if (kind.wide) {
      m_state[i] = kind.initial[i];
    } else {
      m_state32[i] = static_cast<uint32_t>(kind.initial[i]);
    }
  }
}

void sha2::Update(const unsigned char* data, unsigned long long length) {
  CheckType();
  if (length == 0) return;
  if (KindOf(m_type).wide) {
    SHA64bit_Update(data, length);
  } else {
    SHA32bit_Update(data, length, m_type == SHA160);
  }
}

void sha2::End() {
  CheckType();
  // The only step that can fail comes before any that changes the computation.
  m_stringHash.reserve(2 * MaxDigestBytes);
  if (KindOf(m_type).wide) {
    SHA512_Internal_Last();
  } else {
    SHA256_Internal_Last(m_type == SHA160);
  }
  WriteRaw();
  WriteHex();
  m_finished = true;
}

/// Completes a partial block, feeds all whole ones straight from the caller's memory, and keeps the rest.
template <size_t BlockBytes, class Transform>
void sha2::Feed(const unsigned char* data, unsigned long long length, const Transform& transform) {
  const size_t held = (m_bitCount[0] >> 3) % BlockBytes;
  ADDINC128(m_bitCount, length << 3);
  m_bitCount[1] += length >> 61;
  if (held + length < BlockBytes) return MEMCPY_BCOPY(m_block + held, data, length);
  if (held > 0) {
    const size_t missing = BlockBytes - held;
    MEMCPY_BCOPY(m_block + held, data, missing);
    transform(m_block, size_t{1});
    data += missing;
    length -= missing;
  }
  const size_t blocks = length / BlockBytes;
  if (blocks > 0) transform(data, blocks);
  MEMCPY_BCOPY(m_block, data + blocks * BlockBytes, length % BlockBytes);
}

void sha2::SHA32bit_Update(const unsigned char* data, unsigned long long length, bool isSha1) {
  Feed<ShortBlock>(data, length, [&](const unsigned char* blocks, size_t count) {
    isSha1 ? SHA1_Internal_Transform(m_state32, blocks, count) : SHA256_Internal_Transform(m_state32, blocks, count);
  });
}

void sha2::SHA64bit_Update(const unsigned char* data, unsigned long long length) {
  Feed<LongBlock>(data, length, [&](const unsigned char* blocks, size_t count) {
    SHA512_Internal_Transform(m_state, blocks, count);
  });
}

/// Writes the padding of the standard behind what is held, up to the length, which fills the last eighth of a block.
/// Returns the number of blocks that it takes, in `padded`.
template <size_t BlockBytes>
size_t sha2::Pad(unsigned char* padded) const {
  constexpr size_t LengthBytes = BlockBytes / 8;
  const size_t held = (m_bitCount[0] >> 3) % BlockBytes;
  const size_t size = held + 1 + LengthBytes <= BlockBytes ? BlockBytes : 2 * BlockBytes;
  MEMCPY_BCOPY(padded, m_block, held);
  padded[held] = 0x80;
  MEMSET_BZERO(padded + held + 1, size - held - 1);
  const uint64_t low = REVERSE64(m_bitCount[0]);
  const uint64_t high = REVERSE64(m_bitCount[1]);
  MEMCPY_BCOPY(padded + size - 8, &low, 8);
  if (LengthBytes == 16) MEMCPY_BCOPY(padded + size - 16, &high, 8);
  return size / BlockBytes;
}

void sha2::SHA256_Internal_Last(bool isSha1) {
  unsigned char padded[2 * ShortBlock];
  const size_t blocks = Pad<ShortBlock>(padded);
  isSha1 ? SHA1_Internal_Transform(m_state32, padded, blocks) : SHA256_Internal_Transform(m_state32, padded, blocks);
}

void sha2::SHA512_Internal_Last() {
  unsigned char padded[2 * LongBlock];
  SHA512_Internal_Transform(m_state, padded, Pad<LongBlock>(padded));
}

void sha2::WriteRaw() {
  const size_t words = m_type == SHA160 ? 5 : 8;
  for (size_t i = 0; i < words; ++i) {
    if (KindOf(m_type).wide) {
      const uint64_t word = m_bigEndian ? m_state[i] : REVERSE64(m_state[i]);
      MEMCPY_BCOPY(m_rawHash + i * sizeof(word), &word, sizeof(word));
    } else {
      const uint32_t word = m_bigEndian ? m_state32[i] : REVERSE32(m_state32[i]);
      MEMCPY_BCOPY(m_rawHash + i * sizeof(word), &word, sizeof(word));
    }
  }
}

void sha2::WriteHex() {
  constexpr const char* Digits = "0123456789abcdef";
  const int bytes = KindOf(m_type).digestBytes;
  char* out = m_hexBuffer;
  for (int i = 0; i < bytes; ++i) {
    *out++ = Digits[m_rawHash[i] >> 4];
    *out++ = Digits[m_rawHash[i] & 0xF];
  }
  *out = '\0';
  m_stringHash.assign(m_hexBuffer, out);
}

const std::string& sha2::GetHash(SHA_TYPE type, const unsigned char* data, unsigned long long length) {
  Init(type);
  Update(data, length);
  End();
  return m_stringHash;
}

const char* sha2::HexHash() const {
  CheckFinished();
  return m_hexBuffer;
}

const std::string& sha2::StringHash() const {
  CheckFinished();
  return m_stringHash;
}

const char* sha2::RawHash(int& length) const {
  CheckFinished();
  length = KindOf(m_type).digestBytes;
  return reinterpret_cast<const char*>(m_rawHash);
}

const char* sha2::GetTypeString() const { return KindOf(m_type).name; }

void sha2::CheckType() const {
  if (!IsValid(m_type)) throw std::runtime_error("Invalid SHA_TYPE type!");
}

void sha2::CheckFinished() const {
  if (!m_finished) throw std::runtime_error("Unfinished execution!");
}
