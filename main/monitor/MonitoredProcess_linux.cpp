// The sibling for Windows is MonitoredProcess_win.cpp.
#include "monitor/MonitoredProcess_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <limits>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>

#include "monitor/ProcParse.h"
#include "qilsys/MonitoredProcess.h"
#include "system/TextFile_linux.h"

namespace qilsys::monitor {

namespace {

using base::FileDescriptor;
using base::Uninterrupted;
using system::ReadTextFile;
using system::TextFile;

std::uint64_t HundredNanoseconds(const timespec& time) {
  return static_cast<std::uint64_t>(time.tv_sec) * 10'000'000 + static_cast<std::uint64_t>(time.tv_nsec) / 100;
}

std::optional<std::uint64_t> ReadClock(clockid_t clock) {
  timespec time{};
  if (clock_gettime(clock, &time) != 0) return std::nullopt;
  return HundredNanoseconds(time);
}

// The clock of a process does not part kernel time from user time; only their sum is ever used. The time of the reading
// is the monotonic clock's, so that setting the machine's clock is not taken for load.
std::optional<ProcessTimesSample> ReadTimesOf(clockid_t clock) {
  const std::optional<std::uint64_t> used = ReadClock(clock);
  const std::optional<std::uint64_t> wall = ReadClock(CLOCK_MONOTONIC);
  if (!used || !wall) return std::nullopt;
  return ProcessTimesSample{0, *used, *wall};
}

/// What finds a figure in the text of a status.
template <class T>
using Parse = std::optional<T> (*)(std::string_view);

/// The memory of the calling process, whose status stays open: a program that leaks descriptors and memory together must
/// still be able to see itself when it has run out of the former. Safe to use from any thread.
class OwnMemory {
 public:
  /// One object for all who hold one at a time, so that who comes later needs no descriptor.
  static std::shared_ptr<OwnMemory> Share();

  /// What `parse` finds in the status; it gives nothing for a thread that has ended.
  template <class T>
  std::optional<T> Read(Parse<T> parse) {
    // The descriptor shows the process that has opened it, to a child of that one too; and the lock may have been taken
    // at the fork by a thread that the child has not.
    if (!IsOfThisProcess()) return TextFile(StatusPath).Read(parse);
    const std::lock_guard lock(m_lock);
    std::optional<T> found = m_status.Read(parse);
    if (!found) {
      // Closed first, in case that no other descriptor can be had.
      m_status = TextFile();
      m_status = TextFile(StatusPath);
      found = m_status.Read(parse);
    }
    return found;
  }

 private:
  // That of the thread which asks: the first thread's, which is also the process's, is empty once that one has ended.
  static constexpr const char* StatusPath = "/proc/thread-self/status";

  bool IsOfThisProcess() const { return getpid() == m_process; }

  const pid_t m_process = getpid();
  std::mutex m_lock;
  TextFile m_status{StatusPath};
};

std::shared_ptr<OwnMemory> OwnMemory::Share() {
  static std::mutex s_lock;
  static std::weak_ptr<OwnMemory> s_shared;
  const std::lock_guard lock(s_lock);
  std::shared_ptr<OwnMemory> shared = s_shared.lock();
  if (!shared || !shared->IsOfThisProcess()) s_shared = shared = std::make_shared<OwnMemory>();
  return shared;
}

class OwnProcess : public IProcessHandle {
 public:
  std::optional<ProcessTimesSample> ReadTimes() const override { return ReadTimesOf(CLOCK_PROCESS_CPUTIME_ID); }
  std::uint64_t ReadPrivateBytes() override { return m_memory->Read(PrivateBytesOfStatus).value_or(0); }
  bool IsAlive() const override { return true; }

 private:
  std::shared_ptr<OwnMemory> m_memory = OwnMemory::Share();
};

/// The system knows no handle of a process by which all can be read: times and files go by the pid. The pidfd tells
/// whether the pid is still that of the process.
class OtherProcess : public IProcessHandle {
 public:
  explicit OtherProcess(pid_t pid) : m_pid(pid), m_pidfd(static_cast<int>(syscall(SYS_pidfd_open, pid, 0))) {}

  bool IsOpen() const { return m_pidfd.IsOpen(); }

  // A reading goes by the pid, so it is only good if the process was still there after it: the pid could not be used
  // again before that.
  std::optional<ProcessTimesSample> ReadTimes() const override {
    clockid_t clock{};
    if (clock_getcpuclockid(m_pid, &clock) != 0) return std::nullopt;
    const std::optional<ProcessTimesSample> sample = ReadTimesOf(clock);
    return IsAlive() ? sample : std::nullopt;
  }

