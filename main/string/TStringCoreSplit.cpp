// Split at separators, at once or token by token.
#include "qilsys/TStringCore.h"

#include <vector>

#include "qilsys/CodePoint.h"
#include "search/Fields.h"
#include "search/Search.h"
#include "search/UnitSet.h"
#include "string/StringGrowth.h"
#include "units/TextLength.h"

namespace search = qilsys::search;
using qilsys::string::Inside;

namespace {

using Strings = std::vector<TStringCore>;

constexpr int MaxInlineLength = qilsys::StringStorage::MaxInlineLength;

int countFields(const TCodeUnit* text, int len, TCodeUnit sep, bool dropEmpty) {
  if (!dropEmpty) return search::countUnit(text, len, sep) + 1;
  int count = 0;
  search::eachField(text, len, sep, [&](int, int length) { count += length != 0 ? 1 : 0; });
  return count;
}

// The walk over fields between members of a set; the state is the position of the next field, -1 after the last.
Strings splitOn(const TStringCore& text, const TCodeUnit* set, int setLen, bool dropEmpty) {
  const search::UnitSet separators = search::UnitSet::forAnyOf(set, setLen);
  const search::UnitSet skipped = search::UnitSet::forNotOf(set, dropEmpty ? setLen : 0);
  const TCodeUnit* units = text.data();
  Strings fields;
  for (int pos = 0; pos >= 0;) {
    const int start = dropEmpty ? skipped.findNotOf(units, text.length(), pos) : pos;
    if (start < 0) break;
    const int hit = separators.findAnyOf(units, text.length(), start);
    TStringCore field = text.mid(start, hit < 0 ? -1 : hit - start);
    if (!dropEmpty || !field.empty()) fields.push_back(std::move(field));
    int hitUnits = 0;
    if (hit >= 0) CodePoint::GetCodePoint(units + hit, &hitUnits);
    pos = hit < 0 ? -1 : hit + hitUnits;
  }
  return fields;
}

TStringCore nextToken(const TStringCore& text, const TCodeUnit* set, int setLen, int& pos, bool dropEmpty) {
  if (set == nullptr || pos < 0) return TStringCore();
  int start = pos;
  if (dropEmpty) {
    start = search::findNotOfCore(text.data(), text.length(), set, setLen, pos);
    if (start < pos) {
      pos = -1;
      return TStringCore();
    }
  }
  const int hit = search::findAnyOfCore(text.data(), text.length(), set, setLen, start);
  // The token first: where it fails, a second call gets it.
  TStringCore token = text.mid(start, hit < start ? -1 : hit - start);
  pos = hit < start ? -1 : hit + 1;
  return token;
}

}  // namespace

Strings TStringCore::split(const TStringCore& sep, SplitBehavior behavior, CaseSensitivity cs) const {
  return split(data(), length(), sep.data(), behavior, cs);
}

Strings TStringCore::split(const TCodeUnit* sep, SplitBehavior behavior, CaseSensitivity cs) const {
  return split(data(), length(), sep, behavior, cs);
}

Strings TStringCore::split(TCodeUnit sep, SplitBehavior behavior) const {
  return split(data(), length(), sep, behavior);
}

Strings TStringCore::split(const TCodeUnit* text, int len, const TCodeUnit* sep, SplitBehavior behavior,
                           CaseSensitivity cs) {
  const int sepLen = qilsys::units::TerminatedLength(sep);
  if (sepLen == 0) return {};
  if (text == nullptr) len = 0;
  if (sepLen == 1 && cs == CaseSensitive && len >= 0) return split(text, len, sep[0], behavior);
  Strings fields;
  search::eachField(text, len, sep, sepLen, cs, [&](int offset, int length) {
    if (length != 0 || behavior == KeepEmptyTokens) fields.emplace_back(text + offset, length);
  });
  return fields;
}

Strings TStringCore::split(const TCodeUnit* text, int len, TCodeUnit sep, SplitBehavior behavior) {
  if (text == nullptr) len = 0;
  if (len < 0) len = qilsys::units::TerminatedLength(text);
  const bool dropEmpty = behavior != KeepEmptyTokens;
  Strings fields;
  fields.reserve(static_cast<std::size_t>(countFields(text, len, sep, dropEmpty)));
  search::eachField(text, len, sep, [&](int offset, int length) {
    if (length == 0 && dropEmpty) return;
    if (length > MaxInlineLength || len - offset < MaxInlineLength) {
      fields.emplace_back(text + offset, length);
    } else {
      Inside::StorageOf(fields.emplace_back()).assignInlineFrom(text + offset, length);
    }
  });
  return fields;
}

Strings TStringCore::splitOnAny(const TStringCore& set, SplitBehavior behavior) const {
  return splitOn(*this, set.data(), set.length(), behavior == DropEmptyTokens);
}

// Without a set there is no walk: no field is ever taken.
Strings TStringCore::splitOnAny(const TCodeUnit* set, SplitBehavior behavior) const {
  if (set == nullptr) return {};
  return splitOn(*this, set, qilsys::units::TerminatedLength(set), behavior == DropEmptyTokens);
}

TStringCore TStringCore::tokenize(const TStringCore& set, int& pos, SplitBehavior behavior) const {
  return nextToken(*this, set.data(), set.length(), pos, behavior == DropEmptyTokens);
}

TStringCore TStringCore::tokenize(const TCodeUnit* set, int& pos, SplitBehavior behavior) const {
  return nextToken(*this, set, qilsys::units::TerminatedLength(set), pos, behavior == DropEmptyTokens);
}
