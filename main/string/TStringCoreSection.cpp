// Fields by number.
#include "qilsys/TStringCore.h"

#include <algorithm>

#include "search/Fields.h"
#include "search/Search.h"
#include "units/TextLength.h"

namespace search = qilsys::search;

namespace {

using Spans = std::vector<search::FieldSpan>;

// Resolves a field number, where a negative one counts from the end; -1 when there is no such field.
int fieldIndex(int number, const Spans& fields) {
  const int count = static_cast<int>(fields.size());
  if (number < 0) number += count;
  return number < count ? std::max(number, -1) : -1;
}

}  // namespace

TStringCore TStringCore::section(const TCodeUnit* sep, int first, int last, SectionFlags flags) const {
  return section(data(), length(), sep, first, last, flags);
}

TStringCore TStringCore::section(TCodeUnit sep, int first, int last, SectionFlags flags) const {
  const TCodeUnit text[] = {sep, 0};
  return section(text, first, last, flags);
}

TStringCore TStringCore::section(const TCodeUnit* text, int len, const TCodeUnit* sep, int first, int last,
                                 SectionFlags flags) {
  if (text == nullptr || len == 0 || *text == 0 || sep == nullptr || *sep == 0) return TStringCore();
  if (len < 0) len = qilsys::units::TerminatedLength(text);
  const CaseSensitivity cs = (flags & SectionFoldSeparator) != 0 ? CaseInsensitive : CaseSensitive;
  const Spans fields = search::findSpans(text, len, sep, (flags & SectionDropEmpty) != 0, cs);
  first = fieldIndex(first, fields);
  last = fieldIndex(last, fields);
  if (first < 0 || last < 0) return TStringCore();

  const int sepLen = qilsys::units::TerminatedLength(sep);
  const search::FieldSpan& lastField = fields[static_cast<std::size_t>(last)];
  const int end = lastField.offset + lastField.length;
  int start = fields[static_cast<std::size_t>(first)].offset;
  if ((flags & SectionWithLeadingSeparator) != 0 && start >= sepLen) start -= sepLen;
  int count = end - start;
  if ((flags & SectionWithTrailingSeparator) != 0 && sepLen <= len - end) count += sepLen;
  // Fields in reverse order: the rest of the text, up to a NUL.
  if (count < 0) count = search::lengthToNul(text + start, len - start);
  return TStringCore(text + start, count);
}
