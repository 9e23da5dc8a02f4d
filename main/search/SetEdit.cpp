#include "search/SetEdit.h"

#include <algorithm>
#include <vector>

#include "qilsys/CodePoint.h"
#include "search/Search.h"

namespace qilsys::search {
namespace {

bool IsSurrogate(TCodeUnit unit) { return (unit & 0xF800) == 0xD800; }

bool IsAscii(TCodeUnit unit) { return unit < 0x80; }

std::vector<char32_t> Decode(const TCodeUnit* from, const TCodeUnit* end) {
  std::vector<char32_t> codePoints;
  for (int units = 0; from < end; from += units) codePoints.push_back(CodePoint::GetCodePoint(from, &units));
  return codePoints;
}

class CodePoints {
 public:
  CodePoints(const TCodeUnit* from, const TCodeUnit* end) : m_members(Decode(from, end)) {}
  bool Holds(char32_t c) const { return std::find(m_members.begin(), m_members.end(), c) != m_members.end(); }

 private:
  std::vector<char32_t> m_members;
};

class AsciiUnits {
 public:
  AsciiUnits(const TCodeUnit* set, int n) {
    for (int i = 0; i < n; ++i) m_holds[set[i]] = true;
  }
  bool operator()(TCodeUnit c) const { return IsAscii(c) && m_holds[c]; }

 private:
  bool m_holds[128] = {};
};

class AnyUnits {
 public:
  AnyUnits(const TCodeUnit* set, int n) : m_members(set, set + n) {}
  bool operator()(TCodeUnit c) const { return std::find(m_members.begin(), m_members.end(), c) != m_members.end(); }

 private:
  std::vector<TCodeUnit> m_members;
};

/// Calls `edit` with the test of single units that fits the set and the terminator that goes with it.
template <class Edit>
int WithUnitTest(const TCodeUnit* set, int setLen, Edit edit) {
  if (setLen == 1) return edit([c = *set](TCodeUnit unit) { return unit == c; }, TCodeUnit{0});
  if (std::all_of(set, set + setLen, IsAscii)) return edit(AsciiUnits(set, setLen), TCodeUnit{0});
  return edit(AnyUnits(set, setLen), TCodeUnit{u'0'});
}

int FindCodePoint(const TCodeUnit* text, int length, const CodePoints& set, int start) {
  for (int units = 0; start < length && text[start] != 0; start += units) {
    if (set.Holds(CodePoint::GetCodePoint(text + start, &units))) return start;
  }
  return -1;
}

int RemoveCodePoints(TCodeUnit* text, int length, const CodePoints& set, int start) {
  int match = FindCodePoint(text, length, set, start);
  if (match < 0) return length;
  int kept = match;
  while (match >= 0) {
    int units = 0;
    CodePoint::GetCodePoint(text + match, &units);
    const int from = match + units;
    match = FindCodePoint(text, length, set, from);
    const int to = match >= 0 ? match : from + search::lengthToNul(text + from, length - from);
    std::copy(text + from, text + to, text + kept);
    kept += to - from;
  }
  text[kept] = 0;
  return kept;
}

bool AsksForNothing(const TCodeUnit* text, int length, const TCodeUnit* set, int setLen, int start) {
  return !text || !set || setLen < 1 || start < 0 || start >= length;
}

}  // namespace

int findRemovable(const TCodeUnit* text, int length, const TCodeUnit* set, int setLen, int start) {
  if (AsksForNothing(text, length, set, setLen, start)) return -1;
  if (std::any_of(set, set + setLen, IsSurrogate)) {
    return FindCodePoint(text, length, CodePoints(set, set + setLen), start);
  }
  return WithUnitTest(set, setLen, [=](const auto& test, TCodeUnit) {
    const TCodeUnit* hit = std::find_if(text + start, text + length, test);
    return hit == text + length ? -1 : static_cast<int>(hit - text);
  });
}

int removeSet(TCodeUnit* text, int length, const TCodeUnit* set, int setLen, int start) {
  if (AsksForNothing(text, length, set, setLen, start)) return length;
  if (std::any_of(set, set + setLen, IsSurrogate)) {
    return RemoveCodePoints(text, length, CodePoints(set, set + setLen), start);
  }
  return WithUnitTest(set, setLen, [=](const auto& test, TCodeUnit terminator) {
    TCodeUnit* const end = std::remove_if(text + start, text + length, test);
    if (end != text + length) *end = terminator;
    return static_cast<int>(end - text);
  });
}

int replaceSet(TCodeUnit* text, int length, const TCodeUnit* set, int setLen, TCodeUnit c, int start) {
  if (AsksForNothing(text, length, set, setLen, start)) return length;
  // Terminated, since decoding looks one unit ahead.
  std::vector<TCodeUnit> copy(set, set + setLen);
  copy.push_back(0);
  const TCodeUnit* member = copy.data();
  const TCodeUnit* const end = member + setLen;
  for (; IsAscii(c) && member != end && IsAscii(*member); ++member) {
    std::replace(text + start, text + length, *member, c);
  }
  if (member == end) return length;
  const CodePoints rest(member, end);
  int kept = start;
  for (int from = start, units = 0; from < length && text[from] != 0; from += units) {
    if (rest.Holds(CodePoint::GetCodePoint(text + from, &units))) {
      text[kept++] = c;
    } else {
      for (int i = 0; i < units; ++i) text[kept++] = text[from + i];
    }
  }
  text[kept] = 0;
  return kept;
}

}  // namespace qilsys::search
