#include "support/TextModel.h"

#include <algorithm>
#include <vector>

namespace qilsys::test {
namespace {

bool IsHigh(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLow(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
bool IsSpace(char16_t c) { return c == u' ' || (c >= 9 && c <= 13) || c == 0x85 || c == 0xA0 || c == 0x2003; }

std::size_t At(int i) { return static_cast<std::size_t>(i); }

/// The code point at `i` as the units that stand for it; a lone surrogate is U+FFFD.
struct Point {
  std::u16string units;
  char32_t value;
};

std::vector<Point> Points(const std::u16string& s) {
  std::vector<Point> points;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (IsHigh(s[i]) && i + 1 < s.size() && IsLow(s[i + 1])) {
      const char32_t value = 0x10000 + ((s[i] & 0x3FFU) << 10) + (s[i + 1] & 0x3FFU);
      points.push_back({s.substr(i, 2), value});
      ++i;
    } else {
      const bool lone = IsHigh(s[i]) || IsLow(s[i]);
      points.push_back({s.substr(i, 1), lone ? char32_t{0xFFFD} : char32_t{s[i]}});
    }
  }
  return points;
}

bool Holds(const std::vector<Point>& set, char32_t value) {
  return std::any_of(set.begin(), set.end(), [value](const Point& p) { return p.value == value; });
}

}  // namespace

void TextModel::Insert(int i, const std::u16string& s, int own) {
  const int n = static_cast<int>(s.size());
  if (i < 0 || i > length() || n == 0) return;
  if (i < length() && IsLow(m_units[At(i)])) return;
  std::u16string moved = m_units;
  moved.resize(m_units.size() + s.size());
  for (int k = length() - 1; k >= i; --k) moved[At(k + n)] = moved[At(k)];
  const std::u16string text = own < 0 ? s : moved.substr(At(own), s.size());
  m_units = moved.replace(At(i), s.size(), text);
}

void TextModel::InsertUnit(int i, char16_t c) {
  if (i >= 0 && i <= length()) m_units.insert(At(i), 1, c);
}

void TextModel::Replace(int pos, int n, const std::u16string& s, int own) {
  if (pos < 0 || pos > length() || n < 0) return;
  if (n == 0 && pos < length()) {
    Insert(pos, s, own);
    return;
  }
  // Own text before a range that reaches the end stops where that begins, but where all of the text is replaced.
  const bool stops = own >= 0 && own <= pos && pos > 0 && n >= length() - pos;
  m_units.replace(At(pos), At(n), stops ? s.substr(0, At(pos - own)) : s);
}

void TextModel::ReplaceByUnit(int pos, int n, char16_t c) {
  if (pos < 0 || pos >= length() || n < 1) return;
  n = std::min(n, length() - pos);
  // A high surrogate counts for two units whatever follows it, as far as the range goes.
  int points = 0;
  for (int i = 0; i < n; ++points) i += IsHigh(m_units[At(pos + i)]) ? 2 : 1;
  m_units.replace(At(pos), At(n), At(points), c);
}

int TextModel::ReplaceCount(const std::u16string& before, const std::u16string& after) {
  if (before.empty()) return 0;
  int count = 0;
  for (std::size_t at = m_units.find(before); at != std::u16string::npos;
       at = m_units.find(before, at + after.size())) {
    m_units.replace(at, before.size(), after);
    ++count;
  }
  return count;
}

void TextModel::ReplaceUnit(char16_t before, char16_t after) {
  std::replace(m_units.begin(), m_units.end(), before, after);
}

void TextModel::RemoveAt(int pos, int n) {
  if (pos >= length()) return;
  if (pos + n >= length()) {
    m_units.resize(At(std::max(pos, 0)));
    return;
  }
  if (pos < 0) {
    n += pos;
    pos = 0;
  }
  if (n > 0) m_units.erase(At(pos), At(n));
}

void TextModel::RemoveAll(const std::u16string& s) {
  if (s.empty() || s[0] == 0) return;
  for (std::size_t at = m_units.find(s); at != std::u16string::npos; at = m_units.find(s, at))
    m_units.erase(at, s.size());
}

void TextModel::RemoveUnit(char16_t c) {
  const std::size_t first = m_units.find(c);
  if (first == std::u16string::npos) return;
  const std::size_t nul = m_units.find(u'\0', first);
  if (nul != std::u16string::npos) m_units.resize(nul);
  m_units.erase(std::remove(m_units.begin(), m_units.end(), c), m_units.end());
}

void TextModel::RemoveAnyOf(const std::u16string& set, int start) {
  if (set.empty() || start < 0 || start >= length()) return;
  const bool byCodePoint = std::any_of(set.begin(), set.end(), [](char16_t c) { return IsHigh(c) || IsLow(c); });
  std::u16string kept = m_units.substr(0, At(start));
  bool removed = false;
  if (byCodePoint) {
    const auto members = Points(set);
    const std::u16string rest = m_units.substr(At(start), m_units.find(u'\0', At(start)) - At(start));
    for (const Point& p : Points(rest)) {
      if (Holds(members, p.value))
        removed = true;
      else
        kept += p.units;
    }
  } else {
    for (const char16_t c : m_units.substr(At(start))) {
      if (set.find(c) != std::u16string::npos)
        removed = true;
      else
        kept += c;
    }
  }
  if (removed) m_units = kept;
}

void TextModel::ReplaceAnyOf(const std::u16string& set, char16_t c, int start) {
  if (set.empty() || start < 0 || start >= length()) return;
  std::size_t member = 0;
  for (; c < 0x80 && member < set.size() && set[member] < 0x80; ++member) {
    std::replace(m_units.begin() + start, m_units.end(), set[member], c);
  }
  if (member == set.size()) return;
  const auto members = Points(set.substr(member));
  std::u16string result = m_units.substr(0, At(start));
  const std::u16string rest = m_units.substr(At(start), m_units.find(u'\0', At(start)) - At(start));
  for (const Point& p : Points(rest)) result += Holds(members, p.value) ? std::u16string(1, c) : p.units;
  m_units = result;
}

void TextModel::Truncate(int n) {
  n = std::max(n, 0);
  if (n < length()) m_units.resize(At(n));
}

void TextModel::TrimSpace() {
  while (!m_units.empty()) {
    std::size_t first = m_units.size();
    do --first;
    while (first > 0 && IsLow(m_units[first]));
    if (!IsSpace(m_units[first])) break;
    m_units.resize(first);
  }
  while (!m_units.empty() && IsSpace(m_units[0])) m_units.erase(0, 1);
}

void TextModel::TrimUnit(char16_t c) {
  while (!m_units.empty() && m_units.back() == c) m_units.pop_back();
  while (c != 0 && !m_units.empty() && m_units[0] == c) m_units.erase(0, 1);
}

void TextModel::Reverse() {
  // Pairs are put in order again; so are halves that only come together by reversing.
  std::u16string plain(m_units.rbegin(), m_units.rend());
  for (std::size_t i = 0; i + 1 < plain.size(); ++i) {
    if (IsLow(plain[i]) && IsHigh(plain[i + 1])) {
      std::swap(plain[i], plain[i + 1]);
      ++i;
    }
  }
  m_units = plain;
}

void TextModel::DosToUnix() {
  std::u16string out;
  std::size_t i = 0;
  for (; i < m_units.size(); ++i) {
    const bool meetsAnother =
        m_units[i] == u'\r' && i + 1 < m_units.size() && (m_units[i + 1] == u'\r' || m_units[i + 1] == u'\n');
    if (meetsAnother) break;
    out += m_units[i] == u'\r' ? u'\n' : m_units[i];
  }
  for (int state = 0; i < m_units.size(); ++i) {
    const char16_t c = m_units[i];
    if (c == u'\r') {
      if (state == 0) out += u'\n';
      state = state == 0 ? 2 : state;
    } else if (c == u'\n') {
      if (state != 2) out += u'\n';
      state = state == 2 ? 0 : 1;
    } else {
      out += c;
      state = 0;
    }
  }
  m_units = out;
}

void TextModel::UnixToDos() {
  std::u16string out;
  int state = 0;
  for (const char16_t c : m_units) {
    if (c == u'\r') {
      if (state == 0) out += u"\r\n";
      state = state == 0 ? 2 : state;
    } else if (c == u'\n') {
      if (state != 2) out += u"\r\n";
      state = state == 2 ? 0 : 1;
    } else {
      out += c;
      state = 0;
    }
  }
  m_units = out;
}

}  // namespace qilsys::test
