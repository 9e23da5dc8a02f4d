// Append, of units and of UTF-8.
#include "qilsys/TStringCore.h"

#include <algorithm>
#include <cstring>

#include "qilsys/Unicode.h"
#include "string/OwnText.h"
#include "string/StringGrowth.h"
#include "string/StringSum.h"

using qilsys::string::InSelf;
using qilsys::string::ResizeForWrite;
using qilsys::string::SumOfLengths;

namespace {

// A negative count is the rest of the text, NULs included.
void AppendFromSelf(TStringCore& text, int start, int count) {
  const int before = text.length();
  const int rest = before - start;
  if (count < 0 || count > rest) count = rest;
  if (count < 1) return;
  TCodeUnit* units = ResizeForWrite(text, SumOfLengths(before, count));
  std::copy_n(units + start, count, units + before);
}

}  // namespace

TStringCore& TStringCore::append(const TStringCore& other) {
  if (this == &other && !empty()) {
    AppendFromSelf(*this, 0, length());
    return *this;
  }
  const int before = length();
  const int added = other.length();
  TCodeUnit* units = ResizeForWrite(m_storage, SumOfLengths(before, added));
  std::copy_n(other.constData(), added, units + before);
  return *this;
}

TStringCore& TStringCore::append(const TCodeUnit* s, int len) {
  if (InSelf(*this, s)) {
    AppendFromSelf(*this, static_cast<int>(s - constData()), len);
    return *this;
  }
  if (!s || len == 0) return *this;
  if (len < 0) len = length(s);
  if (len == 0) return *this;
  const int before = length();
  std::copy_n(s, len, ResizeForWrite(m_storage, SumOfLengths(before, len)) + before);
  return *this;
}

TStringCore& TStringCore::appendUnitSlow(TCodeUnit c) {
  const int before = length();
  ResizeForWrite(m_storage, SumOfLengths(before, 1))[before] = c;
  return *this;
}

namespace {

int LengthOfUtf8(const char* s, int len) {
  if (!s) return 0;
  if (len >= 0) return len;
  const std::size_t bytes = std::strlen(s);
  if (bytes > 0x7FFFFFFF) throw TStringCore::Exception(u"Appended string is too long");
  return static_cast<int>(bytes);
}

}  // namespace

// One unit a byte is always enough. What stands behind `at` is lost only once the room is there.
TStringCore& TStringCore::writeUtf8(int at, const char* s, int len) {
  len = LengthOfUtf8(s, len);
  if (len == 0) return *this;
  TCodeUnit* units = ResizeForWrite(m_storage, SumOfLengths(at, len));
  ResizeForWrite(m_storage, at + Unicode::Utf8ToUtf16(s, len, units + at, capacity() - at));
  return *this;
}
