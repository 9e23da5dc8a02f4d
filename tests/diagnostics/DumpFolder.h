/// A folder for dumps, and a program to dump.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "qilsys/TSystem.h"
#include "support/Eventually.h"
#include "support/SpawnedProcess.h"

namespace qilsys::test {

/// Empty at first, and gone with all that stands in it at the end.
class DumpFolder {
 public:
  DumpFolder() : m_path(std::filesystem::path(testing::TempDir()) / Name()) {
    std::filesystem::remove_all(m_path);
    std::filesystem::create_directories(m_path);
  }
  ~DumpFolder() { std::filesystem::remove_all(m_path); }
  DumpFolder(const DumpFolder&) = delete;
  DumpFolder& operator=(const DumpFolder&) = delete;

  std::filesystem::path operator/(const char* name) const { return m_path / name; }

  /// The names of what stands there.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_path))
      names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
  }

 private:
  static std::string Name() {
    return "crash_dump_" + std::to_string(TSystem::ProcessID()) + "_" +
           testing::UnitTest::GetInstance()->current_test_info()->name();
  }

  std::filesystem::path m_path;
};

inline std::string BytesOfFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// dump_target_main.cpp at work.
class DumpTarget {
 public:
  explicit DumpTarget(std::vector<std::string> words) : m_process(WithProgram(std::move(words))) {}

  /// Whether the program has said `word` by now or will do so.
  bool Says(const std::string& word) {
    return Eventually([&] {
             const auto more = m_process.Read(std::chrono::milliseconds(10));
             m_said += more.value_or("");
             return m_said.find(word) != std::string::npos || !more;
           }) &&
           m_said.find(word) != std::string::npos;
  }

  SpawnedProcess& Process() { return m_process; }

 private:
  static std::vector<std::string> WithProgram(std::vector<std::string> words) {
    words.insert(words.begin(), QILSYS_DUMP_TARGET);
    return words;
  }

  SpawnedProcess m_process;
  std::string m_said;
};

}  // namespace qilsys::test
