/// The locale that a process is in as far as ICU is concerned, which takes it from the environment.
#pragma once

#include <unicode/uloc.h>

#include <string>

namespace qilsys::test {

/// Sets ICU's default locale while it lives.
class DefaultLocale {
 public:
  explicit DefaultLocale(const char* name) : m_kept(uloc_getDefault()) { Set(name); }
  ~DefaultLocale() { Set(m_kept.c_str()); }
  DefaultLocale(const DefaultLocale&) = delete;
  DefaultLocale& operator=(const DefaultLocale&) = delete;

 private:
  static void Set(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    uloc_setDefault(name, &status);
  }
  std::string m_kept;
};

}  // namespace qilsys::test
