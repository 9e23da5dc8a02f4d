// The heap of the C library on Linux. Its sibling is TMemory_win.cpp.
#include "memory/TMemory_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <malloc.h>

#include <algorithm>
#include <cstdlib>

namespace quillon::memory {

std::size_t UsableSize(void* block) noexcept { return malloc_usable_size(block); }

void* AllocateAligned(std::size_t size, std::size_t alignment) noexcept {
  void* block = nullptr;
  return posix_memalign(&block, std::max(alignment, sizeof(void*)), size) == 0 ? block : nullptr;
}

std::size_t UsableSizeAligned(void* block) noexcept { return UsableSize(block); }

void FreeAligned(void* block) noexcept { std::free(block); }

}  // namespace quillon::memory
