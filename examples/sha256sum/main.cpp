// Prints the SHA-256 digest of each file, of standard input for "-" or without any file, in the format of the
// tool of the same name.
#include <qilsys/sha2.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Program_platform.h"

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File Open(const std::string& name) {
  if (name == "-") return {stdin, [](std::FILE*) { return 0; }};
  return {OpenForReading(name), std::fclose};
}

std::string Digest(const std::string& name) {
  const File file = Open(name);
  if (!file) throw std::runtime_error(std::strerror(errno));
  std::vector<unsigned char> buffer(64 * 1024);
  sha2 digest;
  digest.Init(sha2::SHA256);
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
    digest.Update(buffer.data(), count);
  }
  if (std::ferror(file.get()) != 0) throw std::runtime_error(std::strerror(errno));
  digest.End();
  return digest.StringHash();
}

// A name that would break its line is escaped, and a backslash at the line's start says so.
std::string Escaped(const std::string& name) {
  std::string escaped;
  for (const char c : name) {
    if (c == '\\') {
      escaped += "\\\\";
    } else if (c == '\n') {
      escaped += "\\n";
    } else if (c == '\r') {
      escaped += "\\r";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

bool Print(const std::string& name) {
  try {
    const std::string digest = Digest(name);
    const std::string shown = Escaped(name);
    std::printf("%s%s  %s\n", shown == name ? "" : "\\", digest.c_str(), shown.c_str());
    return true;
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "qilsys_sha256sum: %s: %s\n", name.c_str(), error.what());
    return false;
  }
}

}  // namespace

int main(int argc, char** argv) {
  PassBytesUnchanged();
  std::vector<std::string> names = Arguments(argc, argv);
  if (names.empty()) names.emplace_back("-");
  bool allRead = true;
  for (const std::string& name : names) allRead = Print(name) && allRead;
  return allRead ? 0 : 1;
}
