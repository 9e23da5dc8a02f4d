/// Intrusive reference counts: objects that carry their own count of owners, and the pointer that keeps it.
#pragma once

#include <atomic>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <new>
#include <utility>

#include "qilsys/Export.h"
#include "qilsys/ThreadSanitizer.h"

/// The count itself, without virtual operations. `T` is the most derived counting class; its destructor frees the
/// object. A new object has count 0: it is owned by nobody until the first RefCntPtr is made from it. Any thread may
/// add and remove references at any time.
template <class T>
class RefCntObjectNonVirtualBase {
 public:
  RefCntObjectNonVirtualBase() noexcept = default;
  /// A copy is a new object without owners.
  RefCntObjectNonVirtualBase(const RefCntObjectNonVirtualBase&) noexcept {}
  /// Owners are not part of the value: nothing changes.
  RefCntObjectNonVirtualBase& operator=(const RefCntObjectNonVirtualBase&) noexcept { return *this; }

  /// Adds an owner and returns the new count. Ends the process at 0x7FFFFFFF, since ownership is lost by then.
  int AddReference() const noexcept {
    const int count = m_refCount.fetch_add(1) + 1;
    if (count == CountLimit) [[unlikely]] {
      std::abort();
    }
    return count;
  }

  /// Drops an owner and returns the new count; dropping the last one destroys the object. A surplus call takes the
  /// count below zero and destroys nothing.
  int RemoveReference() const noexcept {
    const int count = RemoveReferenceInternal();
    if (count == 0) {
      delete static_cast<const T*>(this);
    }
    return count;
  }

  /// A snapshot; no decision about ownership may rest on it.
  int UseCount() const noexcept { return m_refCount.load(std::memory_order_relaxed); }

 protected:
  ~RefCntObjectNonVirtualBase() = default;

  /// Drops an owner and never destroys.
  int RemoveReferenceInternal() const noexcept {
    qilsys::base::AnnounceRelease(&m_refCount);
    const int count = m_refCount.fetch_sub(1) - 1;
    qilsys::base::AnnounceAcquire(&m_refCount);
    return count;
  }

 private:
  friend T;

  static constexpr int CountLimit = 0x7FFFFFFF;

  void SetRefCountToOne() const noexcept { m_refCount.store(1, std::memory_order_relaxed); }

  mutable std::atomic<std::int32_t> m_refCount{0};
  // Nobody reads this: it makes a counted object easy to find in a picture of memory.
  [[maybe_unused]] std::uint32_t m_magic = 0xC466E877;
};

class RefCntObject;

// Here, since a class can't be marked any more once it is a base.
extern template class QILSYS_API_DECLARED RefCntObjectNonVirtualBase<RefCntObject>;

/// The base of objects that live by count. Only dropping the last reference destroys one: code outside the class
/// hierarchy cannot.
class QILSYS_API RefCntObject : public RefCntObjectNonVirtualBase<RefCntObject> {
 public:
  RefCntObject() noexcept = default;
  RefCntObject(const RefCntObject& other) noexcept : RefCntObjectNonVirtualBase(other) {}
  RefCntObject& operator=(const RefCntObject&) noexcept { return *this; }

  /// As in the base.
  int RemoveReference() const noexcept {
    const int count = RemoveReferenceInternal();
    if (count == 0) {
      delete this;
    }
    return count;
  }

  /// The library's own memory, wherever an object is made or destroyed: a program may have other operators, which would
  /// give what the library's then free.
  static void* operator new(std::size_t size);
  static void* operator new(std::size_t size, std::align_val_t alignment);
  static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;
  static void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* memory) noexcept;
  static void operator delete(void* memory, std::align_val_t alignment) noexcept;
  static void operator delete(void* memory, const std::nothrow_t&) noexcept { operator delete(memory); }
  static void operator delete(void* memory, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    operator delete(memory, alignment);
  }
  static void operator delete(void*, void*) noexcept {}

 protected:
  virtual ~RefCntObject();

 private:
  friend class RefCntObjectNonVirtualBase<RefCntObject>;
};

