// Eight bytes of ASCII at a time, for processors without a form of their own.

#include "transcode/UnicodeKernel.h"

#include <cstring>

#include "units/Utf.h"

namespace qilsys::transcode {

namespace {

constexpr size_t Step = 8;

Progress FromUtf8(const char* source, size_t length, TCodeUnit* target, size_t room) {
  const size_t most = length < room ? length : room;
  size_t done = 0;
  for (; done + Step <= most; done += Step) {
    std::uint64_t word;
    std::memcpy(&word, source + done, sizeof word);
    if (word & 0x8080808080808080) break;
    for (size_t k = 0; k < Step; ++k) target[done + k] = static_cast<unsigned char>(source[done + k]);
  }
  return {done, done};
}

Progress FromUtf16(const TCodeUnit* source, size_t length, char* target, size_t room) {
  const size_t most = length < room ? length : room;
  size_t done = 0;
  for (; done + Step <= most; done += Step) {
    unsigned all = 0;
    for (size_t k = 0; k < Step; ++k) all |= source[done + k];
    if (all >= 0x80) break;
    for (size_t k = 0; k < Step; ++k) target[done + k] = static_cast<char>(source[done + k]);
  }
  return {done, done};
}

std::int64_t CountUtf8(const TCodeUnit* source, size_t length) { return units::CountUtf8(source, 0, length); }

constexpr Kernel Portable[] = {{"Portable", cpu::NoFeatures, false, FromUtf8, FromUtf16, CountUtf8}};

}  // namespace

std::span<const Kernel> Kernels() { return Portable; }

}  // namespace qilsys::transcode
