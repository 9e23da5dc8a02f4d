#include "support/DebugChannel.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <gtest/gtest.h>

namespace qilsys::test {

DebugChannelCapture::DebugChannelCapture() { testing::internal::CaptureStderr(); }

DebugChannelCapture::~DebugChannelCapture() {
  if (!m_isOver) {
    Take();
  }
}

std::string DebugChannelCapture::Take() {
  m_isOver = true;
  return testing::internal::GetCapturedStderr();
}

}  // namespace qilsys::test