namespace qilsys {

/// True where a pointer to U may stand for a pointer to T.
template <class U, class T>
concept PointsAs = std::convertible_to<U*, T*>;

/// Raises the assertion "Null pointer dereferenced"; ends the process if its hook returns.
[[noreturn]] QILSYS_API void RaiseNullDereference();

}  // namespace qilsys

/// An owner of a counted object: the size of a raw pointer, and one atomic step for each copy. Its plain operations
/// are named as those of the standard smart pointers, so that generic code takes it. Any raw pointer to a counted
/// object may be turned into an owner at any time. One instance is not for concurrent use; give each thread its own.
template <class T, class Base = RefCntObject>
class RefCntPtr {
 public:
  using element_type = T;

  constexpr RefCntPtr() noexcept = default;
  constexpr RefCntPtr(std::nullptr_t) noexcept {}
  RefCntPtr(T* object) noexcept : m_object(object) { Add(); }
  RefCntPtr(const RefCntPtr& other) noexcept : m_object(other.m_object) { Add(); }
  /// Leaves `other` null and the count as it is.
  RefCntPtr(RefCntPtr&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
  template <qilsys::PointsAs<T> U>
  RefCntPtr(const RefCntPtr<U, Base>& other) noexcept : RefCntPtr(other.get()) {}
  template <qilsys::PointsAs<T> U>
  RefCntPtr(RefCntPtr<U, Base>&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
  ~RefCntPtr() { reset(); }

  /// The new object gains its owner before the old one loses it, so the two may depend on each other.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a copy is made first, then swapped.
  RefCntPtr& operator=(const RefCntPtr& other) noexcept {
    RefCntPtr(other).swap(*this);
    return *this;
  }
  RefCntPtr& operator=(RefCntPtr&& other) noexcept {
    RefCntPtr(std::move(other)).swap(*this);
    return *this;
  }

  /// Empties this pointer first and drops the reference then: a destructor that runs finds it empty.
  void reset() noexcept {
    if (T* const object = std::exchange(m_object, nullptr)) {
      static_cast<const Base*>(object)->RemoveReference();
    }
  }
  void reset(T* object) noexcept { RefCntPtr(object).swap(*this); }
  void swap(RefCntPtr& other) noexcept { std::swap(m_object, other.m_object); }
  friend void swap(RefCntPtr& a, RefCntPtr& b) noexcept { a.swap(b); }

  T* get() const noexcept { return m_object; }
  explicit operator bool() const noexcept { return m_object != nullptr; }
  /// Dereferencing null raises a logic assertion and never yields a null reference.
  T& operator*() const { return *NotNull(); }
  T* operator->() const { return NotNull(); }

  friend bool operator==(const RefCntPtr& a, const RefCntPtr& b) noexcept { return a.m_object == b.m_object; }
  friend bool operator==(const RefCntPtr& a, const T* b) noexcept { return a.m_object == b; }
  friend bool operator==(const RefCntPtr& a, std::nullptr_t) noexcept { return a.m_object == nullptr; }
  /// Orders by address.
  friend std::strong_ordering operator<=>(const RefCntPtr& a, const RefCntPtr& b) noexcept {
    return std::compare_three_way{}(a.m_object, b.m_object);
  }

 private:
  template <class U, class OtherBase>
  friend class RefCntPtr;

  void Add() const noexcept {
    if (m_object) {
      static_cast<const Base*>(m_object)->AddReference();
    }
  }

  T* NotNull() const {
    if (!m_object) [[unlikely]] {
      qilsys::RaiseNullDereference();
    }
    return m_object;
  }

  T* m_object = nullptr;
};

/// Hashes a RefCntPtr by the address that it holds.
struct RefCntPtrHash {
  template <class T, class Base>
  std::size_t operator()(const RefCntPtr<T, Base>& pointer) const noexcept {
    return std::hash<const T*>{}(pointer.get());
  }
};
