#include "transcode/LineEnds.h"

#include <cstring>
#include <string>

#include "qilsys/Unicode.h"

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

}  // namespace

namespace qilsys::transcode {

std::size_t CountDosUnits(const TCodeUnit* text, std::size_t length) {
  std::size_t count = 0;
  After state = After::Text;
  for (std::size_t i = 0; text && i < length; ++i) {
    if (Keep(text[i], state)) count += IsLineEnd(text[i]) ? 2 : 1;
  }
  return count;
}

void WriteDosUnits(const TCodeUnit* text, std::size_t length, TCodeUnit* target) {
  After state = After::Text;
  for (std::size_t i = 0; i < length; ++i) {
    if (!Keep(text[i], state)) continue;
    const bool lineEnd = IsLineEnd(text[i]);
    if (lineEnd) *target++ = CarriageReturn;
    *target++ = lineEnd ? TCodeUnit{LineFeed} : text[i];
  }
}

}  // namespace qilsys::transcode

namespace Unicode {

size_t normalizeLineEndings(char* text, size_t length) { return Normalize(text, length); }
size_t normalizeLineEndings(TCodeUnit* text, size_t length) { return Normalize(text, length); }
template <qilsys::ForeignUnit U>
size_t normalizeLineEndings(U* text, size_t length) {
  return Normalize(text, length);
}

size_t normalizeLineEndings(char* text) { return Normalize(text, std::strlen(text)); }
size_t normalizeLineEndings(TCodeUnit* text) { return Normalize(text, std::char_traits<TCodeUnit>::length(text)); }
template <qilsys::ForeignUnit U>
size_t normalizeLineEndings(U* text) {
  return Normalize(text, std::char_traits<U>::length(text));
}

template QILSYS_API size_t normalizeLineEndings(TForeignUnit*);
template QILSYS_API size_t normalizeLineEndings(TForeignUnit*, size_t);

}  // namespace Unicode
