#include "OwnOperators.h"

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>

namespace {

// Not of the C heap: whoever gives a part of it to `free` ends the process.
alignas(64) std::byte g_memory[1 << 16];
std::size_t g_used = 0;
bool g_isServing = false;

void* Allocate(std::size_t size) {
  if (!g_isServing) {
    return std::malloc(size);
  }
  void* const memory = g_memory + g_used;
  g_used += (size + 63) / 64 * 64;
  return memory;
}

void Free(void* memory) {
  if (!qilsys::test::IsOwn(memory)) {
    std::free(memory);
  }
}

}  // namespace

qilsys::test::OwnMemory::OwnMemory() { g_isServing = true; }
qilsys::test::OwnMemory::~OwnMemory() { g_isServing = false; }

bool qilsys::test::IsOwn(const void* memory) {
  const std::less<const void*> isBelow;
  return !isBelow(memory, g_memory) && isBelow(memory, g_memory + sizeof g_memory);
}

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, std::align_val_t) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new(std::size_t size, std::align_val_t, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete(void* memory, std::size_t) noexcept { Free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { Free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { Free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { Free(memory); }
