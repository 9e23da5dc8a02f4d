/// The small questions that a program asks of its host.
#pragma once

#include <cstdint>
#include <functional>

#include "qilsys/Export.h"
#include "qilsys/TPathCore.h"
#include "qilsys/TStringCore.h"

namespace TSystem {

/// Memory of the machine, or of the part of it that this process may use where that is less.
struct MemoryInfo {
  /// Bytes free.
  std::uint64_t m_availablePhysical;
  /// Bytes in use: total less available, and 1 where that would be 0.
  std::uint64_t m_usedPhysical;
  /// Bytes in all.
  std::uint64_t m_totalPhysical;
  /// Bytes in a page.
  std::uint32_t m_pageSize;
  /// Percent of memory in use, 0 to 100.
  std::uint32_t m_memoryLoad;
};

QILSYS_API unsigned int ProcessID();
/// The system's own number of the calling thread.
QILSYS_API unsigned long long ThreadID();
/// The system's own sleep. Windows may end it up to one tick of its clock, 16 milliseconds, early.
QILSYS_API void Sleep(unsigned int milliseconds);

/// What the host's callback says, false without one.
QILSYS_API bool IsDesktopMainThread();
/// Stores the callback of IsDesktopMainThread and returns the one it replaces. Takes no lock: it belongs to start-up.
QILSYS_API std::function<bool()> SetDesktopMainThreadFunc(std::function<bool()> isMainThread);

/// The charset of the process's 8-bit text, such as "UTF-8". The same pointer on every call.
QILSYS_API char const* Local8BitEncoding();

// Where the files of the running program and its modules lie; paths of any length. Empty where there is none, or where
// the system can't tell. A module may be gone by the time its path is read: nothing here keeps one loaded.

/// The folder of the running program, or its file where that has no parent.
QILSYS_API TPathCore ExecutablePath();
QILSYS_API TPathCore ExecutableFilename();
/// The file of the module, of the program or of a library, that has `address` in it; of the program for null.
QILSYS_API TPathCore ModuleFilename(void const* address);
/// The folder of that file, or the file where that has no parent.
QILSYS_API TPathCore ModuleDirectory(void const* address);
/// The file of a loaded module by its filename; all else of `path` counts for nothing. Windows ignores case, and takes
/// the filename without ".dll".
QILSYS_API TPathCore ModulePath(TPathCore const& path);

/// Figures of now. Where the system gives none, all are zero but the used memory, which is 1, and the size of a page.
QILSYS_API MemoryInfo Memory() noexcept;
/// Whole milliseconds since the library was loaded; wraps after 49 days.
QILSYS_API unsigned int AppUpTime();
/// The text of the calling thread's last failed system call.
QILSYS_API TStringCore GetLastErrorString();
/// The name as text; nothing is demangled.
QILSYS_API TStringCore unmangleClassName(char const* name);

}  // namespace TSystem
