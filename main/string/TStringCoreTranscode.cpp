// Text from other encodings and to them.
#include "qilsys/TStringCore.h"

#include <unicode/ucnv.h>

#include <climits>
#include <cstring>
#include <memory>

#include "qilsys/Unicode.h"
#include "units/TextLength.h"

namespace {

struct ConverterCloser {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

/// Null where it fails; ICU's functions then fail themselves.
Converter OpenDefaultConverter() {
  UErrorCode status = U_ZERO_ERROR;
  return Converter(ucnv_open(nullptr, &status));
}

int ByteLength(const char* s, int len) {
  if (!s) return 0;
  return len < 0 ? qilsys::units::TerminatedLength(s) : len;
}

/// Zero-extends each byte. A step of a fixed 32 bytes is what compilers turn into vector instructions.
void Widen(const char* source, int length, TCodeUnit* target) {
  constexpr int Step = 32;
  int i = 0;
  for (; i + Step <= length; i += Step) {
    unsigned char bytes[Step];
    TCodeUnit units[Step];
    std::memcpy(bytes, source + i, sizeof bytes);
    for (int k = 0; k < Step; ++k) units[k] = bytes[k];
    std::memcpy(target + i, units, sizeof units);
  }
  for (; i < length; ++i) target[i] = static_cast<unsigned char>(source[i]);
}

TCodeUnit FromLatin9(TCodeUnit byte) {
  switch (byte) {
    case 0xA4:
      return 0x20AC;
    case 0xA6:
      return 0x0160;
    case 0xA8:
      return 0x0161;
    case 0xB4:
      return 0x017D;
    case 0xB8:
      return 0x017E;
    case 0xBC:
      return 0x0152;
    case 0xBD:
      return 0x0153;
    case 0xBE:
      return 0x0178;
    default:
      return byte;
  }
}

}  // namespace

TStringCore TStringCore::fromUtf32(const char32_t* s, int len) {
  if (!s || len == 0) return {};
  if (len < 0) len = qilsys::units::TerminatedLength(s);
  constexpr int DoublesOutOfRange = 1 << 30;
  TStringCore work;
  work.resize(len & DoublesOutOfRange ? 0 : 2 * len);
  work.resizeForWrite(Unicode::Utf32ToUtf16(s, len, work.data(), work.capacity()));
  return work;
}

TStringCore TStringCore::fromLatin1(const char* s, int len) {
  TStringCore result;
  const int length = ByteLength(s, len);
  if (length > 0) Widen(s, length, result.resizeForWrite(length));
  return result;
}

TStringCore TStringCore::fromLatin9(const char* s, int len) {
  const int limit = ByteLength(s, len);
  if (limit == 0) return {};
  const void* nul = std::memchr(s, 0, static_cast<size_t>(limit));
  TStringCore result = fromLatin1(s, nul ? static_cast<int>(static_cast<const char*>(nul) - s) : limit);
  for (TCodeUnit& unit : result) unit = FromLatin9(unit);
  return result;
}

TStringCore TStringCore::fromLocal8Bit(const char* s, int len) {
  const int length = ByteLength(s, len);
  if (length == 0) return {};
  TStringCore work;
  TCodeUnit* target = work.resizeForWrite(length);
  UErrorCode status = U_ZERO_ERROR;
  const Converter converter = OpenDefaultConverter();
  const char* const end = s + length;
  int position = 0;
  // A converter may make more units than bytes: the last unit is kept for the terminator.
  while (s < end && position < work.capacity() - 1) {
    const auto codePoint = static_cast<char32_t>(ucnv_getNextUChar(converter.get(), &s, end, &status));
    if (status != U_ZERO_ERROR || (codePoint == 0x1A && s == end)) break;
    if (CodePoint::Utf32ToTCodeUnit(&codePoint, target, position, work.capacity() - 1) == 0) break;
  }
  work.resizeForWrite(position);
  return work;
}

std::string TStringCore::toStdString() const { return Unicode::toStdString(data(), size()); }
std::u16string TStringCore::toStdU16String() const { return Unicode::toStdU16String(data(), size()); }
std::wstring TStringCore::toStdUString() const { return Unicode::toStdWString(data(), size()); }
std::wstring TStringCore::toStdWString() const { return Unicode::toStdWString(data(), size()); }

std::string TStringCore::toLatin1(bool* lossy) const {
  bool substituted = false;
  std::string result(size(), '?');
  const TCodeUnit* unit = data();
  for (char& byte : result) {
    if (*unit <= 0xFF) {
      byte = static_cast<char>(*unit);
    } else {
      substituted = true;
    }
    ++unit;
  }
  if (lossy) *lossy = substituted;
  return result;
}

// Units are not looked up in the table of fromLatin9: what differs from Latin-1 there becomes "?", and bytes that mean
// something else there stay. Hosts rely on the result being that of the byte values.
std::string TStringCore::toLatin9(bool* lossy) const {
  bool substituted = false;
  std::string result(size(), '\0');
  const TCodeUnit* const text = data();
  size_t written = 0;
  for (int i = 0, units = 0; i < length(); i += units) {
    const char32_t codePoint = CodePoint::GetCodePoint(text + i, &units);
    substituted |= codePoint > 0xFF;
    result[written++] = codePoint > 0xFF ? '?' : static_cast<char>(codePoint);
  }
  if (substituted) result.resize(std::strlen(result.c_str()));
  if (lossy) *lossy = substituted;
  return result;
}

std::string TStringCore::toLocal8Bit(bool* lossy) const {
  if (lossy) *lossy = false;
  if (isEmpty()) return {};
  const size_t room = size() * 4 + 4;
  std::string result(room, '\0');
  UErrorCode status = U_ZERO_ERROR;
  const Converter converter = OpenDefaultConverter();
  ucnv_fromUChars(converter.get(), result.data(), room < INT_MAX ? static_cast<int32_t>(room) : INT_MAX,
                  reinterpret_cast<const UChar*>(data()), length(), &status);
  result.resize(std::strlen(result.c_str()));
  return result;
}

int TStringCore::toWCharArray(TCodeUnit* target, int capacity) const {
  return static_cast<int>(
             Unicode::toWCharArray(data(), size(), target, static_cast<size_t>(capacity < 0 ? 0 : capacity))) -
         1;
}

std::vector<wchar_t> TStringCore::toWCharVector() const {
  std::vector<wchar_t> result(size() + 1);
  Unicode::toWCharArray(data(), size(), result.data(), result.size());
  return result;
}
