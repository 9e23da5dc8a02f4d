// Fields by number.
#include "qilsys/TStringCore.h"

#include "search/Fields.h"
#include "search/Search.h"
#include "units/TextLength.h"

namespace search = qilsys::search;

namespace {

// Where the fields of two numbers stand; -1 for one that there is not.
struct Section {
  int start = -1;
  int end = -1;
};

// The fields of a text. They are walked over and not kept, so that no list of them needs memory.
struct Fields {
  const TCodeUnit* text;
  int len;
  const TCodeUnit* sep;
  int sepLen;
  bool dropEmpty;
  search::CaseSensitivity cs;
};

template <class Field>
void EachField(const Fields& f, Field field) {
  search::eachField(f.text, f.len, f.sep, f.sepLen, f.dropEmpty, f.cs, field);
}

int CountFields(const Fields& f) {
  const bool isPlain = f.sepLen == 1 && f.cs == TStringOptions::CaseSensitive && !f.dropEmpty;
  if (isPlain) return search::countUnit(f.text, f.len, f.sep[0]) + 1;
  int count = 0;
  EachField(f, [&](int, int) { ++count; });
  return count;
}

// Negative numbers count from the end.
Section FindSection(const Fields& fields, int first, int last) {
  const int count = first < 0 || last < 0 ? CountFields(fields) : 0;
  if (first < 0) first += count;
  if (last < 0) last += count;
  Section section;
  int number = 0;
  EachField(fields, [&](int offset, int length) {
    if (number == first) section.start = offset;
    if (number == last) section.end = offset + length;
    ++number;
  });
  return section;
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
  const int sepLen = qilsys::units::TerminatedLength(sep);
  const Fields fields{text, len, sep, sepLen, (flags & SectionDropEmpty) != 0, cs};
  const auto [begin, end] = FindSection(fields, first, last);
  if (begin < 0 || end < 0) return TStringCore();

  int start = begin;
  if ((flags & SectionWithLeadingSeparator) != 0 && start >= sepLen) start -= sepLen;
  int count = end - start;
  if ((flags & SectionWithTrailingSeparator) != 0 && sepLen <= len - end) count += sepLen;
  // Fields in reverse order: the rest of the text, up to a NUL.
  if (count < 0) count = search::lengthToNul(text + start, len - start);
  return TStringCore(text + start, count);
}
