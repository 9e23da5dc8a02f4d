/// Reading the files in which the kernel shows its texts. They have no size before they are read.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <string>
#include <string_view>

#include "base/FileDescriptor_linux.h"

namespace qilsys::system {

/// The whole text of a file; empty if it can't be opened or read.
std::string ReadTextFile(const char* path);
inline std::string ReadTextFile(const std::string& path) { return ReadTextFile(path.c_str()); }

/// A text that is read again and again through one descriptor, so that it can be had when there are no others left.
class TextFile {
 public:
  /// Holds no file; every reading is empty.
  TextFile() = default;
  explicit TextFile(const char* path);
  explicit TextFile(const std::string& path) : TextFile(path.c_str()) {}

  /// The text of now, from its beginning, which `visit` may look at while it runs; empty if it can't be read. Gives what
  /// `visit` gives.
  template <class TVisit>
  auto Read(TVisit visit) const {
    char usual[UsualBytes];
    const std::size_t length = ReadInto(usual, sizeof usual);
    return length < sizeof usual ? visit(std::string_view(usual, length)) : visit(std::string_view(ReadLongText()));
  }

 private:
  // Takes the status of a process; only one that is in hundreds of groups has a longer one.
  static constexpr std::size_t UsualBytes = 4096;

  std::size_t ReadInto(char* buffer, std::size_t size) const;
  std::string ReadLongText() const;

  base::FileDescriptor m_file;
};

}  // namespace qilsys::system
