#include "diagnostics/MappedMemory_linux.h"

namespace qilsys::diagnostics {

void* MappedMemory::do_allocate(std::size_t bytes, std::size_t) {
  // Begins at a page, which suits every alignment that is asked for here.
  void* const block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (block == MAP_FAILED) m_giveUp();
  return block;
}

void MappedMemory::do_deallocate(void* block, std::size_t bytes, std::size_t) { munmap(block, bytes); }

}  // namespace qilsys::diagnostics
