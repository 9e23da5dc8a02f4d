/// The inner loops of the digests, each in the forms that different machines run best.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "cpu/CpuFeatures.h"

namespace qilsys::hash {

using Transform32 = void (*)(uint32_t* state, const unsigned char* blocks, size_t count);
using Transform64 = void (*)(uint64_t* state, const unsigned char* blocks, size_t count);

/// Feeds whole blocks into eight (SHA-1: five) chaining values. The blocks may stand at any address.
struct ShaTransforms {
  const char* name;
  cpu::CpuFeatures needs;
  Transform32 sha1;
  Transform32 sha256;
  Transform64 sha512;

  void TakeMissing(const ShaTransforms& before) {
    if (sha1 == nullptr) sha1 = before.sha1;
    if (sha256 == nullptr) sha256 = before.sha256;
    if (sha512 == nullptr) sha512 = before.sha512;
  }
};

/// Every set of forms that this machine can run; the portable one first, the fastest last.
std::span<const ShaTransforms> AvailableShaTransforms();

/// The set in use: the fastest, unless a test has chosen another.
const ShaTransforms& ActiveShaTransforms();

/// Chooses the set for the whole process; null goes back to the fastest. No other thread may compute a digest
/// meanwhile.
void ChooseShaTransformsForTest(const ShaTransforms* transforms);

}  // namespace qilsys::hash