  std::uint64_t ReadPrivateBytes() override { return ReadStatus(PrivateBytesOfStatus).value_or(0); }

  bool HasMemory() { return ReadStatus(PrivateBytesOfStatus).has_value(); }

  ProcessMemoryInfo ReadMemory() {
    std::optional<ProcessMemoryInfo> info = ReadStatus(MemoryOfStatus);
    if (!info) return {};
    info->PageFaultCount = PageFaultsOfStat(ReadTextFile(Folder() + "/stat")).value_or(0);
    return IsAlive() ? *info : ProcessMemoryInfo();
  }

  // A pidfd becomes readable when the process ends, whether or not its parent has taken note of it.
  bool IsAlive() const override {
    pollfd request{m_pidfd.Get(), POLLIN, 0};
    return m_pidfd.IsOpen() && Uninterrupted([&] { return poll(&request, 1, 0); }) == 0;
  }

 private:
  std::string Folder() const { return "/proc/" + std::to_string(m_pid); }

  // An open file stays with the thread for which it was opened, and shows nothing once that has ended.
  template <class T>
  std::optional<T> ReadStatus(Parse<T> parse) {
    const std::optional<T> found = m_status.Read(parse);
    return found ? found : ReadStatusOfAnyThread(parse);
  }

  // All threads show the memory of the process, while they live; the first one may end before the others.
  template <class T>
  std::optional<T> ReadStatusOfAnyThread(Parse<T> parse) {
    std::error_code error;
    for (std::filesystem::directory_iterator thread(Folder() + "/task", error), end; !error && thread != end;
         thread.increment(error)) {
      TextFile status((thread->path() / "status").c_str());
      const std::optional<T> found = status.Read(parse);
      if (!found) continue;
      if (!IsAlive()) break;
      m_status = std::move(status);
      return found;
    }
    return std::nullopt;
  }

  const pid_t m_pid;
  const FileDescriptor m_pidfd;
  TextFile m_status;
};

bool IsId(std::uintptr_t pid) {
  return pid != 0 && pid <= static_cast<std::uintptr_t>(std::numeric_limits<pid_t>::max());
}

/// Null if no process has the id.
std::unique_ptr<OtherProcess> Open(std::uintptr_t pid) {
  if (!IsId(pid)) return nullptr;
  auto process = std::make_unique<OtherProcess>(static_cast<pid_t>(pid));
  return process->IsOpen() ? std::move(process) : nullptr;
}

}  // namespace

std::unique_ptr<IProcessHandle> CurrentProcess() { return std::make_unique<OwnProcess>(); }

// A pidfd is given of any process; whether its memory may be read shows by reading it.
std::unique_ptr<IProcessHandle> OpenProcessToWatch(unsigned int pid) {
  std::unique_ptr<OtherProcess> process = Open(pid);
  return process && process->HasMemory() ? std::move(process) : nullptr;
}

bool IsProcessAlive(unsigned int pid) { return IsId(pid) && OtherProcess(static_cast<pid_t>(pid)).IsAlive(); }

unsigned int CountProcessors() {
  const long count = sysconf(_SC_NPROCESSORS_ONLN);
  return count > 0 ? static_cast<unsigned int>(count) : 0;
}

std::vector<ProcessorClock> ReadProcessorClocks() {
  const long count = sysconf(_SC_NPROCESSORS_CONF);
  return ProcessorClocksOf(count > 0 ? static_cast<unsigned int>(count) : 0,
                           [](const std::string& path) { return ReadTextFile("/sys/devices/system/cpu/" + path); });
}

}  // namespace qilsys::monitor

using namespace qilsys::monitor;

ProcessMemoryInfo GetProcessMemoryInfo(void* processHandle) {
  const auto pid = reinterpret_cast<std::uintptr_t>(processHandle);
  if (pid == static_cast<std::uintptr_t>(getpid())) return GetCurrentProcessMemoryInfo();
  const std::unique_ptr<OtherProcess> process = Open(pid);
  return process ? process->ReadMemory() : ProcessMemoryInfo();
}

ProcessMemoryInfo GetCurrentProcessMemoryInfo() {
  std::optional<ProcessMemoryInfo> info = OwnMemory::Share()->Read(MemoryOfStatus);
  if (!info) return {};
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  info->PageFaultCount = static_cast<std::uint32_t>(usage.ru_minflt + usage.ru_majflt);
  return *info;
}
