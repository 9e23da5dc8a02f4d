/// The bulk of the conversions between UTF-8 and UTF-16: what each kind of processor does best.
///
/// A kernel converts well-formed text from its start and may stop anywhere between two code points; it stops before
/// what is ill-formed. It never writes behind what the rest of the source is bound to fill, so a target holds nothing
/// but the result and its terminator afterwards.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "cpu/CpuFeatures.h"
#include "qilsys/TCodeUnit.h"

namespace qilsys::transcode {

struct Progress {
  size_t consumed = 0;
  size_t written = 0;
};

struct Kernel {
  const char* name;
  cpu::CpuFeatures needs;
  /// False if it stops at the first text that is not ASCII.
  bool takesAll;
  Progress (*fromUtf8)(const char* source, size_t length, TCodeUnit* target, size_t room);
  Progress (*fromUtf16)(const TCodeUnit* source, size_t length, char* target, size_t room);
  /// Bytes of a whole text in UTF-8, with 3 for each lone surrogate.
  std::int64_t (*countUtf8)(const TCodeUnit* source, size_t length);
};

/// Those that this very processor can run, each faster than the one before; there is always one.
std::span<const Kernel> Kernels();

inline const Kernel& BestKernel() {
  static const Kernel& s_best = Kernels().back();
  return s_best;
}

}  // namespace qilsys::transcode
