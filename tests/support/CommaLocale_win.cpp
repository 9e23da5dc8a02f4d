// The sibling for Linux is CommaLocale_linux.cpp.
#include "support/CommaLocale.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <clocale>

namespace qilsys::test {

// Every Windows has it; there is nothing to compile.
CommaLocale::CommaLocale()
    : m_before(std::setlocale(LC_ALL, nullptr)),
      m_active(std::setlocale(LC_ALL, "German_Germany") != nullptr &&
               std::localeconv()->decimal_point == std::string(",")) {}

CommaLocale::~CommaLocale() { std::setlocale(LC_ALL, m_before.c_str()); }

}  // namespace qilsys::test
