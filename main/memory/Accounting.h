/// The accounting steps behind the entry points, for blocks of any kind.
#pragma once

#include <cstddef>

namespace quillon::memory {

/// How a kind of block tells its size; asked only where something is counted.
using SizeOfBlock = std::size_t (*)(void* block) noexcept;

/// TTrackMalloc for a block of this kind.
void TrackMalloc(void* block, SizeOfBlock sizeOf);
/// TTrackFree for a block of this kind.
void TrackFree(void* block, SizeOfBlock sizeOf);

}  // namespace quillon::memory
