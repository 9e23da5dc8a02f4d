#include "diagnostics/CrashDumpThreads_linux.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include "base/FileDescriptor_linux.h"
#include "base/ProcText.h"
#include "diagnostics/CrashDumpProc.h"
#include "diagnostics/FixedText.h"

namespace qilsys::diagnostics {

using base::FileDescriptor;
using base::Uninterrupted;

namespace {

// A thread that runs stops within microseconds; one in the kernel's uninterruptible sleep may never.
constexpr timespec Pause{0, 50'000};
constexpr int MostPauses = 20'000;

/// What the kernel gives for an entry of a folder, up to the name.
struct FolderEntry {
  std::uint64_t inode;
  std::int64_t offset;
  std::uint16_t bytes;
  std::uint8_t type;
};
constexpr std::size_t NameOffset = 19;

/// Calls `visit` with the number of each thread. By the system call itself, since opendir takes memory from the C heap.
template <class TVisit>
void ForEachThread(pid_t process, std::pmr::memory_resource& memory, TVisit visit) {
  FixedText<64> path;
  path << "/proc/" << process << "/task";
  const FileDescriptor folder(Uninterrupted([&] { return open(path.CStr(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  std::pmr::vector<char> buffer(std::size_t{1} << 15, &memory);
  for (;;) {
    const long got = syscall(SYS_getdents64, folder.Get(), buffer.data(), buffer.size());
    if (got <= 0) return;
    for (const char* at = buffer.data(); at < buffer.data() + got;) {
      FolderEntry entry;
      std::memcpy(&entry, at, sizeof entry);
      // "." and ".." are no numbers.
      if (const auto thread = base::WholeNumber(at + NameOffset)) visit(static_cast<pid_t>(*thread));
      at += entry.bytes;
    }
  }
}

/// Whether a thread still runs, or could.
bool IsAlive(pid_t process, pid_t thread) {
  FixedText<64> path;
  path << "/proc/" << process << "/task/" << thread << "/stat";
  const FileDescriptor file(Uninterrupted([&] { return open(path.CStr(), O_RDONLY | O_CLOEXEC); }));
  char text[512];
  const ssize_t length = Uninterrupted([&] { return read(file.Get(), text, sizeof text); });
  if (length <= 0) return false;
  const auto stat = ParseProcessStat({text, static_cast<std::size_t>(length)});
  return stat && stat->state != 'Z' && stat->state != 'X';
}

/// Of a thread that stands still: the signal that made it, or 0 where it was we. Nothing while it runs or if it is gone.
std::optional<int> StopOf(pid_t thread) {
  siginfo_t info;
  if (ptrace(PTRACE_GETSIGINFO, thread, nullptr, &info) != 0) return std::nullopt;
  return info.si_code >> 8 == PTRACE_EVENT_STOP ? 0 : info.si_signo;
}

enum class Held { Yes, Gone, NotInTime };

/// The kernel is asked rather than waited for: its news may go to another thread that waits for all children at once, and
/// some threads never stop.
Held WaitForStop(pid_t thread, int& signal) {
  for (int i = 0; i < MostPauses; ++i) {
    int status = 0;
    const bool hasNews = waitpid(thread, &status, __WALL | WNOHANG) == thread;
    if (hasNews && !WIFSTOPPED(status)) return Held::Gone;
    if (const auto stop = StopOf(thread)) {
      signal = *stop;
      return Held::Yes;
    }
    if (!hasNews) {
      if (ptrace(PTRACE_INTERRUPT, thread, nullptr, nullptr) != 0) return Held::Gone;
      nanosleep(&Pause, nullptr);
    }
  }
  return Held::NotInTime;
}

}  // namespace

HeldThreads::HeldThreads(pid_t process, std::pmr::memory_resource& memory)
    : m_threads(&memory), m_restless(&memory), m_memory(memory) {
  // A thread that we have not met yet may start another one behind our back, and the kernel may pass over one in a folder
  // that changes: all are held when two walks in a row have met no new one.
  for (int quiet = 0; quiet < 2; ++quiet) {
    if (HoldNewOnes(process)) quiet = -1;
  }
  if (m_isRefused) Release();
}

HeldThreads::~HeldThreads() { Release(); }

void HeldThreads::Release() {
  for (const HeldThread& thread : m_threads) {
    ptrace(PTRACE_DETACH, thread.id, nullptr, reinterpret_cast<void*>(std::intptr_t{thread.signal}));
  }
  m_threads.clear();
}

void HeldThreads::PutFirst(pid_t thread) {
  const auto at = std::ranges::find(m_threads, thread, &HeldThread::id);
  if (at != m_threads.end()) std::rotate(m_threads.begin(), at, at + 1);
}

bool HeldThreads::HoldNewOnes(pid_t process) {
  const std::size_t before = m_threads.size() + m_restless.size();
  ForEachThread(process, m_memory, [&](pid_t thread) {
    if (!IsKnown(thread)) Hold(process, thread);
  });
  return m_threads.size() + m_restless.size() != before;
}

bool HeldThreads::IsKnown(pid_t thread) const {
  return std::ranges::find(m_threads, thread, &HeldThread::id) != m_threads.end() ||
         std::ranges::find(m_restless, thread) != m_restless.end();
}

void HeldThreads::Hold(pid_t process, pid_t thread) {
  if (ptrace(PTRACE_SEIZE, thread, nullptr, nullptr) != 0) {
    // The kernel refuses those that have ended too.
    m_isRefused = m_isRefused || IsAlive(process, thread);
    return;
  }
  int signal = 0;
  const Held held = WaitForStop(thread, signal);
  if (held == Held::Yes) m_threads.push_back({thread, signal});
  if (held == Held::NotInTime) m_restless.push_back(thread);
}

}  // namespace qilsys::diagnostics
