// By CNG; the sibling for Linux is PeerDigest_linux.cpp.
#include "support/PeerDigest.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <stdexcept>

#include "support/ReferenceSha224.h"

namespace qilsys::test {

namespace {

void Check(NTSTATUS status, const char* call) {
  if (status < 0) throw std::runtime_error(call);
}

/// An algorithm stays open for the whole run: opening it costs more than most messages.
class Algorithm {
 public:
  explicit Algorithm(const wchar_t* name) {
    Check(BCryptOpenAlgorithmProvider(&m_handle, name, nullptr, 0), "BCryptOpenAlgorithmProvider");
  }
  Algorithm(const Algorithm&) = delete;
  Algorithm& operator=(const Algorithm&) = delete;
  ~Algorithm() { BCryptCloseAlgorithmProvider(m_handle, 0); }

  BCRYPT_ALG_HANDLE Get() const { return m_handle; }

 private:
  BCRYPT_ALG_HANDLE m_handle = nullptr;
};

class Computation {
 public:
  explicit Computation(const Algorithm& algorithm) {
    Check(BCryptCreateHash(algorithm.Get(), &m_handle, nullptr, 0, nullptr, 0, 0), "BCryptCreateHash");
  }
  Computation(const Computation&) = delete;
  Computation& operator=(const Computation&) = delete;
  ~Computation() { BCryptDestroyHash(m_handle); }

  void Feed(const unsigned char* data, std::size_t length) {
    // A call counts its bytes by 32 bits, and Wine's SHA-1 the bits of a call.
    constexpr std::size_t Most = std::size_t{1} << 26;
    for (std::size_t count = 0; length > 0; data += count, length -= count) {
      count = std::min(length, Most);
      Check(BCryptHashData(m_handle, const_cast<unsigned char*>(data), static_cast<ULONG>(count), 0), "BCryptHashData");
    }
  }

  void End(unsigned char* digest, std::size_t digestBytes) {
    Check(BCryptFinishHash(m_handle, digest, static_cast<ULONG>(digestBytes), 0), "BCryptFinishHash");
  }

 private:
  BCRYPT_HASH_HANDLE m_handle = nullptr;
};

std::size_t DigestBy(const Algorithm& algorithm, std::size_t digestBytes, const void* data, std::size_t length,
                     unsigned char* digest) {
  Computation computation(algorithm);
  computation.Feed(static_cast<const unsigned char*>(data), length);
  computation.End(digest, digestBytes);
  return digestBytes;
}

}  // namespace

// The system has no SHA-224.
const char* PeerName(sha2::SHA_TYPE type) { return type == sha2::SHA224 ? "plain reference" : "CNG"; }

std::size_t PeerDigest(sha2::SHA_TYPE type, const void* data, std::size_t length, unsigned char* digest) {
  static const Algorithm Sha1(BCRYPT_SHA1_ALGORITHM);
  static const Algorithm Sha256(BCRYPT_SHA256_ALGORITHM);
  static const Algorithm Sha384(BCRYPT_SHA384_ALGORITHM);
  static const Algorithm Sha512(BCRYPT_SHA512_ALGORITHM);
  switch (type) {
    case sha2::SHA160:
      return DigestBy(Sha1, 20, data, length, digest);
    case sha2::SHA224:
      return ReferenceSha224::Digest(static_cast<const unsigned char*>(data), length)
          .copy(reinterpret_cast<char*>(digest), MostDigestBytes);
    case sha2::SHA256:
      return DigestBy(Sha256, 32, data, length, digest);
    case sha2::SHA384:
      return DigestBy(Sha384, 48, data, length, digest);
    case sha2::SHA512:
      return DigestBy(Sha512, 64, data, length, digest);
  }
  throw std::invalid_argument("no such digest");
}

}  // namespace qilsys::test
