#include "diagnostics/CollectedLines.h"

#include <algorithm>

#include "cpu/Compiler.h"
#include "qilsys/TStackWalker.h"

namespace qilsys::test {

QILSYS_NOINLINE void Collect(void* argument) {
  TStackWalker walker;
  walker.GenerateCallstack();
  static_cast<Lines*>(argument)->assign(walker.GetCollected().begin(), walker.GetCollected().end());
}

Lines LinesThrough(Chain* chain) {
  Lines lines;
  chain(&Collect, &lines);
  return lines;
}

// A name ends its line, or its parameters follow.
std::string LineOf(const Lines& lines, int link) {
  const std::string name = "Chain" + std::to_string(link);
  const auto found = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
    const std::size_t at = line.rfind(name);
    return at != line.npos && (at + name.size() == line.size() || line[at + name.size()] == '(');
  });
  return found == lines.end() ? "" : *found;
}

}  // namespace qilsys::test
