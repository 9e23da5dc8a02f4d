/// Writing a dump of a process into a file: the threads with their stacks and, if asked for, their memory.
///
/// On Windows the file is a minidump. On Linux it is an ELF core, which gdb and lldb open; docs/dumps.md tells what stands
/// in either, and how to look at it. `qilsys.h` leaves this header out: on Windows it brings in the system's own header of
/// dumps, as the system's enumeration can't be declared a second time.
#pragma once

#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"

#ifdef _WIN32

#include <windows.h>

#include <dbghelp.h>

#else

/// What a dump holds, with the values that Windows gives to the names. What has no counterpart on Linux changes nothing.
enum _MINIDUMP_TYPE : int {
  /// The stacks and registers of all threads, and the list of modules.
  MiniDumpNormal = 0x00000000,
  /// Also what the modules have written to their data.
  MiniDumpWithDataSegs = 0x00000001,
  /// All memory that can't be read from the files of the modules.
  MiniDumpWithFullMemory = 0x00000002,
  MiniDumpWithHandleData = 0x00000004,
  MiniDumpFilterMemory = 0x00000008,
  MiniDumpScanMemory = 0x00000010,
  MiniDumpWithUnloadedModules = 0x00000020,
  MiniDumpWithIndirectlyReferencedMemory = 0x00000040,
  MiniDumpFilterModulePaths = 0x00000080,
  MiniDumpWithProcessThreadData = 0x00000100,
  /// Also all private memory that can be written: the heaps.
  MiniDumpWithPrivateReadWriteMemory = 0x00000200,
  MiniDumpWithoutOptionalData = 0x00000400,
  MiniDumpWithFullMemoryInfo = 0x00000800,
  MiniDumpWithThreadInfo = 0x00001000,
  MiniDumpWithCodeSegs = 0x00002000,
  MiniDumpWithoutAuxiliaryState = 0x00004000,
  MiniDumpWithFullAuxiliaryState = 0x00008000,
  MiniDumpWithPrivateWriteCopyMemory = 0x00010000,
  MiniDumpIgnoreInaccessibleMemory = 0x00020000,
  MiniDumpWithTokenInformation = 0x00040000,
  MiniDumpWithModuleHeaders = 0x00080000,
  MiniDumpFilterTriage = 0x00100000,
  MiniDumpWithAvxXStateContext = 0x00200000,
  MiniDumpWithIptTrace = 0x00400000,
  MiniDumpScanInaccessiblePartialPages = 0x00800000,
  MiniDumpValidTypeFlags = 0x00ffffff
};
using MINIDUMP_TYPE = _MINIDUMP_TYPE;

#endif

/// Writes a dump of a process, the own one or another, to `path`, in place of a file that stands there: non-zero if it is
/// whole. `process` is a handle of the process (on Linux its id, carried as a pointer); where it is null, `processId` says
/// which one. All threads of the process stand still meanwhile, and go on afterwards.
///
/// One dump at a time: others wait. Never raises. On Linux it allocates nothing and may be called by a signal handler, the
/// file is its owner's alone, and a dump that fails leaves what stood there as it was.
QILSYS_API int WriteCrashDump(void* process, unsigned long processId, const TCodeUnit* path, _MINIDUMP_TYPE type);

namespace qilsys::diagnostics {

/// The same for a path of the other unit type.
QILSYS_API int WriteForeignCrashDump(void* process, unsigned long processId, const TForeignUnit* path,
                                     _MINIDUMP_TYPE type);

}  // namespace qilsys::diagnostics

template <qilsys::ForeignUnit U>
int WriteCrashDump(void* process, unsigned long processId, const U* path, _MINIDUMP_TYPE type) {
  return qilsys::diagnostics::WriteForeignCrashDump(process, processId, path, type);
}
