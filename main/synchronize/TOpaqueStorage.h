/// Room for an object of the system whose type only a platform file knows.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace qilsys::synchronize {

template <std::size_t Size>
class TOpaqueStorage {
 public:
  TOpaqueStorage() = default;
  TOpaqueStorage(const TOpaqueStorage&) = delete;
  TOpaqueStorage& operator=(const TOpaqueStorage&) = delete;

  template <class T, class... Args>
  T& Construct(Args&&... args) {
    static_assert(sizeof(T) <= Size && alignof(T) <= alignof(std::max_align_t));
    return *::new (static_cast<void*>(m_bytes)) T(std::forward<Args>(args)...);
  }
  template <class T>
  T& As() {
    return *std::launder(reinterpret_cast<T*>(m_bytes));
  }
  template <class T>
  const T& As() const {
    return *std::launder(reinterpret_cast<const T*>(m_bytes));
  }
  template <class T>
  void Destroy() {
    std::destroy_at(&As<T>());
  }

 private:
  alignas(std::max_align_t) std::byte m_bytes[Size];
};

}  // namespace qilsys::synchronize
