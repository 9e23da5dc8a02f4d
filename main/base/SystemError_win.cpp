// The Linux sibling has the same operations.
#include "base/SystemError_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <array>
#include <string_view>

namespace {

std::string ToUtf8(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  std::string bytes(3 * text.size(), '\0');
  const int size = static_cast<int>(bytes.size());
  bytes.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr)));
  return bytes;
}

}  // namespace

int qilsys::base::LastSystemError() noexcept { return static_cast<int>(GetLastError()); }

// Asked for in units, since the process's code page may lack letters of the system's language. The texts end in a line
// break and blanks, which say nothing.
std::string qilsys::base::SystemErrorText(int number) {
  std::array<wchar_t, 1024> buffer;
  constexpr DWORD Flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
  const DWORD length = FormatMessageW(Flags, nullptr, static_cast<DWORD>(number), 0, buffer.data(),
                                      static_cast<DWORD>(buffer.size()), nullptr);
  const std::wstring_view text(buffer.data(), length);
  return ToUtf8(text.substr(0, text.find_last_not_of(L" \r\n") + 1));
}
