#include "demo/ChildProcess.h"

namespace demo {

std::vector<std::string> ChildProcess::Hear() {
  m_unfinished += ReadWhatCame();
  std::vector<std::string> lines;
  for (size_t end = 0; (end = m_unfinished.find('\n')) != std::string::npos;) {
    lines.push_back(m_unfinished.substr(0, end));
    // One of the systems ends a line by two characters.
    if (lines.back().ends_with('\r')) lines.back().pop_back();
    m_unfinished.erase(0, end + 1);
  }
  return lines;
}

}  // namespace demo
