/// How the log lines write numbers of bytes.
#pragma once

#include <locale>
#include <string>

#include "qilsys/TStringCore.h"

/// Groups digits by three, with commas between them.
class CommaNumPunct : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

namespace qilsys::monitor {

/// "1,234,567 bytes". All other numbers of the log lines are plain decimal.
TStringCore BytesText(unsigned long long bytes);

}  // namespace qilsys::monitor
