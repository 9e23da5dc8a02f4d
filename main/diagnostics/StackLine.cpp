#include "diagnostics/StackLine.h"

#include <algorithm>
#include <iterator>

namespace qilsys::diagnostics {

namespace {

// The entry points of memory have a file for each system, and one for the operators on top of them.
constexpr std::string_view HiddenFiles[] = {
    "stackwalker.cpp",      "symbolengine.cpp", "symbolengine_linux.cpp",
    "symbolengine_win.cpp", "tmemory.cpp",      "tmemory_linux.cpp",
    "tmemory_win.cpp",      "operatornew.cpp",  "memorytrackingcommunication.cpp",
};

constexpr char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EndsFolded(std::string_view text, std::string_view ending) {
  if (text.size() < ending.size()) return false;
  text.remove_prefix(text.size() - ending.size());
  return std::equal(text.begin(), text.end(), ending.begin(), [](char a, char b) { return ToLower(a) == b; });
}

void AppendNumber(std::string& line, std::uint64_t number) {
  line += "0x";
  for (int shift = 60; shift >= 0; shift -= 4) line += "0123456789ABCDEF"[number >> shift & 0xF];
}

// Where the ending of a shared object begins, which a version may follow; the length where there is none.
std::size_t EndingOfSharedObject(std::string_view name) {
  constexpr std::string_view Ending = ".so";
  std::size_t at = name.find(Ending);
  while (at != name.npos && at + Ending.size() < name.size() && name[at + Ending.size()] != '.') {
    at = name.find(Ending, at + 1);
  }
  return std::min(at, name.size());
}

}  // namespace

std::string StackLine(const StackFrameInfo& frame, const LineParts& parts, std::uint64_t threadId) {
  std::string line;
  if (parts.threadInfo) AppendNumber(line, threadId);
  if (frame.m_fileName.empty()) {
    if (parts.addresses) {
      line += ' ';
      AppendNumber(line, frame.m_address);
      line += ' ';
    }
  } else {
    if (parts.fileName) line.append(" ").append(frame.m_fileName);
    if (parts.lineNumber) line.append("(").append(std::to_string(frame.m_lineNumber)).append("): ");
  }
  line += frame.m_moduleName.empty() ? "(module name not available)" : frame.m_moduleName;
  line += '!';
  line += frame.m_symbolName.empty() ? "(symbol not available)" : frame.m_symbolName;
  return line;
}

bool IsHidden(const StackFrameInfo& frame) {
  return std::any_of(std::begin(HiddenFiles), std::end(HiddenFiles),
                     [&](std::string_view file) { return EndsFolded(frame.m_fileName, file); });
}

std::string_view ShortModuleName(std::string_view path) {
  std::string_view name = path.substr(path.find_last_of("/\\") + 1);
  for (const std::string_view ending : {".dll", ".exe"}) {
    if (EndsFolded(name, ending)) return name.substr(0, name.size() - ending.size());
  }
  return name.substr(0, EndingOfSharedObject(name));
}

}  // namespace qilsys::diagnostics
