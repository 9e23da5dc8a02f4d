// A core is written under a name of its own and takes the wanted one when it is whole. The sibling for Windows is
// CrashDump_win.cpp.
#include "qilsys/CrashDump.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <fcntl.h>
#include <linux/limits.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <mutex>

#include "base/FileDescriptor_linux.h"
#include "diagnostics/CrashDumpHelper_linux.h"
#include "diagnostics/FixedText.h"
#include "diagnostics/MappedMemory_linux.h"
#include "qilsys/CodePoint.h"
#include "units/Utf.h"

namespace qilsys::diagnostics {

using base::FileDescriptor;
using base::Uninterrupted;

namespace {

// Of names that a crash has left behind.
constexpr int MostAttempts = 100;

// A second helper could not trace what the first one holds.
constinit std::mutex g_oneAtATime;

using PathText = FixedText<PATH_MAX>;

/// The two names of a dump. They are long, and a signal handler's stack is short, so they don't stand there.
struct DumpPaths {
  PathText wanted;
  PathText temporary;
};

template <class Unit>
void Convert(const Unit* path, PathText& text) {
  int units = 0;
  for (; *path != 0 && text.IsWhole(); path += units) {
    char utf8[4];
    const char* const end = units::WriteUtf8(CodePoint::GetCodePoint(path, &units), utf8);
    text << std::string_view(utf8, static_cast<std::size_t>(end - utf8));
  }
}

/// No signal reaches this thread: neither the host's handlers in the forked helper, nor a second dump in the midst of the
/// first one.
class BlockedSignals {
 public:
  BlockedSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_before);
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t m_before{};
};

/// Whether a dump may take the name: only a file, or a link to one, is replaced, never a device.
bool MayReplace(const char* path) {
  struct stat found;
  return lstat(path, &found) != 0 || S_ISREG(found.st_mode) || S_ISLNK(found.st_mode);
}

/// Makes a file in the same folder, readable by its owner alone, under a name that says what it is.
FileDescriptor MakeTemporary(DumpPaths& paths) {
  const std::string_view wanted = paths.wanted.View();
  const std::string_view folder = wanted.substr(0, wanted.rfind('/') + 1);
  for (int i = 0; i < MostAttempts; ++i) {
    paths.temporary = PathText();
    paths.temporary << folder << ".unfinished-dump-" << getpid() << "-" << i;
    if (!paths.temporary.IsWhole()) return FileDescriptor();
    FileDescriptor file(
        Uninterrupted([&] { return open(paths.temporary.CStr(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600); }));
    if (file.IsOpen() || errno != EEXIST) return file;
  }
  return FileDescriptor();
}

pid_t ProcessOf(void* process, unsigned long processId) {
  const auto handle = reinterpret_cast<std::uintptr_t>(process);
  const std::uintptr_t id = handle != 0 ? handle : processId;
  return id <= INT_MAX ? static_cast<pid_t>(id) : 0;
}

/// Writes the dump under the temporary name.
bool WriteTemporary(pid_t process, DumpPaths& paths, _MINIDUMP_TYPE type) {
  const FileDescriptor file = MakeTemporary(paths);
  if (!file.IsOpen()) return false;
  const bool isOwn = process == getpid();
  const DumpRequest request{.process = process,
                            .firstThread = isOwn ? static_cast<pid_t>(syscall(SYS_gettid)) : process,
                            .file = file.Get(),
                            .content = ContentOf(type)};
  // The rights that were asked for may have been narrowed to nothing by the process's mask.
  const bool isWhole = fchmod(file.Get(), 0600) == 0 && WriteCoreSomehow(request) == DumpOutcome::Whole;
  if (!isWhole) unlink(paths.temporary.CStr());
  return isWhole;
}

/// Gives the errors of the system's calls up, as a signal handler has to.
class KeptErrno {
 public:
  KeptErrno() = default;
  ~KeptErrno() { errno = m_before; }
  KeptErrno(const KeptErrno&) = delete;
  KeptErrno& operator=(const KeptErrno&) = delete;

 private:
  const int m_before = errno;
};

bool WriteWanted(pid_t process, DumpPaths& paths, _MINIDUMP_TYPE type) {
  if (process <= 0 || !paths.wanted.IsWhole() || !MayReplace(paths.wanted.CStr())) return false;
  if (!WriteTemporary(process, paths, type)) return false;
  if (rename(paths.temporary.CStr(), paths.wanted.CStr()) == 0) return true;
  unlink(paths.temporary.CStr());
  return false;
}

template <class Unit>
int WriteDump(void* process, unsigned long processId, const Unit* path, _MINIDUMP_TYPE type) {
  if (path == nullptr) return 0;
  const KeptErrno keptErrno;
  // Before the lock: a signal handler that wants a dump must not wait for the thread that it has interrupted.
  const BlockedSignals blocked;
  const std::lock_guard lock(g_oneAtATime);
  const MappedObject<DumpPaths> paths;
  if (!paths.IsThere()) return 0;
  Convert(path, (*paths).wanted);
  return WriteWanted(ProcessOf(process, processId), *paths, type) ? 1 : 0;
}

}  // namespace

int WriteForeignCrashDump(void* process, unsigned long processId, const TForeignUnit* path, _MINIDUMP_TYPE type) {
  return WriteDump(process, processId, path, type);
}

}  // namespace qilsys::diagnostics

int WriteCrashDump(void* process, unsigned long processId, const TCodeUnit* path, _MINIDUMP_TYPE type) {
  return qilsys::diagnostics::WriteDump(process, processId, path, type);
}
