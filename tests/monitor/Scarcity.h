/// What a system may run out of, brought about.
#pragma once

namespace qilsys::test {

/// While it lives, this program gets no random numbers of the system.
class NoRandomNumbers {
 public:
  NoRandomNumbers();
  NoRandomNumbers(const NoRandomNumbers&) = delete;
  NoRandomNumbers& operator=(const NoRandomNumbers&) = delete;
  ~NoRandomNumbers();
};

/// While it lives, this program can start no thread, where the system has means to refuse one.
class NoThreads {
 public:
  static bool CanBeHad();

  NoThreads();
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;
  ~NoThreads();
};

/// While it lives, this program can open no file, where the system has means to refuse one.
class NoFiles {
 public:
  static bool CanBeHad();

  NoFiles();
  NoFiles(const NoFiles&) = delete;
  NoFiles& operator=(const NoFiles&) = delete;
  ~NoFiles();
};

}  // namespace qilsys::test
