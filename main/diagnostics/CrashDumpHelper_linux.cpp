#include "diagnostics/CrashDumpHelper_linux.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <new>
#include <thread>

#include "base/FileDescriptor_linux.h"
#include "diagnostics/MappedMemory_linux.h"

// There where ThreadSanitizer is in the process, whoever has been built with it.
extern "C" [[gnu::weak]] void __tsan_acquire(void* address);

namespace qilsys::diagnostics {

using base::Uninterrupted;

namespace {

constexpr std::size_t FirstBlockBytes = std::size_t{1} << 20;

DumpOutcome WriteWithMemoryOfKernel(const DumpRequest& request, void (*giveUp)()) {
  MappedMemory mapped(giveUp);
  std::pmr::monotonic_buffer_resource memory(FirstBlockBytes, &mapped);
  return WriteCore(request, memory);
}

/// By the system call itself: nothing of the host, or of a tool that looks for leaks, runs at the end of a helper.
[[noreturn]] void EndHelper(DumpOutcome outcome) {
  for (;;) syscall(SYS_exit_group, static_cast<int>(outcome));
}

/// A copy of this process with the calling thread alone. The C library's fork waits for locks that the thread may hold
/// itself where a signal has interrupted it, and runs the host's own hooks. A child that sends no signal at its end also
/// stays unseen by the host, whose wait for any child would take it else. ThreadSanitizer has to know of a fork.
pid_t Fork() {
  if (__tsan_acquire) return fork();
  return static_cast<pid_t>(syscall(SYS_clone, 0, nullptr, nullptr, nullptr, 0));
}

[[noreturn]] void RunHelper(const DumpRequest& request, pid_t parent) {
  // Nobody would rename what is written.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) EndHelper(DumpOutcome::Failed);
  EndHelper(WriteWithMemoryOfKernel(request, [] { EndHelper(DumpOutcome::Failed); }));
}

/// Allows the children of this process to trace it, on systems where otherwise only ancestors may. Whom the host has
/// allowed is told by nobody, so afterwards nobody is.
class TracingByChildren {
 public:
  TracingByChildren() : m_isAllowed(prctl(PR_SET_PTRACER, getpid()) == 0) {}
  ~TracingByChildren() { prctl(PR_SET_PTRACER, 0); }
  TracingByChildren(const TracingByChildren&) = delete;
  TracingByChildren& operator=(const TracingByChildren&) = delete;

  /// False on systems that know no such rule.
  bool IsAllowed() const { return m_isAllowed; }

 private:
  const bool m_isAllowed;
};

}  // namespace

DumpOutcome WriteCoreByHelper(const DumpRequest& request) {
  const pid_t self = getpid();
  const pid_t helper = Fork();
  if (helper == 0) RunHelper(request, self);
  int status = 0;
  const bool hasEnded = helper > 0 && Uninterrupted([&] { return waitpid(helper, &status, __WALL); }) == helper;
  return hasEnded && WIFEXITED(status) ? static_cast<DumpOutcome>(WEXITSTATUS(status)) : DumpOutcome::Failed;
}

DumpOutcome WriteCoreByThread(const DumpRequest& request) {
  DumpOutcome outcome = DumpOutcome::Failed;
  try {
    // At its end the kernel lets go of all that it traces.
    std::thread([&] {
      try {
        outcome = WriteWithMemoryOfKernel(request, [] { throw std::bad_alloc(); });
      } catch (const std::exception&) {
        outcome = DumpOutcome::Failed;
      }
    }).join();
  } catch (const std::exception&) {
    outcome = DumpOutcome::Failed;
  }
  return outcome;
}

DumpOutcome WriteCoreSomehow(const DumpRequest& request) {
  const DumpOutcome outcome = WriteCoreByHelper(request);
  if (outcome != DumpOutcome::Refused) return outcome;
  if (request.process != getpid()) return WriteCoreByThread(request);
  const TracingByChildren allowed;
  return allowed.IsAllowed() ? WriteCoreByHelper(request) : DumpOutcome::Refused;
}

}  // namespace qilsys::diagnostics
