/// What a logic assertion said, as a value that a test can compare.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "qilsys/LogicException.h"

namespace qilsys::test {

struct CaughtAssertion {
  std::string m_file;
  int m_line = 0;
  std::string m_text;
  unsigned int m_code = 0;
  std::string m_codeName;

  bool operator==(const CaughtAssertion&) const = default;

  friend std::ostream& operator<<(std::ostream& out, const CaughtAssertion& a) {
    return out << a.m_file << ':' << a.m_line << ": " << a.m_text << " (" << std::hex << a.m_code << std::dec << ", "
               << a.m_codeName << ')';
  }
};

/// Sets the assertion hook of the process while it lives.
class ScopedAssertHook {
 public:
  explicit ScopedAssertHook(AssertHooks::LogicAssertHook hook) : m_previous(AssertHooks::GetLogicAssertHook()) {
    AssertHooks::SetLogicAssertHook(hook);
  }
  ScopedAssertHook(const ScopedAssertHook&) = delete;
  ScopedAssertHook& operator=(const ScopedAssertHook&) = delete;
  ~ScopedAssertHook() { AssertHooks::SetLogicAssertHook(m_previous); }

 private:
  const AssertHooks::LogicAssertHook m_previous;
};

/// While it lives, broken conditions are noted and the code after them runs on. One at a time, on one thread.
class RecordedAssertions {
 public:
  RecordedAssertions() : m_hook(&Note) { Noted().clear(); }
  const std::vector<CaughtAssertion>& All() const { return Noted(); }

 private:
  static std::vector<CaughtAssertion>& Noted() {
    static std::vector<CaughtAssertion> s_noted;
    return s_noted;
  }
  static void Note(const char* file, int line, const char* text, const QuillonError& error) {
    Noted().push_back({file, line, text, error.GetCode(), error.GetCodeName().toStdString()});
  }

  const ScopedAssertHook m_hook;
};

/// Runs `action` until its first broken condition and returns that, or a record with code 0 if there was none.
template <class Action>
CaughtAssertion CatchAssertion(Action action) {
  const ScopedAssertHook hook([](const char* file, int line, const char* text, const QuillonError& error) {
    throw CaughtAssertion{file, line, text, error.GetCode(), error.GetCodeName().toStdString()};
  });
  try {
    action();
  } catch (const CaughtAssertion& caught) {
    return caught;
  }
  return {};
}

}  // namespace qilsys::test
