// Any bytes, at any offset and with any seeds, hash as the plain references say. The first 17 bytes are the seeds and
// the offset.
#include "qilsys/THash.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "support/ReferenceHashes.h"

namespace {

using qilsys::test::ReferenceLookup2;
using qilsys::test::ReferenceSpooky;

constexpr std::size_t HeadBytes = 17;

void Check(bool holds) {
  if (!holds) std::abort();
}

void CheckHashes(const std::uint8_t* data, const std::vector<std::uint8_t>& bytes, std::uint64_t seed1,
                 std::uint64_t seed2) {
  const auto seed32 = static_cast<std::uint32_t>(seed1);
  Check(THash32(data, bytes.size(), seed32) == ReferenceLookup2::Hash(bytes, seed32));
  const auto wanted = ReferenceSpooky::Hash(bytes, seed1, seed2);
  const auto both = THash128(data, bytes.size(), seed1, seed2);
  Check(both.first == wanted.first && both.second == wanted.second);
  Check(THash64(data, bytes.size(), seed2) == ReferenceSpooky::Hash(bytes, seed2, seed2).first);
  Check(THash(data, bytes.size()) == ReferenceSpooky::Hash(bytes, 0xdeadbeef, 0xdeadbeef).first);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < HeadBytes) return 0;
  std::uint64_t seeds[2];
  std::memcpy(seeds, data, sizeof(seeds));
  const std::size_t offset = data[16] % 16;
  const std::vector<std::uint8_t> bytes(data + HeadBytes, data + size);
  // Ends with the message, so that a sanitizer sees a byte read behind it.
  std::vector<std::uint8_t> shifted(offset);
  shifted.insert(shifted.end(), bytes.begin(), bytes.end());
  CheckHashes(shifted.data() + offset, bytes, seeds[0], seeds[1]);
  return 0;
}
