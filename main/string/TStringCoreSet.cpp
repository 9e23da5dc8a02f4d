#include "qilsys/TStringCore.h"

#include "search/SetEdit.h"

TStringCore& TStringCore::removeAnyOf(const TCodeUnit* set, int start) { return removeSet(set, length(set), start); }

TStringCore& TStringCore::removeAnyOf(const TStringCore& set, int start) {
  return removeSet(set.constData(), set.length(), start);
}

TStringCore& TStringCore::removeSet(const TCodeUnit* set, int setLen, int start) {
  if (isShared()) {
    start = qilsys::search::findRemovable(constData(), length(), set, setLen, start);
    if (start < 0) return *this;
  }
  if (inSelf(set)) return removeAnyOf(TStringCore(set, setLen), start);
  TCodeUnit* units = data();
  return truncate(qilsys::search::removeSet(units, length(), set, setLen, start));
}

int TStringCore::removeAnyOf(TCodeUnit* text, const TCodeUnit* set, int start) {
  return qilsys::search::removeSet(text, length(text), set, length(set), start);
}

TStringCore& TStringCore::replaceAnyOf(const TCodeUnit* set, TCodeUnit c, int start) {
  return replaceSet(set, length(set), c, start);
}

TStringCore& TStringCore::replaceAnyOf(const TStringCore& set, TCodeUnit c, int start) {
  return replaceSet(set.constData(), set.length(), c, start);
}

TStringCore& TStringCore::replaceSet(const TCodeUnit* set, int setLen, TCodeUnit c, int start) {
  if (inSelf(set)) return replaceAnyOf(TStringCore(set, setLen), c, start);
  TCodeUnit* units = data();
  resizeForWrite(qilsys::search::replaceSet(units, length(), set, setLen, c, start));
  return *this;
}

int TStringCore::replaceAnyOf(TCodeUnit* text, const TCodeUnit* set, TCodeUnit c, int start) {
  return qilsys::search::replaceSet(text, length(text), set, length(set), c, start);
}
