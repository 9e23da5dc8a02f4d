// Any bytes fed in any parts, by every form of the inner loops, give the system's own digest. The first byte chooses the
// digest, the second says how many lengths of parts follow; these are taken in turn until the message is used up.
#include "qilsys/sha2.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "hash/ShaTransform.h"
#include "support/PeerDigest.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

std::string Ours(sha2::SHA_TYPE type, Bytes parts, Bytes message) {
  sha2 digest;
  digest.Init(type);
  for (std::size_t turn = 0; !message.empty(); ++turn) {
    // Without a part of some length there would be no end.
    const std::size_t wanted = turn < 64 * parts.size() ? parts[turn % parts.size()] : message.size();
    const std::size_t length = std::min(wanted, message.size());
    digest.Update(message.data(), length);
    message = message.subspan(length);
  }
  digest.End();
  int length = 0;
  const char* raw = digest.RawHash(length);
  return {raw, raw + length};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const auto type = sha2::SHA_TYPE(1 + data[0] % 5);
  const Bytes rest(data + 2, size - 2);
  const Bytes parts = rest.first(std::min<std::size_t>(data[1], rest.size()));
  const Bytes message = rest.subspan(parts.size());
  const std::string wanted = qilsys::test::PeerDigest(type, message.data(), message.size());
  for (const auto& transforms : qilsys::hash::AvailableShaTransforms()) {
    qilsys::hash::ChooseShaTransformsForTest(&transforms);
    if (Ours(type, parts, message) != wanted) std::abort();
  }
  qilsys::hash::ChooseShaTransformsForTest(nullptr);
  return 0;
}
