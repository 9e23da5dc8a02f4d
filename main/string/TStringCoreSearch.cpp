// Search for text and for units, by index.
#include "qilsys/TStringCore.h"

#include "search/Search.h"
#include "units/TextLength.h"

namespace search = qilsys::search;

int TStringCore::findStr(const TCodeUnit* hay, int hayLen, const TCodeUnit* needle, int needleLen, int start,
                         CaseSensitivity cs) {
  return search::findStrCore(hay, hayLen, needle, needleLen, start, cs);
}

int TStringCore::findStr(const TCodeUnit* hay, int hayLen, const TCodeUnit* needle, int start, CaseSensitivity cs) {
  return search::findStrCore(hay, hayLen, needle, qilsys::units::TerminatedLength(needle), start, cs);
}

int TStringCore::findStr(const TCodeUnit* hay, const TCodeUnit* needle, int start, CaseSensitivity cs) {
  return findStr(hay, qilsys::units::TerminatedLength(hay), needle, start, cs);
}

int TStringCore::indexOf(const TStringCore& needle, int start, CaseSensitivity cs) const {
  const int needleLen = search::lengthToNul(needle.data(), needle.length());
  return search::findStrCore(data(), length(), needle.data(), needleLen, start, cs);
}

int TStringCore::indexOf(const TCodeUnit* needle, int start, CaseSensitivity cs) const {
  return findStr(data(), length(), needle, start, cs);
}

int TStringCore::indexOf(TCodeUnit c, int start) const { return search::findUnit(data(), length(), c, start); }

int TStringCore::indexOf(const TCodeUnit* s, int len, TCodeUnit c, int start) {
  return search::findUnit(s, len, c, start);
}

bool TStringCore::contains(const TStringCore& needle, CaseSensitivity cs) const {
  return search::findStrCore(data(), length(), needle.data(), needle.length(), 0, cs) >= 0;
}

bool TStringCore::containsInTerminated(const TCodeUnit* needle, CaseSensitivity cs) const {
  return findStr(data(), search::lengthToNul(data(), length()), needle, 0, cs) >= 0;
}

bool TStringCore::contains(TCodeUnit c) const { return indexOf(c) >= 0; }

int TStringCore::count(TCodeUnit c) const { return search::countUnit(data(), length(), c); }

int TStringCore::count(const TCodeUnit* needle, CaseSensitivity cs) const {
  return search::countStr(data(), search::lengthToNul(data(), length()), needle,
                          qilsys::units::TerminatedLength(needle), cs);
}

int TStringCore::count(const TStringCore& needle, CaseSensitivity cs) const {
  return search::countStr(data(), search::lengthToNul(data(), length()), needle.data(), needle.length(), cs);
}

bool TStringCore::startsWith(const TStringCore& needle, CaseSensitivity cs) const {
  const int n = needle.length();
  return n > 0 && n <= length() && search::equalUpToNul(data(), needle.data(), n, cs);
}

bool TStringCore::startsWith(const TCodeUnit* needle, CaseSensitivity cs) const {
  const int n = qilsys::units::TerminatedLength(needle);
  return n > 0 && n <= length() && search::equalUpToNul(data(), needle, n, cs);
}

bool TStringCore::startsWith(TCodeUnit c) const { return !empty() && *data() == c; }

bool TStringCore::endsWith(const TStringCore& needle, CaseSensitivity cs) const {
  const int n = needle.length();
  return n > 0 && n <= length() && search::equalUpToNul(end() - n, needle.data(), n, cs);
}

bool TStringCore::endsWith(const TCodeUnit* needle, CaseSensitivity cs) const {
  const int n = qilsys::units::TerminatedLength(needle);
  return n > 0 && n <= length() && search::equalUpToNul(end() - n, needle, n, cs);
}

bool TStringCore::endsWith(TCodeUnit c) const { return !empty() && back() == c; }

int TStringCore::lastIndexOf(const TStringCore& needle, int from, CaseSensitivity cs) const {
  const int needleLen = search::lengthToNul(needle.data(), needle.length());
  return search::findLastStr(data(), length(), needle.data(), needleLen, from, cs);
}

int TStringCore::lastIndexOf(const TCodeUnit* needle, int from, CaseSensitivity cs) const {
  return search::findLastStr(data(), length(), needle, qilsys::units::TerminatedLength(needle), from, cs);
}

int TStringCore::lastIndexOf(TCodeUnit c, int from) const { return search::findLastUnit(data(), length(), c, from); }
