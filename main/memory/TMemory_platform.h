/// What the allocation entry points need of the system's heap beyond the C functions.
#pragma once

#include <cstddef>

namespace quillon::memory {

/// The bytes that a block of the heap can hold, at least those that were asked for. 0 for null.
std::size_t UsableSize(void* block) noexcept;

/// A block at a multiple of `alignment`, a power of two; null where the heap gives none.
void* AllocateAligned(std::size_t size, std::size_t alignment) noexcept;

/// As UsableSize, for a block of AllocateAligned.
std::size_t UsableSizeAligned(void* block) noexcept;

/// Gives a block of AllocateAligned back; null is allowed.
void FreeAligned(void* block) noexcept;

}  // namespace quillon::memory
