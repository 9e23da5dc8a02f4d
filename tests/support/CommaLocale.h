/// A process locale whose decimal point is a comma, while an object of this class lives.
#pragma once

#include <stdlib.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace qilsys::test {

/// Takes such a locale from the machine, or compiles one into a folder of its own. `Active` tells whether there is one.
class CommaLocale {
 public:
  CommaLocale() : m_before(std::setlocale(LC_ALL, nullptr)), m_active(FromMachine() || Compiled()) {}
  ~CommaLocale() {
    std::setlocale(LC_ALL, m_before.c_str());
    if (m_folder.empty()) return;
    unsetenv("LOCPATH");
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  bool Active() const { return m_active; }

 private:
  static constexpr const char* Name = "de_DE.UTF-8";

  static bool Set(const char* name) {
    return std::setlocale(LC_ALL, name) != nullptr && std::localeconv()->decimal_point == std::string(",");
  }
  static bool FromMachine() { return Set(Name) || Set("fr_FR.UTF-8") || Set("ru_RU.UTF-8"); }

  bool Compiled() {
    std::string folder = (std::filesystem::temp_directory_path() / "qilsys_locale_XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) return false;
    m_folder = folder;
    const std::string command = "localedef -i de_DE -f UTF-8 '" + folder + "/" + Name + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) return false;
    setenv("LOCPATH", folder.c_str(), 1);
    return Set(Name);
  }

  std::string m_before;
  std::string m_folder;
  bool m_active;
};

}  // namespace qilsys::test
