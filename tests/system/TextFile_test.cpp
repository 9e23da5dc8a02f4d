#include "system/TextFile_linux.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "support/NoDescriptors.h"
#include "support/OpenHandles.h"
#include "system/TSystem_platform.h"

namespace qilsys::system {
namespace {

/// A file of a test, which is removed at its end.
class TestFile {
 public:
  TestFile() : m_path(testing::TempDir() + "text_file_test_" + std::to_string(CurrentProcessId())) {}
  TestFile(const TestFile&) = delete;
  TestFile& operator=(const TestFile&) = delete;
  ~TestFile() { std::remove(m_path.c_str()); }

  const std::string& Path() const { return m_path; }
  void Write(const std::string& text) const { std::ofstream(m_path, std::ios::binary) << text; }

 private:
  std::string m_path;
};

std::string TextOf(const TextFile& file) {
  return file.Read([](std::string_view text) { return std::string(text); });
}

std::string Numbered(std::size_t length) {
  std::string text;
  for (int i = 0; text.size() < length; ++i) text += std::to_string(i) + ' ';
  text.resize(length);
  return text;
}

// Around the buffers in which a text is looked for first.
TEST(TextFileTest, GivesTextsOfAnyLengthWhole) {
  const TestFile file;
  for (const std::size_t length : {0U, 1U, 4095U, 4096U, 4097U, 8192U, 16383U, 16384U, 16385U, 32768U, 100'000U}) {
    file.Write(Numbered(length));
    EXPECT_EQ(TextOf(TextFile(file.Path())), Numbered(length)) << length;
    EXPECT_EQ(ReadTextFile(file.Path()), Numbered(length)) << length;
  }
}

TEST(TextFileTest, EachReadingBeginsAnew) {
  const TestFile file;
  file.Write("first");
  const TextFile open(file.Path());
  EXPECT_EQ(TextOf(open), "first");
  EXPECT_EQ(TextOf(open), "first");
  file.Write("then");
  const test::NoDescriptors none;
  EXPECT_EQ(TextOf(open), "then");
  EXPECT_EQ(ReadTextFile(file.Path()), "") << "which needs a descriptor of its own";
}

TEST(TextFileTest, WhatCantBeReadIsEmpty) {
  EXPECT_EQ(TextOf(TextFile()), "");
  for (const char* path : {"/no/such/file", "/"}) {
    EXPECT_EQ(TextOf(TextFile(path)), "") << path;
    EXPECT_EQ(ReadTextFile(path), "") << path;
  }
}

TEST(TextFileTest, LeavesNothingOpen) {
  const unsigned int before = test::OpenHandles();
  {
    TextFile file("/proc/self/status");
    EXPECT_EQ(test::OpenHandles(), before + 1);
    TextFile moved = std::move(file);
    moved = TextFile("/proc/self/stat");
    ReadTextFile("/proc/self/stat");
    EXPECT_EQ(test::OpenHandles(), before + 1);
  }
  EXPECT_EQ(test::OpenHandles(), before);
}

}  // namespace
}  // namespace qilsys::system
