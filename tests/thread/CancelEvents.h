/// Events of cancellation in tests, and what is said where there should be one.
#pragma once

#include "qilsys/ReferenceCount.h"
#include "qilsys/TEvent.h"
#include "support/CaughtAssertion.h"

namespace qilsys::test {

using CancelPtr = RefCntPtr<TCancelEvent>;

inline CancelPtr MakeCancel() { return CancelPtr(new TCancelEvent); }

inline const CaughtAssertion NullDereference{"public/qilsys/ReferenceCount", 340, "Null pointer dereferenced",
                                             0x00BF554A, "LogicException_LogicAssert_0x00BF554A"};

}  // namespace qilsys::test
