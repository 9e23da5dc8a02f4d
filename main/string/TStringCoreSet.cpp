// Remove and replace the members of a set.
#include "qilsys/TStringCore.h"

#include "search/SetEdit.h"
#include "string/OwnText.h"

namespace search = qilsys::search;
using qilsys::string::InSelf;

namespace {

TStringCore& RemoveSet(TStringCore& text, const TCodeUnit* set, int setLen, int start) {
  if (text.isShared()) {
    start = search::findRemovable(text.constData(), text.length(), set, setLen, start);
    if (start < 0) return text;
  }
  if (InSelf(text, set)) return text.removeAnyOf(TStringCore(set, setLen), start);
  TCodeUnit* units = text.data();
  return text.truncate(search::removeSet(units, text.length(), set, setLen, start));
}

TStringCore& ReplaceSet(TStringCore& text, const TCodeUnit* set, int setLen, TCodeUnit c, int start) {
  if (InSelf(text, set)) return text.replaceAnyOf(TStringCore(set, setLen), c, start);
  TCodeUnit* units = text.data();
  text.resize(search::replaceSet(units, text.length(), set, setLen, c, start));
  return text;
}

}  // namespace

TStringCore& TStringCore::removeAnyOf(const TCodeUnit* set, int start) {
  return RemoveSet(*this, set, length(set), start);
}

TStringCore& TStringCore::removeAnyOf(const TStringCore& set, int start) {
  return RemoveSet(*this, set.constData(), set.length(), start);
}

int TStringCore::removeAnyOf(TCodeUnit* text, const TCodeUnit* set, int start) {
  return search::removeSet(text, length(text), set, length(set), start);
}

TStringCore& TStringCore::replaceAnyOf(const TCodeUnit* set, TCodeUnit c, int start) {
  return ReplaceSet(*this, set, length(set), c, start);
}

TStringCore& TStringCore::replaceAnyOf(const TStringCore& set, TCodeUnit c, int start) {
  return ReplaceSet(*this, set.constData(), set.length(), c, start);
}

int TStringCore::replaceAnyOf(TCodeUnit* text, const TCodeUnit* set, TCodeUnit c, int start) {
  return search::replaceSet(text, length(text), set, length(set), c, start);
}
