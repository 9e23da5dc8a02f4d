/// A handle of Windows that somebody owns.
#pragma once

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <utility>

namespace qilsys {

/// Closes its handle when it goes. Null is none: for the calls that answer INVALID_HANDLE_VALUE, which stands for the
/// process itself elsewhere, this is not the type.
class Win32Handle {
 public:
  Win32Handle() noexcept = default;
  explicit Win32Handle(HANDLE handle) noexcept : m_handle(handle) {}
  Win32Handle(const Win32Handle&) = delete;
  Win32Handle& operator=(const Win32Handle&) = delete;
  Win32Handle(Win32Handle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
  Win32Handle& operator=(Win32Handle&& other) noexcept {
    Reset(std::exchange(other.m_handle, nullptr));
    return *this;
  }
  ~Win32Handle() { Reset(); }

  HANDLE Get() const noexcept { return m_handle; }
  bool IsOpen() const noexcept { return m_handle != nullptr; }
  /// Closes the handle, if there is one, and owns `handle` from now on. Leaves the thread's last error alone where
  /// there was none to close.
  void Reset(HANDLE handle = nullptr) noexcept {
    const HANDLE old = std::exchange(m_handle, handle);
    if (old != nullptr) {
      CloseHandle(old);
    }
  }

 private:
  HANDLE m_handle = nullptr;
};

}  // namespace qilsys
