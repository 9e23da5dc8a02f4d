/// Texts of the library as UTF-8, so that a test states what it wants in plain literals and a failure prints them.
#pragma once

#include <string>
#include <vector>

#include "qilsys/TStringCore.h"

namespace qilsys::test {

inline std::string Utf8(const TStringCore& text) { return text.toStdString(); }

template <class Texts>
std::vector<std::string> Utf8All(const Texts& texts) {
  std::vector<std::string> result;
  for (const TStringCore& text : texts) {
    result.push_back(Utf8(text));
  }
  return result;
}

}  // namespace qilsys::test
