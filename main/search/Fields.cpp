#include "search/Fields.h"

#include "units/TextLength.h"

namespace qilsys::search {

std::vector<FieldSpan> findSpans(const TCodeUnit* text, int len, const TCodeUnit* sep, bool dropEmpty,
                                 CaseSensitivity cs) {
  std::vector<FieldSpan> spans;
  const int sepLen = units::TerminatedLength(sep);
  if (text == nullptr || sepLen == 0) return spans;
  eachField(text, len, sep, sepLen, cs, [&](int offset, int length) {
    if (length != 0 || !dropEmpty) spans.push_back({offset, length});
  });
  return spans;
}

}  // namespace qilsys::search
