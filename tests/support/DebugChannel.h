/// What the library writes to the debug channel of its process.
#pragma once

#include <string>

namespace qilsys::test {

/// Keeps what is written while it lives. One at a time.
class DebugChannelCapture {
 public:
  DebugChannelCapture();
  DebugChannelCapture(const DebugChannelCapture&) = delete;
  DebugChannelCapture& operator=(const DebugChannelCapture&) = delete;
  ~DebugChannelCapture();

  /// Ends the capture and returns what was written, a line each. Called once at most.
  std::string Take();

 private:
  bool m_isOver = false;
};

}  // namespace qilsys::test
