#include "qilsys/ReferenceCount.h"

#include "qilsys/LogicException.h"

template class QILSYS_API_DEFINED RefCntObjectNonVirtualBase<RefCntObject>;

RefCntObject::~RefCntObject() = default;

void* RefCntObject::operator new(std::size_t size) { return ::operator new(size); }

void* RefCntObject::operator new(std::size_t size, std::align_val_t alignment) {
  return ::operator new(size, alignment);
}

void* RefCntObject::operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return ::operator new(size, std::nothrow);
}

void* RefCntObject::operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return ::operator new(size, alignment, std::nothrow);
}

void RefCntObject::operator delete(void* memory) noexcept { ::operator delete(memory); }

void RefCntObject::operator delete(void* memory, std::align_val_t alignment) noexcept {
  ::operator delete(memory, alignment);
}

void qilsys::RaiseNullDereference() {
  ThrowLogicException("public/qilsys/ReferenceCount", 340, "Null pointer dereferenced",
                      QuillonError::MakeError(0x00BF554A, "LogicException_LogicAssert_0x00BF554A"));
  std::abort();
}
