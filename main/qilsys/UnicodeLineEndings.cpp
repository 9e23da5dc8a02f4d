#include <climits>
#include <cstring>
#include <string>

#include "qilsys/TForeignText.h"
#include "qilsys/TStringCore.h"
#include "qilsys/Unicode.h"
#include "qilsys/UnicodeWide.h"

namespace Unicode {

namespace {

constexpr char CarriageReturn = '\r';
constexpr char LineFeed = '\n';

/// What the last units were: the two passes below drop line ends by it.
enum class After { Text, Feed, Return };

/// Turns lone CR into LF up to the first CR before another line end; the index of that CR, or the length.
template <class U>
size_t ReplaceLoneReturns(U* text, size_t length) {
  for (size_t i = 0; i < length; ++i) {
    if (text[i] != CarriageReturn) continue;
    if (i + 1 < length && (text[i + 1] == CarriageReturn || text[i + 1] == LineFeed)) return i;
    text[i] = LineFeed;
  }
  return length;
}

/// Moves on with one unit; true if it stays, as it is or as a line end.
template <class U>
bool Keep(U unit, After& state) {
  const After before = state;
  if (unit == CarriageReturn) {
    if (before == After::Text) state = After::Return;
    return before == After::Text;
  }
  if (unit == LineFeed) {
    state = before == After::Return ? After::Text : After::Feed;
    return before != After::Return;
  }
  state = After::Text;
  return true;
}

template <class U>
bool IsLineEnd(U unit) {
  return unit == CarriageReturn || unit == LineFeed;
}

template <class U>
size_t Normalize(U* text, size_t length) {
  size_t end = ReplaceLoneReturns(text, length);
  After state = After::Text;
  for (size_t i = end; i < length; ++i) {
    const U unit = text[i];
    if (Keep(unit, state)) text[end++] = IsLineEnd(unit) ? U{LineFeed} : unit;
  }
  text[end] = 0;
  return end;
}

size_t CountDosUnits(const TCodeUnit* text, size_t length) {
  size_t count = 0;
  After state = After::Text;
  for (size_t i = 0; i < length; ++i)
    if (Keep(text[i], state)) count += IsLineEnd(text[i]) ? 2 : 1;
  return count;
}

}  // namespace

size_t normalizeLineEndings(char* text, size_t length) { return Normalize(text, length); }
size_t normalizeLineEndings(TCodeUnit* text, size_t length) { return Normalize(text, length); }
template <ForeignUnit U>
size_t normalizeLineEndings(U* text, size_t length) {
  return Normalize(text, length);
}

size_t normalizeLineEndings(char* text) { return Normalize(text, std::strlen(text)); }
size_t normalizeLineEndings(TCodeUnit* text) { return Normalize(text, std::char_traits<TCodeUnit>::length(text)); }
template <ForeignUnit U>
size_t normalizeLineEndings(U* text) {
  return Normalize(text, std::char_traits<U>::length(text));
}

TStringCore unixToDos(const TCodeUnit* text, size_t length) {
  TStringCore result;
  const size_t count = text ? CountDosUnits(text, length) : 0;
  if (count > INT_MAX) throw TStringCore::CapacityException();
  if (count == 0) return result;
  result.resize(static_cast<int>(count));
  TCodeUnit* target = result.data();
  After state = After::Text;
  for (size_t i = 0; i < length; ++i) {
    if (!Keep(text[i], state)) continue;
    const bool lineEnd = IsLineEnd(text[i]);
    if (lineEnd) *target++ = CarriageReturn;
    *target++ = lineEnd ? TCodeUnit{LineFeed} : text[i];
  }
  return result;
}

template <ForeignUnit U>
TStringCore unixToDos(const U* text, size_t length) {
  if (length > INT_MAX) throw TStringCore::CapacityException();
  return WithUnits(text, static_cast<int>(length),
                   [](const TCodeUnit* units, int n) { return unixToDos(units, static_cast<size_t>(n)); });
}

template QILSYS_API size_t normalizeLineEndings(TForeignUnit*);
template QILSYS_API size_t normalizeLineEndings(TForeignUnit*, size_t);
template QILSYS_API TStringCore unixToDos(const TForeignUnit*, size_t);

}  // namespace Unicode
