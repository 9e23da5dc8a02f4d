#include "search/UnitSet.h"

#include <algorithm>
#include <iterator>

#include "qilsys/CodePoint.h"
#include "search/Search.h"
#include "units/TextLength.h"
#include "units/UnitScan.h"

namespace qilsys::search {
namespace {

bool isAscii(const TCodeUnit* set, int setLen) {
  unsigned all = 0;
  for (int i = 0; i < setLen; ++i) all |= set[i];
  return all < 0x80;
}

// A surrogate, or U+FFFD, which lone surrogates decode to: the units of set and text can't be compared as they are.
bool needsDecoding(TCodeUnit c) { return (c & 0xF800) == 0xD800 || c == CodePoint::ReplacementCharacter; }

}  // namespace

UnitSet UnitSet::forAnyOf(const TCodeUnit* set, int setLen) {
  if (set == nullptr || set[0] == 0) return UnitSet(set, 0);
  const int toNul = units::TerminatedLength(set);
  return UnitSet(set, isAscii(set, toNul) ? toNul : setLen);
}

UnitSet::Kind UnitSet::kindOf(const TCodeUnit* set, int setLen) {
  if (setLen <= MaxFew && std::none_of(set, set + setLen, needsDecoding)) return Kind::Few;
  return isAscii(set, setLen) ? Kind::Ascii : Kind::Many;
}

UnitSet::UnitSet(const TCodeUnit* set, int setLen) : m_kind(kindOf(set, setLen)) {
  switch (m_kind) {
    case Kind::Few:
      std::copy_n(set, setLen, m_few);
      m_count = setLen;
      break;
    case Kind::Ascii:
      std::fill(std::begin(m_ascii), std::end(m_ascii), false);
      for (int i = 0; i < setLen; ++i) m_ascii[set[i]] = true;
      break;
    case Kind::Many:
      decode(set, setLen);
      break;
  }
}

void UnitSet::decode(const TCodeUnit* set, int setLen) {
  m_many.reserve(static_cast<std::size_t>(setLen));
  int units = 0;
  for (int i = 0; i < setLen; i += units) m_many.push_back(CodePoint::GetCodePoint(set + i, &units));
}

bool UnitSet::holds(char32_t codePoint) const {
  return std::find(m_many.begin(), m_many.end(), codePoint) != m_many.end();
}

int UnitSet::findAnyOf(const TCodeUnit* text, int textLen, int start) const { return find<true>(text, textLen, start); }

int UnitSet::findNotOf(const TCodeUnit* text, int textLen, int start) const {
  return find<false>(text, textLen, start);
}

template <bool Wanted>
int UnitSet::find(const TCodeUnit* text, int textLen, int start) const {
  if (text == nullptr || start < 0 || start >= textLen) return -1;
  if (m_kind == Kind::Few) {
    if (m_count == 0) return Wanted ? -1 : start;
    return findFew<Wanted, 1>(text, textLen, start);
  }
  if (m_kind == Kind::Ascii) return findAscii<Wanted>(text, textLen, start);
  int units = 0;
  for (int at = start; at < textLen; at += units) {
    if (holds(CodePoint::GetCodePoint(text + at, &units)) == Wanted) return at;
  }
  return -1;
}

// No part of a code point outside ASCII is ASCII, so units will do.
template <bool Wanted>
int UnitSet::findAscii(const TCodeUnit* text, int textLen, int start) const {
  for (int at = start; at < textLen; ++at) {
    if ((text[at] < 0x80 && m_ascii[text[at]]) == Wanted) return at;
  }
  return -1;
}

// Picks the scan of the right width.
template <bool Wanted, int N>
int UnitSet::findFew(const TCodeUnit* text, int textLen, int start) const {
  if constexpr (N < MaxFew) {
    if (m_count > N) return findFew<Wanted, N + 1>(text, textLen, start);
  }
  const units::IsOneOf<units::UnitLanes, N> isMember(text, m_few);
  if constexpr (Wanted) {
    return units::scanForward(start, textLen, isMember);
  } else {
    return units::scanForward(start, textLen, units::IsNot(isMember));
  }
}

int findAnyOfCore(const TCodeUnit* text, int textLen, const TCodeUnit* set, int setLen, int start) {
  return UnitSet::forAnyOf(set, setLen).findAnyOf(text, textLen, start);
}

int findNotOfCore(const TCodeUnit* text, int textLen, const TCodeUnit* set, int setLen, int start) {
  return UnitSet::forNotOf(set, setLen).findNotOf(text, textLen, start);
}

}  // namespace qilsys::search
