/// Digests by the system's own library, against which ours are held: OpenSSL on Linux, CNG on Windows.
#pragma once

#include <cstddef>
#include <string>

#include "qilsys/sha2.h"

namespace qilsys::test {

constexpr std::size_t MostDigestBytes = 64;

/// Whose digest of this type it is.
const char* PeerName(sha2::SHA_TYPE type);

/// Writes the digest's bytes, at most `MostDigestBytes`, and returns how many. Throws std::runtime_error where the
/// library fails.
std::size_t PeerDigest(sha2::SHA_TYPE type, const void* data, std::size_t length, unsigned char* digest);

inline std::string PeerDigest(sha2::SHA_TYPE type, const void* data, std::size_t length) {
  unsigned char digest[MostDigestBytes];
  return {digest, digest + PeerDigest(type, data, length, digest)};
}

}  // namespace qilsys::test
