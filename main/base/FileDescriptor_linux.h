/// The owner of a file descriptor, and the call that a signal does not end. The sibling for Windows is Win32Handle_win.h.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace qilsys::base {

/// Closes its descriptor when it goes; -1 is none.
class FileDescriptor {
 public:
  FileDescriptor() noexcept = default;
  explicit FileDescriptor(int descriptor) noexcept : m_descriptor(descriptor) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    Reset(std::exchange(other.m_descriptor, -1));
    return *this;
  }
  ~FileDescriptor() { Reset(); }

  bool IsOpen() const noexcept { return m_descriptor >= 0; }
  int Get() const noexcept { return m_descriptor; }

  /// Gives the descriptor up without closing it.
  int Release() noexcept { return std::exchange(m_descriptor, -1); }

  /// Closes the descriptor, if there is one, and owns `descriptor` from now on.
  void Reset(int descriptor = -1) noexcept {
    const int old = std::exchange(m_descriptor, descriptor);
    // Never again after EINTR: the descriptor is gone then, and its number may be somebody else's.
    if (old >= 0) close(old);
  }

 private:
  int m_descriptor = -1;
};

/// The result of a system call that is made again for as long as signals interrupt it.
template <class TCall>
auto Uninterrupted(TCall call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

}  // namespace qilsys::base
