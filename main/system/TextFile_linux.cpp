#include "system/TextFile_linux.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <fcntl.h>

namespace qilsys::system {

using base::FileDescriptor;
using base::Uninterrupted;

namespace {

FileDescriptor Open(const char* path) {
  return FileDescriptor(Uninterrupted([&] { return open(path, O_RDONLY | O_CLOEXEC); }));
}

}  // namespace

std::string ReadTextFile(const char* path) {
  const FileDescriptor file = Open(path);
  std::string text;
  std::size_t length = 0;
  while (file.IsOpen()) {
    text.resize(length + 4096);
    const ssize_t got = Uninterrupted([&] { return read(file.Get(), text.data() + length, text.size() - length); });
    // A text that breaks off in an error is none: its last number might be cut.
    if (got < 0) length = 0;
    if (got <= 0) break;
    length += static_cast<std::size_t>(got);
  }
  text.resize(length);
  return text;
}

TextFile::TextFile(const char* path) : m_file(Open(path)) {}

// These texts are made anew for each reading from the beginning, and come whole where the buffer has room.
std::size_t TextFile::ReadInto(char* buffer, std::size_t size) const {
  const ssize_t got = Uninterrupted([&] { return pread(m_file.Get(), buffer, size, 0); });
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

std::string TextFile::ReadLongText() const {
  std::string text(4 * UsualBytes, '\0');
  std::size_t length = ReadInto(text.data(), text.size());
  while (length == text.size()) {
    text.resize(2 * text.size());
    length = ReadInto(text.data(), text.size());
  }
  text.resize(length);
  return text;
}

}  // namespace qilsys::system
