// The sibling for Windows is MonitoredProcess_win.cpp.
#include "monitor/MonitoredProcess_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <string>

#include "monitor/ProcParse.h"

namespace {

/// Owns one file descriptor; -1 is none.
class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) : m_fd(fd) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (m_fd >= 0) close(m_fd);
  }

  bool IsOpen() const { return m_fd >= 0; }
  int Get() const { return m_fd; }

 private:
  int m_fd;
};

template <class TCall>
auto Uninterrupted(TCall call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

/// The file's text, empty if it can't be read. These files are short; a longer one is cut, far behind what is wanted.
std::string ReadSmallFile(const std::string& path) {
  const FileDescriptor file(Uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
  if (!file.IsOpen()) return {};
  std::string text(16384, '\0');
  std::size_t length = 0;
  while (length < text.size()) {
    const ssize_t got = Uninterrupted([&] { return read(file.Get(), text.data() + length, text.size() - length); });
    if (got <= 0) break;
    length += static_cast<std::size_t>(got);
  }
  text.resize(length);
  return text;
}

ProcessMemoryInfo ReadMemoryOf(const std::string& process) {
  const std::string directory = "/proc/" + process;
  const std::optional<ProcessMemoryInfo> counters = proc::MemoryOfStatus(ReadSmallFile(directory + "/status"));
  if (!counters) return {};
  ProcessMemoryInfo info = *counters;
  info.PageFaultCount = proc::PageFaultsOfStat(ReadSmallFile(directory + "/stat")).value_or(0);
  return info;
}

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

class OwnProcess : public IProcessHandle {
 public:
  std::optional<ProcessTimesSample> ReadTimes() const override { return ReadTimesOf(CLOCK_PROCESS_CPUTIME_ID); }
  ProcessMemoryInfo ReadMemory() const override { return ReadMemoryOf("self"); }
  bool IsAlive() const override { return true; }
};

class OtherProcess : public IProcessHandle {
 public:
  OtherProcess(pid_t pid, int fd) : m_pid(pid), m_fd(fd) {}

  bool IsOpen() const { return m_fd.IsOpen(); }

  // A reading goes by the pid, so it is only good if the process was still there after it: the pid could not be used
  // again before that.
  std::optional<ProcessTimesSample> ReadTimes() const override {
    clockid_t clock{};
    if (clock_getcpuclockid(m_pid, &clock) != 0) return std::nullopt;
    const std::optional<ProcessTimesSample> sample = ReadTimesOf(clock);
    return IsAlive() ? sample : std::nullopt;
  }

  ProcessMemoryInfo ReadMemory() const override {
    const ProcessMemoryInfo info = ReadMemoryOf(std::to_string(m_pid));
    return IsAlive() ? info : ProcessMemoryInfo();
  }

  // A pidfd becomes readable when the process ends, whether or not its parent has taken note of it.
  bool IsAlive() const override {
    pollfd request{m_fd.Get(), POLLIN, 0};
    return Uninterrupted([&] { return poll(&request, 1, 0); }) == 0;
  }

 private:
  pid_t m_pid;
  FileDescriptor m_fd;
};

std::optional<std::uint64_t> ReadFrequency(long processor, const char* file) {
  return proc::SingleNumber(
      ReadSmallFile("/sys/devices/system/cpu/cpu" + std::to_string(processor) + "/cpufreq/" + file));
}

}  // namespace

std::unique_ptr<IProcessHandle> CurrentProcess() { return std::make_unique<OwnProcess>(); }

std::unique_ptr<IProcessHandle> OpenProcessToWatch(unsigned int pid) {
  if (pid == 0 || pid > static_cast<unsigned int>(std::numeric_limits<pid_t>::max())) return nullptr;
  const auto systemPid = static_cast<pid_t>(pid);
  auto handle = std::make_unique<OtherProcess>(systemPid, static_cast<int>(syscall(SYS_pidfd_open, systemPid, 0)));
  return handle->IsOpen() ? std::move(handle) : nullptr;
}

std::unique_ptr<IProcessHandle> OpenProcessToWait(unsigned int pid) { return OpenProcessToWatch(pid); }

unsigned int CountProcessors() {
  const long count = sysconf(_SC_NPROCESSORS_ONLN);
  return count > 0 ? static_cast<unsigned int>(count) : 0;
}

std::vector<ProcessorClock> ReadProcessorClocks() {
  std::vector<ProcessorClock> clocks;
  for (long i = 0; i < sysconf(_SC_NPROCESSORS_CONF); ++i) {
    const std::optional<std::uint64_t> current = ReadFrequency(i, "scaling_cur_freq");
    if (!current) continue;
    const std::optional<std::uint64_t> maximum = ReadFrequency(i, "cpuinfo_max_freq");
    if (maximum) clocks.push_back({*current, *maximum});
  }
  return clocks;
}

ProcessMemoryInfo GetProcessMemoryInfo(void* processHandle) {
  const auto pid = reinterpret_cast<std::uintptr_t>(processHandle);
  return pid != 0 ? ReadMemoryOf(std::to_string(pid)) : ProcessMemoryInfo();
}

ProcessMemoryInfo GetCurrentProcessMemoryInfo() { return ReadMemoryOf("self"); }
