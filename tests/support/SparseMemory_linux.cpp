// The sibling for Windows is SparseMemory_win.cpp.
#include "support/SparseMemory.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/mman.h>

#include <new>

namespace qilsys::test {

SparseMemory::SparseMemory(std::size_t bytes) : m_bytes(bytes) {
  void* start = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (start == MAP_FAILED) throw std::bad_alloc();
  // Large pages, where there are any, make reading a thousand times fewer page faults.
  madvise(start, bytes, MADV_HUGEPAGE);
  m_data = static_cast<unsigned char*>(start);
}

SparseMemory::~SparseMemory() { munmap(m_data, m_bytes); }

}  // namespace qilsys::test
