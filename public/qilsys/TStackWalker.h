/// Where the calling thread is: its stack as lines of text, one a frame.
///
///     TStackWalker::InitSym(true);  // once, by the host
///     TStackWalker walker;
///     if (walker.GenerateCallstack()) Log(walker.GetCollected());
///
/// A line reads `0x000000000000A1B2 /src/Reader.cpp(17): reader!Reader::Open(char const*)`: thread, file and line, module,
/// symbol. Without file information the frame's address stands in place of the file. What can't be found out reads
/// "(module name not available)" and "(symbol not available)".
#pragma once

#include <atomic>
#include <list>
#include <string>

#include "qilsys/Export.h"

/// The switches of the whole process. They are set by the operations of TStackWalker.
class QILSYS_API StackWalkerConfig {
 public:
  /// The most frames that one walk captures.
  static const int numberOfStackWalks = 200;

  std::atomic<bool> m_active{false};
  std::atomic<bool> m_includeThreadInfo{true};
  std::atomic<bool> m_includeSystemMemoryAddresses{true};
  std::atomic<bool> m_includeFileLineNumber{true};
  std::atomic<bool> m_includeFileName{true};
};

/// Collects lines of a stack. A value: different objects may be used by different threads, and copies are independent.
///
/// Modules that are loaded after the first walk of the process stay unknown. A walk takes locks and memory, so it is not
/// for signal handlers; a forked child may walk.
class QILSYS_API TStackWalker {
 public:
  TStackWalker();
  TStackWalker(const TStackWalker&);
  TStackWalker& operator=(const TStackWalker&);
  virtual ~TStackWalker();

  /// Replaces the collected lines by those of the calling thread's stack: true if there are any. While walks are
  /// switched off it is false, and the lines stay. Where memory runs out the walk ends early, with the lines made so far.
  bool GenerateCallstack() noexcept;
  /// The lines, innermost frame first. Frames of the walker itself are left out where their files are known.
  const std::list<std::string>& GetCollected() const;

  /// Switches walks on or off and returns what was before. Off at first: no symbols are read until a host wants them.
  static bool InitSym(bool enable);
  static bool IsActive();

  /// What a line shows; all of it at first. A walk that has begun goes by the switches as they were. With neither file
  /// names nor line numbers a walk is quicker, since neither is looked up.
  static void IncludeFileLineNumber(bool include);
  static void IncludeFileName(bool include);
  /// The address of a frame that has no file name.
  static void IncludeSystemMemoryAddresses(bool include);
  static void IncludeThreadInfo(bool include);

 protected:
  /// The walk itself, whether or not walks are switched on.
  std::list<std::string> GenerateCallstackImpl(const StackWalkerConfig& config);

 private:
  static StackWalkerConfig& GetStackWalkerConfig();

  std::list<std::string> m_collected;
};
