// The heap of the C runtime on Windows. Its sibling is TMemory_linux.cpp.
#include "memory/TMemory_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <malloc.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace quillon::memory {
namespace {

// An aligned block has a word in front of it that holds the address of the heap's own block around it. The runtime's
// aligned functions lay theirs out alike, but not every runtime tells such a block's size.
void* HeapBlockOf(void* aligned) {
  void* block = nullptr;
  std::memcpy(&block, static_cast<char*>(aligned) - sizeof block, sizeof block);
  return block;
}

}  // namespace

// Asked for the size of null, the runtime ends the process.
std::size_t UsableSize(void* block) noexcept { return block == nullptr ? 0 : _msize(block); }

void* AllocateAligned(std::size_t size, std::size_t alignment) noexcept {
  const std::size_t room = sizeof(void*) + alignment - 1;
  if (size > SIZE_MAX - room) return nullptr;
  void* block = std::malloc(size + room);
  if (block == nullptr) return nullptr;
  const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(block);
  char* aligned = static_cast<char*>(block) + (((first + room) & ~(alignment - 1)) - first);
  std::memcpy(aligned - sizeof block, &block, sizeof block);
  return aligned;
}

std::size_t UsableSizeAligned(void* block) noexcept {
  if (block == nullptr) return 0;
  char* heapBlock = static_cast<char*>(HeapBlockOf(block));
  return UsableSize(heapBlock) - static_cast<std::size_t>(static_cast<char*>(block) - heapBlock);
}

void FreeAligned(void* block) noexcept {
  if (block != nullptr) std::free(HeapBlockOf(block));
}

}  // namespace quillon::memory
