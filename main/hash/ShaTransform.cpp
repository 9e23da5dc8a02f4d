#include "hash/ShaTransform.h"

#include "cpu/RunnableForms.h"
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

constexpr ShaTransforms Portable = {"portable", cpu::NoFeatures, Sha1Portable, Sha256Portable, Sha512Portable};

using Forms = cpu::RunnableForms<ShaTransforms, 1 + MaxCpuShaTransforms>;

/// What this machine can run, found once.
const Forms& Found() {
  static const Forms AllForms(std::span(&Portable, 1), CpuShaTransforms());
  return AllForms;
}

const ShaTransforms* g_chosen = nullptr;

}  // namespace

std::span<const ShaTransforms> AvailableShaTransforms() { return Found().All(); }

const ShaTransforms& ActiveShaTransforms() { return g_chosen != nullptr ? *g_chosen : AvailableShaTransforms().back(); }

void ChooseShaTransformsForTest(const ShaTransforms* transforms) { g_chosen = transforms; }

}  // namespace qilsys::hash
