// The sibling for Windows is CommaLocale_win.cpp.
#include "support/CommaLocale.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <stdlib.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace qilsys::test {
namespace {

constexpr const char* Name = "de_DE.UTF-8";

bool Set(const char* name) {
  return std::setlocale(LC_ALL, name) != nullptr && std::localeconv()->decimal_point == std::string(",");
}

}  // namespace

CommaLocale::CommaLocale()
    : m_before(std::setlocale(LC_ALL, nullptr)),
      m_active(Set(Name) || Set("fr_FR.UTF-8") || Set("ru_RU.UTF-8") || Compile()) {}

CommaLocale::~CommaLocale() {
  std::setlocale(LC_ALL, m_before.c_str());
  if (m_folder.empty()) return;
  unsetenv("LOCPATH");
  std::error_code ignored;
  std::filesystem::remove_all(m_folder, ignored);
}

bool CommaLocale::Compile() {
  std::string folder = (std::filesystem::temp_directory_path() / "qilsys_locale_XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) return false;
  m_folder = folder;
  const std::string command = "localedef -i de_DE -f UTF-8 '" + folder + "/" + Name + "' >/dev/null 2>&1";
  if (std::system(command.c_str()) != 0) return false;
  setenv("LOCPATH", folder.c_str(), 1);
  return Set(Name);
}

}  // namespace qilsys::test
