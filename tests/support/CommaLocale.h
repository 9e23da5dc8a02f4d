/// A process locale whose decimal point is a comma, while an object of this class lives.
#pragma once

#include <string>

namespace qilsys::test {

/// Takes such a locale from the machine, or compiles one where the system can. `Active` tells whether there is one.
class CommaLocale {
 public:
  CommaLocale();
  ~CommaLocale();
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  bool Active() const { return m_active; }

 private:
  bool Compile();

  std::string m_before;
  std::string m_folder;  // Of what was compiled.
  bool m_active;
};

}  // namespace qilsys::test
