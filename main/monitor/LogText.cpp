#include "monitor/LogText.h"

#include <sstream>

TStringCore qilsys::monitor::BytesText(unsigned long long bytes) {
  std::ostringstream stream;
  // Over the classic locale, so that the host's own has no say; the locale owns the facet.
  stream.imbue(std::locale(std::locale::classic(), new CommaNumPunct));
  stream << bytes << " bytes";
  return TStringCore::fromStdString(stream.str());
}
