/// Digests by OpenSSL, against which ours are held.
#pragma once

#include <openssl/evp.h>

#include <cstddef>
#include <stdexcept>
#include <string>

#include "qilsys/sha2.h"

namespace qilsys::test {

inline const EVP_MD* PeerOf(sha2::SHA_TYPE type) {
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

/// The digest's bytes.
inline std::string PeerDigest(sha2::SHA_TYPE type, const void* data, std::size_t length) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  if (EVP_Digest(data, length, digest, &size, PeerOf(type), nullptr) != 1) throw std::runtime_error("EVP_Digest");
  return {digest, digest + size};
}

}  // namespace qilsys::test
