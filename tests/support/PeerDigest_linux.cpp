// By OpenSSL; the sibling for Windows is PeerDigest_win.cpp.
#include "support/PeerDigest.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <openssl/evp.h>

#include <stdexcept>

namespace qilsys::test {

namespace {

const EVP_MD* PeerOf(sha2::SHA_TYPE type) {
  switch (type) {
    case sha2::SHA160:
      return EVP_sha1();
    case sha2::SHA224:
      return EVP_sha224();
    case sha2::SHA256:
      return EVP_sha256();
    case sha2::SHA384:
      return EVP_sha384();
    case sha2::SHA512:
      return EVP_sha512();
  }
  throw std::invalid_argument("no such digest");
}

}  // namespace

static_assert(MostDigestBytes == EVP_MAX_MD_SIZE);

const char* PeerName(sha2::SHA_TYPE) { return "OpenSSL"; }

std::size_t PeerDigest(sha2::SHA_TYPE type, const void* data, std::size_t length, unsigned char* digest) {
  unsigned int size = 0;
  if (EVP_Digest(data, length, digest, &size, PeerOf(type), nullptr) != 1) throw std::runtime_error("EVP_Digest");
  return size;
}

}  // namespace qilsys::test
