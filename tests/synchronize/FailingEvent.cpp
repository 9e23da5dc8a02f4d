// In place of the platform's event: one that could not be created. Nothing can be done with it.
#include "support/SystemError.h"
#include "synchronize/TEventBase_platform.h"

namespace qilsys::synchronize {
namespace {

bool Fail() {
  test::SetLastErrorNumber(test::NumberOf(test::SystemError::InvalidHandle));
  return false;
}

}  // namespace

TPlatformEvent::TPlatformEvent(Kind) {}

TPlatformEvent::~TPlatformEvent() = default;

bool TPlatformEvent::Set() { return Fail(); }

bool TPlatformEvent::Reset() { return Fail(); }

bool TPlatformEvent::Wait(std::uint32_t) { return Fail(); }

}  // namespace qilsys::synchronize
