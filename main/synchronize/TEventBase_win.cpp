// The Linux sibling makes events of a queue of waiting threads.
#include "synchronize/TEventBase_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include "synchronize/NoLimit.h"
#include "synchronize/TWaitable_win.h"

namespace qilsys::synchronize {

// Not checked: a null handle makes every other operation fail.
TPlatformEvent::TPlatformEvent(Kind kind) {
  const BOOL manualReset = kind == Kind::ManualReset;
  m_event.Construct<TWaitable>(CreateEventW(nullptr, manualReset, FALSE, nullptr));
}

TPlatformEvent::~TPlatformEvent() { m_event.Destroy<TWaitable>(); }

bool TPlatformEvent::Set() { return SetEvent(m_event.As<TWaitable>().Get()) != FALSE; }

bool TPlatformEvent::Reset() { return ResetEvent(m_event.As<TWaitable>().Get()) != FALSE; }

bool TPlatformEvent::Wait(std::uint32_t milliseconds) {
  static_assert(NoLimit == INFINITE);
  return m_event.As<TWaitable>().Wait(milliseconds) == WAIT_OBJECT_0;
}

unsigned int TPlatformEvent::WaitersForTest() { return m_event.As<TWaitable>().WaitersForTest(); }

}  // namespace qilsys::synchronize
