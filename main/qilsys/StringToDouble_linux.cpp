// StringToDouble_win.cpp is the sibling of this file.
#include "qilsys/StringToDouble_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <locale.h>
#include <stdlib.h>

namespace qilsys {

double StringToDouble(const char* text, char** end) {
  // Never freed: it lives as long as the process, and for "C" the library hands out an object of its own.
  static const locale_t s_cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text, end, s_cLocale);
}

}  // namespace qilsys
