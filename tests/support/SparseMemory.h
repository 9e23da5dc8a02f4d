/// Memory of any size that is all zeros and takes hardly any room. Its first and its last bytes can be written.
#pragma once

#include <cstddef>

namespace qilsys::test {

class SparseMemory {
 public:
  /// So many at the start, and as many at the end.
  static constexpr std::size_t WritableBytes = 64 * 1024;

  /// Throws std::bad_alloc where the address space is too small.
  explicit SparseMemory(std::size_t bytes);
  SparseMemory(const SparseMemory&) = delete;
  SparseMemory& operator=(const SparseMemory&) = delete;
  ~SparseMemory();

  unsigned char* Data() { return m_data; }

 private:
  unsigned char* m_data;
  std::size_t m_bytes;
};

}  // namespace qilsys::test
