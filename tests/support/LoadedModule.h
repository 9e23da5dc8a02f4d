/// A library that a test loads and unloads by its own hand.
#pragma once

#include <filesystem>

namespace qilsys::test {

/// The path as the system takes it where it is longer than usual.
std::filesystem::path OfAnyLength(const std::filesystem::path& path);

class LoadedModule {
 public:
  /// Throws std::runtime_error where the file can't be loaded. A name without a folder is looked for as the system does.
  explicit LoadedModule(const std::filesystem::path& file);
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;
  ~LoadedModule();

  /// The address of what it exports by that name; null where it exports none.
  const void* AddressOf(const char* name) const;

  /// Whether a file of that name is loaded, by this object or another.
  static bool IsLoaded(const std::filesystem::path& file);

 private:
  void* m_module;
};

}  // namespace qilsys::test
