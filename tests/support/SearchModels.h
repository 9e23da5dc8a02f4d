/// Searching and comparing, written as plainly as possible: what the engines are compared with.
#pragma once

#include <unicode/uchar.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace qilsys::test {

inline char32_t ModelFold(char32_t c) {
  if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 32 : c;
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

inline bool ModelSame(char32_t a, char32_t b, bool fold) { return fold ? ModelFold(a) == ModelFold(b) : a == b; }

inline std::u16string_view ModelToNul(std::u16string_view text) { return text.substr(0, text.find(u'\0')); }

/// At most `n` units, all for a negative one.
inline int ModelCompare(std::u16string a, std::u16string b, bool fold, int n = -1) {
  a += u'\0';
  b += u'\0';
  for (std::size_t i = 0; n < 0 || i < static_cast<std::size_t>(n); ++i) {
    const char32_t left = fold ? ModelFold(a[i]) : a[i];
    const char32_t right = fold ? ModelFold(b[i]) : b[i];
    if (left != right) return left < right ? -1 : 1;
    if (a[i] == 0) return 0;
  }
  return 0;
}

/// `needle` is terminated, so an empty one begins with NUL.
inline int ModelFind(std::u16string_view hay, std::u16string_view needle, int start, bool fold) {
  const int hayLen = static_cast<int>(hay.size());
  if (start < 0) start += hayLen;
  if (start < 0 || start >= hayLen) return -1;
  if (needle.empty() || needle[0] == 0) return start;
  for (std::size_t at = static_cast<std::size_t>(start); at + needle.size() <= hay.size(); ++at) {
    std::size_t same = 0;
    while (same < needle.size() && ModelSame(hay[at + same], needle[same], fold)) ++same;
    if (same == needle.size()) return static_cast<int>(at);
  }
  return -1;
}

inline bool ModelIsHigh(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
inline bool ModelIsLow(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

/// The code point at `at`; a lone surrogate is U+FFFD.
inline char32_t ModelCodePoint(std::u16string_view text, std::size_t at, std::size_t& units) {
  units = 1;
  if (!ModelIsHigh(text[at]) && !ModelIsLow(text[at])) return text[at];
  if (ModelIsLow(text[at]) || at + 1 >= text.size() || !ModelIsLow(text[at + 1])) return 0xFFFD;
  units = 2;
  return 0x10000 + ((char32_t{text[at]} & 0x3FF) << 10) + (text[at + 1] & 0x3FF);
}

inline std::vector<char32_t> ModelCodePoints(std::u16string_view text) {
  std::vector<char32_t> points;
  std::size_t units = 0;
  for (std::size_t at = 0; at < text.size(); at += units) points.push_back(ModelCodePoint(text, at, units));
  return points;
}

inline int ModelLastIndexOf(std::u16string_view text, std::u16string_view needle, int from, bool fold) {
  const int length = static_cast<int>(text.size());
  const int needleLen = static_cast<int>(needle.size());
  if (length == 0 || needleLen == 0 || length < needleLen) return -1;
  if (from < 0) from += from == -1 ? length + 1 : length;
  if (from < 0) return -1;
  for (int at = std::min(from, length - needleLen); at >= 0; --at) {
    if (ModelIsLow(text[static_cast<std::size_t>(at)])) continue;
    std::size_t ours = static_cast<std::size_t>(at);
    std::size_t theirs = 0;
    while (true) {
      std::size_t ourUnits = 0;
      std::size_t theirUnits = 0;
      const char32_t a = ModelCodePoint(text, ours, ourUnits);
      if (!ModelSame(a, ModelCodePoint(needle, theirs, theirUnits), fold)) break;
      // The walk over the needle ends on a low surrogate and takes a high one for the first half of a pair.
      if (ModelIsLow(needle[theirs])) return at;
      ours += ourUnits;
      theirs += ModelIsHigh(needle[theirs]) ? 2 : 1;
      if (theirs >= needle.size()) return at;
    }
  }
  return -1;
}

inline int ModelCount(std::u16string_view text, std::u16string_view needle, bool fold) {
  text = ModelToNul(text);
  if (needle.empty() || needle.size() > text.size()) return 0;
  const int step = ModelIsHigh(needle[0]) ? 2 : 1;
  int count = 0;
  int at = 0;
  while (at <= static_cast<int>(text.size() - needle.size())) {
    at = ModelFind(text, needle, at, fold);
    if (at < 0) break;
    ++count;
    at += step;
  }
  return count;
}

/// `set` with all its units; the caller cuts an ASCII one at its NUL.
inline int ModelFindSet(std::u16string_view text, std::u16string_view set, int start, bool wanted) {
  if (start < 0) return -1;
  const std::vector<char32_t> points = ModelCodePoints(set);
  std::size_t units = 0;
  for (std::size_t at = static_cast<std::size_t>(start); at < text.size(); at += units) {
    const char32_t c = ModelCodePoint(text, at, units);
    if ((std::find(points.begin(), points.end(), c) != points.end()) == wanted) return static_cast<int>(at);
  }
  return -1;
}

inline int ModelFindAnyOf(std::u16string_view text, std::u16string_view set, int start) {
  if (set.empty() || set[0] == 0) return -1;
  const std::u16string_view toNul = ModelToNul(set);
  const bool isAscii = std::all_of(toNul.begin(), toNul.end(), [](char16_t c) { return c < 0x80; });
  return ModelFindSet(text, isAscii ? toNul : set, start, true);
}

inline int ModelFindNotOf(std::u16string_view text, std::u16string_view set, int start) {
  return ModelFindSet(text, set, start, false);
}

struct ModelField {
  int offset;
  int length;
};

inline std::vector<ModelField> ModelFields(std::u16string_view text, std::u16string_view sep, bool dropEmpty,
                                           bool fold) {
  std::vector<ModelField> fields;
  if (sep.empty()) return fields;
  int pos = 0;
  while (true) {
    const int hit = ModelFind(text, sep, pos, fold);
    const int end = hit < 0 || pos >= static_cast<int>(text.size()) ? static_cast<int>(text.size()) : hit;
    if (!dropEmpty || end > pos) fields.push_back({pos, end - pos});
    if (hit < 0) return fields;
    pos = hit + static_cast<int>(sep.size());
  }
}

}  // namespace qilsys::test
