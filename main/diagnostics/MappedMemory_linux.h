/// Memory straight from the kernel, for what runs where the C heap may be locked for ever.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/mman.h>

#include <cstddef>
#include <memory_resource>
#include <new>
#include <type_traits>

namespace qilsys::diagnostics {

/// Takes each block as a mapping of its own, so it is to be asked for large ones.
class MappedMemory : public std::pmr::memory_resource {
 public:
  /// Where there is no more memory, `giveUp` is called, which must not return: an exception takes room on the C heap.
  explicit MappedMemory(void (*giveUp)()) : m_giveUp(giveUp) {}

 private:
  void* do_allocate(std::size_t bytes, std::size_t alignment) override;
  void do_deallocate(void* block, std::size_t bytes, std::size_t alignment) override;
  bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override { return this == &other; }

  void (*m_giveUp)();
};

/// One object in memory of its own, which may be too large for the stack of a signal handler.
template <class T>
class MappedObject {
 public:
  MappedObject() : m_object(mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    if (IsThere()) new (m_object) T();
  }
  ~MappedObject() {
    static_assert(std::is_trivially_destructible_v<T>);
    if (IsThere()) munmap(m_object, sizeof(T));
  }
  MappedObject(const MappedObject&) = delete;
  MappedObject& operator=(const MappedObject&) = delete;

  bool IsThere() const { return m_object != MAP_FAILED; }
  T& operator*() const { return *static_cast<T*>(m_object); }

 private:
  void* m_object;
};

}  // namespace qilsys::diagnostics
