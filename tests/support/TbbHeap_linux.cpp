// The heap of oneTBB, as the C library's. Stands in for libtbbmalloc where a sanitizer watches: of that library's own heap
// it sees nothing, and would take a block that one thread gives back and another gets for a race between the two.
#ifndef __linux__
#error "This file is for Linux."
#endif

#include <algorithm>
#include <cstddef>
#include <cstdlib>

// The functions that oneTBB looks for there.
extern "C" {

void* scalable_malloc(std::size_t size) { return std::malloc(size); }

void scalable_free(void* block) { std::free(block); }

void* scalable_aligned_malloc(std::size_t size, std::size_t alignment) {
  void* block = nullptr;
  return posix_memalign(&block, std::max(alignment, sizeof(void*)), size) == 0 ? block : nullptr;
}

void scalable_aligned_free(void* block) { std::free(block); }
}
