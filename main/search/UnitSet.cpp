#include "search/UnitSet.h"

#include <iterator>

#include "qilsys/CodePoint.h"
#include "search/Search.h"
#include "units/TextLength.h"
#include "units/UnitScan.h"
#include "units/Utf.h"

namespace qilsys::search {
namespace {

// A surrogate, or U+FFFD, which lone surrogates decode to: the units of set and text can't be compared as they are.
bool needsDecoding(TCodeUnit c) { return units::IsSurrogate(c) || c == CodePoint::ReplacementCharacter; }

}  // namespace

bool isAscii(const TCodeUnit* units, int n) {
  unsigned all = 0;
  for (int i = 0; i < n; ++i) all |= units[i];
  return all < 0x80;
}

UnitSet::UnitSet(Kind kind, const TCodeUnit* set, int setLen, LoneSurrogate lone)
    : m_kind(kind), m_members(kind == Kind::Units || kind == Kind::CodePoints ? setLen : 0) {
  if (kind == Kind::Few) {
    std::copy_n(set, setLen, m_few);
    m_fewCount = setLen;
  } else if (kind == Kind::Ascii) {
    std::fill(std::begin(m_ascii), std::end(m_ascii), false);
    for (int i = 0; i < setLen; ++i) m_ascii[set[i]] = true;
  } else if (kind == Kind::Units) {
    for (int i = 0; i < setLen; ++i) m_members.add(set[i]);
  } else {
    int units = 0;
    for (int i = 0; i < setLen; i += units) {
      const char32_t codePoint = CodePoint::GetCodePoint(set + i, &units);
      m_members.add(units == 1 && lone == LoneSurrogate::Kept ? set[i] : codePoint);
    }
  }
}

UnitSet UnitSet::ofDecoded(const TCodeUnit* set, int setLen) {
  if (setLen <= MaxFew && std::none_of(set, set + setLen, needsDecoding)) return UnitSet(Kind::Few, set, setLen);
  return UnitSet(isAscii(set, setLen) ? Kind::Ascii : Kind::CodePoints, set, setLen);
}

UnitSet UnitSet::forAnyOf(const TCodeUnit* set, int setLen) {
  if (set == nullptr || set[0] == 0) return UnitSet(Kind::Few, set, 0);
  const int toNul = units::TerminatedLength(set);
  return ofDecoded(set, isAscii(set, toNul) ? toNul : setLen);
}

UnitSet UnitSet::forNotOf(const TCodeUnit* set, int setLen) { return ofDecoded(set, set != nullptr ? setLen : 0); }

UnitSet UnitSet::forRemoving(const TCodeUnit* set, int setLen) {
  if (set == nullptr) return UnitSet(Kind::Few, set, 0);
  if (std::any_of(set, set + setLen, units::IsSurrogate)) return UnitSet(Kind::CodePoints, set, setLen);
  if (setLen > 1 && isAscii(set, setLen)) return UnitSet(Kind::Ascii, set, setLen);
  return UnitSet(setLen <= MaxFew ? Kind::Few : Kind::Units, set, setLen);
}

UnitSet UnitSet::forTrimming(const TCodeUnit* set) {
  return UnitSet(Kind::CodePoints, set, units::TerminatedLength(set), LoneSurrogate::Kept);
}

UnitSet UnitSet::ofCodePoints(const TCodeUnit* set, int setLen) { return UnitSet(Kind::CodePoints, set, setLen); }

bool UnitSet::holds(const TCodeUnit* units, int n) const {
  if (n == 1) return holds(units[0]);
  return n == 2 && CodePoint::IsHighSurrogate(units[0]) && holds(CodePoint::JoinSurrogates(units[0], units[1]));
}

int UnitSet::findAnyOf(const TCodeUnit* text, int textLen, int start) const { return find<true>(text, textLen, start); }

int UnitSet::findNotOf(const TCodeUnit* text, int textLen, int start) const {
  return find<false>(text, textLen, start);
}

template <bool Wanted>
int UnitSet::find(const TCodeUnit* text, int textLen, int start) const {
  if (text == nullptr || start < 0 || start >= textLen) return -1;
  if (m_kind == Kind::CodePoints) return findCodePoint<Wanted>(text, textLen, start);
  if (m_kind == Kind::Few) {
    if (m_fewCount == 0) return Wanted ? -1 : start;
    return findFew<Wanted, 1>(text, textLen, start);
  }
  // No part of a code point outside ASCII is ASCII, so units will do.
  return withUnitTest([=](const auto& isMember) {
    for (int at = start; at < textLen; ++at) {
      if (isMember(text[at]) == Wanted) return at;
    }
    return -1;
  });
}

template <bool Wanted>
int UnitSet::findCodePoint(const TCodeUnit* text, int textLen, int start) const {
  int units = 0;
  for (int at = start; at < textLen; at += units) {
    if (holds(CodePoint::GetCodePoint(text + at, &units)) == Wanted) return at;
  }
  return -1;
}

// Picks the scan of the right width.
template <bool Wanted, int N>
int UnitSet::findFew(const TCodeUnit* text, int textLen, int start) const {
  if constexpr (N < MaxFew) {
    if (m_fewCount > N) return findFew<Wanted, N + 1>(text, textLen, start);
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
