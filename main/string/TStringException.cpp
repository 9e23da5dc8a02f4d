#include "qilsys/TStringException.h"

#include "units/TextLimits.h"

TStringCore::Exception::~Exception() = default;
TStringCore::Exception* TStringCore::Exception::Clone() const { return new Exception(*this); }
void TStringCore::Exception::Throw() const { throw Exception(*this); }

TStringCore::CapacityException::CapacityException() : Exception(u"String capacity overflow.") {}
TStringCore::CapacityException::~CapacityException() = default;
TStringCore::Exception* TStringCore::CapacityException::Clone() const { return new CapacityException(*this); }
void TStringCore::CapacityException::Throw() const { throw CapacityException(*this); }

TStringCore::OutOfMemoryException::OutOfMemoryException() : Exception(u"Out of memory") {}
TStringCore::OutOfMemoryException::~OutOfMemoryException() = default;
TStringCore::Exception* TStringCore::OutOfMemoryException::Clone() const { return new OutOfMemoryException(*this); }
void TStringCore::OutOfMemoryException::Throw() const { throw OutOfMemoryException(*this); }

namespace qilsys::units {

static_assert(LengthLimit == TStringCore::MaxStringCapacity);

void ThrowCapacity() { throw TStringCore::CapacityException(); }
void ThrowOutOfMemory() { throw TStringCore::OutOfMemoryException(); }
void ThrowTextFailure(const char* text) { throw TStringCore::Exception(TStringCore::fromUtf8(text)); }

}  // namespace qilsys::units
