/// The digests of the Secure Hash Standard, FIPS 180-4: SHA-1, SHA-224, SHA-256, SHA-384 and SHA-512.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "qilsys/Export.h"

namespace qilsys::hash {
struct ShaRounds;
}

/// One computation of a digest at a time: `Init`, any number of `Update`, `End`, then any number of reads.
///
/// `Init` may start again at any point. A copy takes a computation over as it stands and goes on by itself. An object
/// belongs to one thread at a time; different objects are independent.
class QILSYS_API sha2 {
 public:
  /// The digest, by its length in bits; SHA-1 is called after its 160.
  enum SHA_TYPE : int { SHA160 = 1, SHA224 = 2, SHA256 = 3, SHA384 = 4, SHA512 = 5 };

  sha2() = default;
  sha2(const sha2& other) = default;
  sha2(sha2&& other) noexcept = default;
  /// Takes all of the other's computation, or nothing where the copy finds no memory.
  sha2& operator=(const sha2& other);
  sha2& operator=(sha2&& other) noexcept = default;
  ~sha2() = default;

  /// Starts a computation. Throws std::runtime_error "Invalid SHA_TYPE type!" for any other value, which is stored
  /// all the same, so that only another `Init` helps.
  void Init(SHA_TYPE type);

  /// Feeds `length` bytes; `data` may be null if that is 0. Throws std::runtime_error "Invalid SHA_TYPE type!" unless
  /// `Init` has set a type. After `End` the results are of no use.
  void Update(const unsigned char* data, unsigned long long length);

  /// Finishes, after which the digest can be read. Throws std::runtime_error "Invalid SHA_TYPE type!" unless `Init` has
  /// set a type, and std::bad_alloc where there is no memory, after which it can be called again.
  void End();

  /// `Init`, `Update` and `End` in one. The reference is to this object's text, which its next `End` changes.
  const std::string& GetHash(SHA_TYPE type, const unsigned char* data, unsigned long long length);

  /// The digest as lower-case hexadecimal digits, owned by this object. These three throw std::runtime_error
  /// "Unfinished execution!" before `End`.
  const char* HexHash() const;
  const std::string& StringHash() const;
  /// The digest's bytes, owned by this object; `length` receives their number.
  const char* RawHash(int& length) const;

  /// The type last given to `Init`, valid or not; 0 before.
  SHA_TYPE GetEnumType() const { return m_type; }
  /// "SHA160", "SHA224", "SHA256", "SHA384", "SHA512", or "Unknown!".
  const char* GetTypeString() const;
  /// Always false: digests are written as the standard lays down, whatever the machine's byte order.
  bool IsBigEndian() const { return m_bigEndian; }

 private:
  // The rounds are compiled more than once, for different machines.
  friend struct qilsys::hash::ShaRounds;

  static constexpr size_t MaxBlockBytes = 128;
  static constexpr size_t MaxDigestBytes = 64;

  // The functions of the standard, under its names.
  template <class Word>
  static constexpr Word Ch(Word x, Word y, Word z);
  template <class Word>
  static constexpr Word Maj(Word x, Word y, Word z);
  static constexpr uint32_t Parity(uint32_t x, uint32_t y, uint32_t z);
  static constexpr uint32_t ROTL32(uint32_t x, int n);
  static constexpr uint32_t ROTR32(uint32_t x, int n);
  static constexpr uint64_t ROTR64(uint64_t x, int n);
  template <class Word>
  static constexpr Word SHR(Word x, int n);
  static constexpr uint32_t Sigma0_256(uint32_t x);
  static constexpr uint32_t Sigma1_256(uint32_t x);
  static constexpr uint32_t sigma0_256(uint32_t x);
  static constexpr uint32_t sigma1_256(uint32_t x);
  static constexpr uint64_t Sigma0_512(uint64_t x);
  static constexpr uint64_t Sigma1_512(uint64_t x);
  static constexpr uint64_t sigma0_512(uint64_t x);
  static constexpr uint64_t sigma1_512(uint64_t x);

  static uint32_t REVERSE32(uint32_t word);
  static uint64_t REVERSE64(uint64_t word);
  static void ADDINC128(uint64_t* count, uint64_t bits);
  static void MEMCPY_BCOPY(void* target, const void* source, size_t length);
  static void MEMSET_BZERO(void* target, size_t length);

  static void SHA1_Internal_Transform(uint32_t* state, const unsigned char* blocks, size_t count);
  static void SHA256_Internal_Transform(uint32_t* state, const unsigned char* blocks, size_t count);
  static void SHA512_Internal_Transform(uint64_t* state, const unsigned char* blocks, size_t count);
  void SHA256_Internal_Last(bool isSha1);
  void SHA512_Internal_Last();
  void SHA32bit_Update(const unsigned char* data, unsigned long long length, bool isSha1);
  void SHA64bit_Update(const unsigned char* data, unsigned long long length);

  template <size_t BlockBytes, class Transform>
  void Feed(const unsigned char* data, unsigned long long length, const Transform& transform);
  template <size_t BlockBytes>
  size_t Pad(unsigned char* padded) const;
  void CheckType() const;
  void CheckFinished() const;
  void WriteRaw();
  void WriteHex();

  SHA_TYPE m_type = SHA_TYPE(0);
  std::string m_stringHash;
  bool m_finished = false;
  bool m_bigEndian = false;
  char m_hexBuffer[2 * MaxDigestBytes + 1] = {};
  unsigned char m_rawHash[MaxDigestBytes] = {};
  // The chaining values; the digests of 32-bit words use the first half.
  union {
    uint64_t m_state[8] = {};
    uint32_t m_state32[8];
  };
  // The length of the message in bits, the lower word first.
  uint64_t m_bitCount[2] = {};
  unsigned char m_block[MaxBlockBytes] = {};
};
