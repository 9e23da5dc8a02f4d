// Once bytes have become UTF-16, with whatever was broken in them replaced, the text must survive every further road.
#include "qilsys/Unicode.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t MostBytes = 4096;

void Require(bool condition) {
  if (!condition) std::abort();
}

// No UTF-8 needs fewer bytes than units, no unit more than three bytes, and one element is left for the terminator.
std::basic_string<TCodeUnit> ToUtf16(std::string_view bytes) {
  std::basic_string<TCodeUnit> text(bytes.size() + 1, TCodeUnit{});
  const int length = static_cast<int>(bytes.size());
  text.resize(static_cast<std::size_t>(Unicode::Utf8ToUtf16(bytes.data(), length, text.data(), length + 1)));
  return text;
}

std::string ToUtf8(const std::basic_string<TCodeUnit>& text) {
  std::string bytes(3 * text.size() + 1, '\0');
  bytes.resize(static_cast<std::size_t>(
      Unicode::Utf16ToUtf8(text.data(), static_cast<int>(text.size()), bytes.data(), static_cast<int>(bytes.size()))));
  return bytes;
}

std::basic_string<TCodeUnit> ThroughUtf32(const std::basic_string<TCodeUnit>& text) {
  std::u32string points(text.size() + 1, U'\0');
  const int length = static_cast<int>(text.size());
  const int count = Unicode::Utf16ToUtf32(text.data(), length, points.data(), length + 1);
  std::basic_string<TCodeUnit> back(text.size() + 1, TCodeUnit{});
  back.resize(static_cast<std::size_t>(Unicode::Utf32ToUtf16(points.data(), count, back.data(), length + 1)));
  return back;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > MostBytes) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::basic_string<TCodeUnit> text = ToUtf16(input);
  const std::string bytes = ToUtf8(text);
  Require(ToUtf16(bytes) == text);
  Require(ThroughUtf32(text) == text);
  Require(Unicode::MeasureUtf16ToUtf8(text.data(), static_cast<int>(text.size())) == static_cast<int>(bytes.size()));
  return 0;
}
