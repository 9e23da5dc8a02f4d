#include "hash/ShaTransform.h"

#include "hash/ShaRounds.h"
#include "hash/ShaTransform_cpu.h"

namespace qilsys::hash {

namespace {

void Sha1Portable(uint32_t* state, const unsigned char* blocks, size_t count) {
  ShaRounds::Sha1Transform(state, blocks, count);
}

void Sha256Portable(uint32_t* state, const unsigned char* blocks, size_t count) {
  ShaRounds::Transform<ShaRounds::Words256>(state, blocks, count);
}

void Sha512Portable(uint64_t* state, const unsigned char* blocks, size_t count) {
  ShaRounds::Transform<ShaRounds::Words512>(state, blocks, count);
}

constexpr size_t MaxSets = 1 + MaxCpuShaTransforms;

/// What this machine can run, found once.
struct Available {
  Available() : m_sets{{"portable", Sha1Portable, Sha256Portable, Sha512Portable}} {
    m_count = 1 + AddCpuShaTransforms(m_sets[0], &m_sets[1]);
  }

  ShaTransforms m_sets[MaxSets];
  size_t m_count;
};

const Available& Found() {
  static const Available s_available;
  return s_available;
}

const ShaTransforms* g_chosen = nullptr;

}  // namespace

std::span<const ShaTransforms> AvailableShaTransforms() { return {Found().m_sets, Found().m_count}; }

const ShaTransforms& ActiveShaTransforms() { return g_chosen != nullptr ? *g_chosen : AvailableShaTransforms().back(); }

void ChooseShaTransformsForTest(const ShaTransforms* transforms) { g_chosen = transforms; }

}  // namespace qilsys::hash
