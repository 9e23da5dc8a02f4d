// The debugger's channel. The Linux sibling writes to standard error, having none.
#include "base/DebugChannel_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <cstddef>
#include <cwchar>
#include <memory>
#include <new>
#include <utility>

namespace {

// Null where the memory for it is lacking.
std::unique_ptr<wchar_t[]> ToUtf16(const char* text) noexcept {
  constexpr int WithTerminator = -1;
  const int length = MultiByteToWideChar(CP_UTF8, 0, text, WithTerminator, nullptr, 0);
  std::unique_ptr<wchar_t[]> units(length > 0 ? new (std::nothrow) wchar_t[static_cast<unsigned>(length)] : nullptr);
  if (units) MultiByteToWideChar(CP_UTF8, 0, text, WithTerminator, units.get(), length);
  return units;
}

// A text whose bytes 16 bits can't count is lost whole in the call, so a long one goes in pieces.
void Write(wchar_t* units) noexcept {
  constexpr std::size_t LongestPiece = 16000;
  std::size_t left = std::wcslen(units);
  while (left > LongestPiece) {
    const std::size_t length = IS_HIGH_SURROGATE(units[LongestPiece - 1]) ? LongestPiece - 1 : LongestPiece;
    const wchar_t next = std::exchange(units[length], L'\0');
    OutputDebugStringW(units);
    units[length] = next;
    units += length;
    left -= length;
  }
  OutputDebugStringW(units);
}

}  // namespace

// The 8-bit form of the call would read the text in the code page of the process.
void qilsys::base::WriteToDebugChannel(const char* text) noexcept {
  if (const std::unique_ptr<wchar_t[]> units = ToUtf16(text)) {
    Write(units.get());
  } else {
    OutputDebugStringA(text);
  }
}
