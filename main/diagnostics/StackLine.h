/// What is known of a frame of the stack, and the line of text made of it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// What one frame resolves to. A text is empty where it is not known.
struct StackFrameInfo {
  std::uint64_t m_address = 0;
  std::string m_symbolName;
  std::string m_fileName;
  std::string m_moduleName;
  std::uint32_t m_lineNumber = 0;
};

namespace qilsys::diagnostics {

/// What a line shows beside module and symbol.
struct LineParts {
  bool threadInfo;
  bool addresses;
  bool fileName;
  bool lineNumber;
};

std::string StackLine(const StackFrameInfo& frame, const LineParts& parts, std::uint64_t threadId);

/// Whether the frame's file is one that the walker, or the library's way to memory, is made of: neither leaves a trace in
/// its own reports. False without a file name.
bool IsHidden(const StackFrameInfo& frame);

/// A module's file name without its directory and without ".dll", ".exe" or ".so" and what follows that.
std::string_view ShortModuleName(std::string_view path);

}  // namespace qilsys::diagnostics
