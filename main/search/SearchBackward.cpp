#include "search/Search.h"

#include <algorithm>

#include "qilsys/CodePoint.h"

namespace qilsys::search {
namespace {

// Steps through the needle as GetNextCodePointPointer does, so a lone surrogate may end it or hide the unit behind it;
// the text moves by what was compared, and never passes the needle's length.
bool matchesAt(const TCodeUnit* text, const TCodeUnit* needle, int needleLen, CaseSensitivity cs) {
  const TCodeUnit* next = needle;
  while (next != nullptr) {
    int units = 0;
    char32_t ours = CodePoint::GetCodePoint(text, &units);
    char32_t theirs = CodePoint::GetCodePoint(next);
    if (ours != theirs && cs != TStringOptions::CaseSensitive) {
      ours = units::foldCodePoint(ours);
      theirs = units::foldCodePoint(theirs);
    }
    if (ours != theirs) return false;
    text += units;
    next = CodePoint::GetNextCodePointPointer(needle, next, needleLen);
  }
  return true;
}

}  // namespace

int findLastStr(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, int from,
                CaseSensitivity cs) {
  if (textLen < 1 || needleLen < 1 || textLen < needleLen) return -1;
  if (from < 0) from = from == -1 ? textLen : from + textLen;
  if (from < 0) return -1;
  int first = std::min(from, textLen - needleLen);
  while (first >= 0 && !CodePoint::IsFirstCodeUnit(text[first])) --first;
  if (first < 0) return -1;
  for (const TCodeUnit* at = text + first; at != nullptr; at = CodePoint::GetPreviousCodePointPointer(text, at)) {
    if (matchesAt(at, needle, needleLen, cs)) return static_cast<int>(at - text);
  }
  return -1;
}

int countStr(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, CaseSensitivity cs) {
  if (needle == nullptr || needleLen < 1 || needleLen > textLen) return 0;
  const int step = std::max(CodePoint::CountCodeUnits(needle), 1);
  int count = 0;
  for (int at = 0; at <= textLen - needleLen; at += step) {
    at = findStrCore(text, textLen, needle, needleLen, at, cs);
    if (at < 0) break;
    ++count;
  }
  return count;
}

}  // namespace qilsys::search
