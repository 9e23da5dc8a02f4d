#include "qilsys/ReferenceCount.h"

#include "qilsys/LogicException.h"

template class QILSYS_API_DEFINED RefCntObjectNonVirtualBase<RefCntObject>;

RefCntObject::~RefCntObject() = default;

void qilsys::RaiseNullDereference() {
  ThrowLogicException("public/qilsys/ReferenceCount", 340, "Null pointer dereferenced",
                      QuillonError::MakeError(0x00BF554A, "LogicException_LogicAssert_0x00BF554A"));
  std::abort();
}
