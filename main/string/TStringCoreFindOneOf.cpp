// Search for the members of a set.
#include "qilsys/TStringCore.h"

#include "search/Search.h"
#include "units/TextLength.h"
#include "units/UnitScan.h"

namespace search = qilsys::search;

namespace {

// The length of the run of `c` from `start` on, as the index behind it.
int endOfRun(const TCodeUnit* text, int len, TCodeUnit c, int start) {
  const int at = qilsys::units::scanForward(
      start, len, qilsys::units::IsNot(qilsys::units::IsUnit<qilsys::units::UnitLanes>(text, c)));
  return at < 0 ? len : at;
}

}  // namespace

TStringCore::CodePointIterator TStringCore::findOneOf(const TStringCore& set, CodePointIterator from) const {
  return createFromIndex(findOneOf(set, from.codeUnitIndex));
}

TStringCore::CodePointIterator TStringCore::findOneOf(const TCodeUnit* set, CodePointIterator from) const {
  return createFromIndex(findOneOf(set, from.codeUnitIndex));
}

int TStringCore::findOneOf(const TStringCore& set, int start) const {
  return search::findAnyOfCore(data(), length(), set.data(), set.length(), start);
}

int TStringCore::findOneOf(const TCodeUnit* set, int start) const {
  return search::findAnyOfCore(data(), length(), set, qilsys::units::TerminatedLength(set), start);
}

int TStringCore::findOneOf(const TCodeUnit* text, const TCodeUnit* set, int start) {
  return search::findAnyOfCore(text, qilsys::units::TerminatedLength(text), set, qilsys::units::TerminatedLength(set),
                               start);
}

int TStringCore::findChar(const TCodeUnit* text, TCodeUnit c, int start) {
  const TCodeUnit set[] = {c, 0};
  return findOneOf(text, set, start);
}

int TStringCore::findOneNotOf(const TStringCore& set, int start) const {
  return search::findNotOfCore(data(), length(), set.data(), set.length(), start);
}

int TStringCore::findOneNotOf(const TCodeUnit* set, int start) const {
  return search::findNotOfCore(data(), length(), set, qilsys::units::TerminatedLength(set), start);
}

int TStringCore::findOneNotOf(TCodeUnit c, int start) const {
  if (start < 0 || start >= length()) return -1;
  const int at = endOfRun(data(), length(), c, start);
  return at < length() ? at : -1;
}

int TStringCore::findOneNotOf(const TCodeUnit* text, const TCodeUnit* set, int start) {
  const int len = qilsys::units::TerminatedLength(text);
  if (start < 0 || start >= len) return -1;
  const int setLen = qilsys::units::TerminatedLength(set);
  // One ASCII unit is skipped up to the terminator; any other set that covers the text gives -1.
  if (setLen == 1 && set[0] < 0x80) return endOfRun(text, len, set[0], start);
  return search::findNotOfCore(text, len, set, setLen, start);
}

int TStringCore::findOneNotOf(const TCodeUnit* text, TCodeUnit c) {
  const int len = qilsys::units::TerminatedLength(text);
  if (c == 0) return len > 0 ? 0 : -1;
  return endOfRun(text, len, c, 0);
}
