// How processes of Linux are read where their first thread has ended, where a fork stands between, and where they are
// hidden.
#ifndef __linux__
#error "This file is for Linux."
#endif

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>
#include <thread>

#include "base/ProcText.h"
#include "qilsys/MonitoredProcess.h"
#include "qilsys/QuillonException.h"
#include "support/Eventually.h"
#include "system/TextFile_linux.h"

namespace qilsys::test {
namespace {

constexpr std::size_t BlockBytes = 32U << 20;

/// Private memory that is touched at once and given back to the system at the end.
class Block {
 public:
  Block()
      : m_memory(mmap(nullptr, BlockBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0)) {
    std::memset(m_memory, 1, BlockBytes);
  }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { munmap(m_memory, BlockBytes); }

 private:
  void* m_memory;
};

/// A child that runs a function and ends with its result.
class ForkedChild {
 public:
  explicit ForkedChild(const std::function<int()>& act) : m_pid(fork()) {
    if (m_pid == 0) _exit(act());
  }
  ForkedChild(const ForkedChild&) = delete;
  ForkedChild& operator=(const ForkedChild&) = delete;
  ~ForkedChild() {
    if (m_pid > 0) Wait();
  }

  unsigned int Pid() const { return static_cast<unsigned int>(m_pid); }
  void* Handle() const { return reinterpret_cast<void*>(std::uintptr_t{Pid()}); }

  int Wait() {
    int status = 0;
    while (waitpid(m_pid, &status, 0) == -1 && errno == EINTR) continue;
    m_pid = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t m_pid;
};

/// A pipe that carries single bytes between a test and its child.
class Bell {
 public:
  Bell() { EXPECT_EQ(pipe(m_ends.data()), 0); }
  Bell(const Bell&) = delete;
  Bell& operator=(const Bell&) = delete;
  ~Bell() {
    close(m_ends[0]);
    close(m_ends[1]);
  }

  void Ring() const { EXPECT_EQ(write(m_ends[1], "!", 1), 1); }
  void Await() const {
    char byte = 0;
    EXPECT_EQ(read(m_ends[0], &byte, 1), 1);
  }

 private:
  std::array<int, 2> m_ends{};
};

bool FirstThreadHasEnded() {
  return base::ValueOf(system::ReadTextFile("/proc/self/status"), "State").value_or("").starts_with("\tZ");
}

// Never comes back: `rest` runs on a thread of its own, and its result ends the process.
[[noreturn]] void EndFirstThreadBut(const std::function<int()>& rest) {
  std::thread([rest] {
    Eventually(FirstThreadHasEnded);
    _exit(rest());
  }).detach();
  syscall(SYS_exit, 0);
  std::abort();
}

TEST(MonitoredProcessLinuxTest, AProcessWhoseFirstThreadHasEndedStillHasItsMemory) {
  const Bell ended;
  const Bell looked;
  ForkedChild child([&] {
    static const Block StatBlock;
    // Made by the first thread, whose status it therefore opens.
    static const MonitoredProcess s_self;
    if (s_self.GetMemoryUsage() < BlockBytes) return 1;
    EndFirstThreadBut([&] {
      const bool isSeen = s_self.GetMemoryUsage() >= BlockBytes && MonitoredProcess().GetMemoryUsage() >= BlockBytes &&
                          GetCurrentProcessMemoryInfo().PrivateUsage >= BlockBytes;
      ended.Ring();
      looked.Await();
      return isSeen ? 0 : 2;
    });
  });
  ended.Await();
  const MonitoredProcess watched(child.Pid());
  EXPECT_TRUE(watched.IsRunning());
  EXPECT_GE(watched.GetMemoryUsage(), BlockBytes);
  EXPECT_GE(GetProcessMemoryInfo(child.Handle()).PrivateUsage, BlockBytes);
  looked.Ring();
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_EQ(watched.GetMemoryUsage(), 0U);
}

TEST(MonitoredProcessLinuxTest, AWatchedProcessMayLoseItsFirstThread) {
  const Bell watches;
  const Bell ended;
  const Bell looked;
  ForkedChild child([&]() -> int {
    static const Block StatBlock;
    watches.Await();
    EndFirstThreadBut([&] {
      ended.Ring();
      looked.Await();
      return 0;
    });
  });
  const MonitoredProcess watched(child.Pid());
  watches.Ring();
  ended.Await();
  EXPECT_GE(watched.GetMemoryUsage(), BlockBytes);
  looked.Ring();
  EXPECT_EQ(child.Wait(), 0);
}

TEST(MonitoredProcessLinuxTest, AfterAForkTheChildReadsItselfAndNotItsParent) {
  auto block = std::make_unique<Block>();
  const MonitoredProcess self;
  ForkedChild child([&] {
    const unsigned long long before = self.GetMemoryUsage();
    block.reset();
    const bool isOwn = self.GetMemoryUsage() + BlockBytes / 2 < before;
    return isOwn && MonitoredProcess().GetMemoryUsage() + BlockBytes / 2 < before ? 0 : 1;
  });
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_GE(self.GetMemoryUsage(), BlockBytes);
}

TEST(MonitoredProcessLinuxTest, AThreadIsNoProcess) {
  const Bell known;
  const Bell asked;
  std::atomic<unsigned int> id = 0;
  std::thread thread([&] {
    id = static_cast<unsigned int>(gettid());
    known.Ring();
    asked.Await();
  });
  known.Await();
  EXPECT_THROW(MonitoredProcess{id}, QuillonException);
  EXPECT_FALSE(MonitoredProcess::IsRunning(id));
  EXPECT_EQ(GetProcessMemoryInfo(reinterpret_cast<void*>(std::uintptr_t{id})).WorkingSetSize, 0U);
  asked.Ring();
  thread.join();
}

// Nothing of other processes is to be seen where their folders are hidden, as by the option hidepid of /proc.
constexpr int CantHide = 77;

int HideProcesses() {
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return CantHide;
  return mount("none", "/proc", "tmpfs", 0, nullptr) == 0 ? 0 : CantHide;
}

TEST(MonitoredProcessLinuxTest, AProcessWhoseMemoryMayNotBeReadCantBeWatched) {
  ForkedChild child([] {
    if (HideProcesses() != 0) return CantHide;
    const auto parent = static_cast<unsigned int>(getppid());
    if (!MonitoredProcess::IsRunning(parent)) return 1;
    try {
      const MonitoredProcess watched(parent);
    } catch (const QuillonException&) {
      return 0;
    }
    return 2;
  });
  const int code = child.Wait();
  if (code == CantHide) GTEST_SKIP() << "left out: this system gives no process a view of its own of the file system";
  EXPECT_EQ(code, 0);
}

}  // namespace
}  // namespace qilsys::test
