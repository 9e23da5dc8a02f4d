// The global operators, in all their forms, on the accounted heap.
//
// Where a library's symbols take the place of the program's own, as on Linux, they are exported, so that a program that
// links the library is accounted for as a whole. On Windows each module keeps the operators that it was linked with:
// these are the library's own, and those of a program that links its objects. Either way an object may be freed in
// another module than it was made in, as all blocks are plain blocks of the one C heap.
#include <cstddef>
#include <new>

#include "memory/Accounting.h"
#include "memory/TMemory_platform.h"
#include "qilsys/TMemory.h"

namespace {

using namespace quillon::memory;

void* NewOrNull(std::size_t size) noexcept { return TMalloc(size); }

void* NewOrNull(std::size_t size, std::align_val_t alignment) noexcept {
  void* block = AllocateAligned(size, static_cast<std::size_t>(alignment));
  if (!g_redirected) TrackMalloc(block, UsableSizeAligned);
  return block;
}

template <class... Alignment>
void* NewOrThrow(std::size_t size, Alignment... alignment) {
  if (void* block = NewOrNull(size, alignment...)) return block;
  throw std::bad_alloc();
}

void DeleteAligned(void* block) noexcept {
  if (!g_redirected) TrackFree(block, UsableSizeAligned);
  FreeAligned(block);
}

}  // namespace

void* operator new(std::size_t size) { return NewOrThrow(size); }
void* operator new[](std::size_t size) { return NewOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return NewOrNull(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return NewOrNull(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return NewOrThrow(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return NewOrThrow(size, alignment); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return NewOrNull(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return NewOrNull(size, alignment);
}

void operator delete(void* block) noexcept { TFree(block); }
void operator delete[](void* block) noexcept { TFree(block); }
void operator delete(void* block, std::size_t) noexcept { TFree(block); }
void operator delete[](void* block, std::size_t) noexcept { TFree(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { TFree(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { TFree(block); }
void operator delete(void* block, std::align_val_t) noexcept { DeleteAligned(block); }
void operator delete[](void* block, std::align_val_t) noexcept { DeleteAligned(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { DeleteAligned(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { DeleteAligned(block); }
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept { DeleteAligned(block); }
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept { DeleteAligned(block); }
