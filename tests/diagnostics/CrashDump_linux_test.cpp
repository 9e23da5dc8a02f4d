// What a core holds, by the word of the debuggers that open it; and what is left where there is none.
#include "qilsys/CrashDump.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "base/FileDescriptor_linux.h"
#include "diagnostics/CrashDumpHelper_linux.h"
#include "diagnostics/DumpFolder.h"
#include "diagnostics/MappedMemory_linux.h"
#include "support/FailingAllocations.h"
#include "support/Latch.h"
#include "support/RowName.h"

// There under ThreadSanitizer alone.
extern "C" [[gnu::weak]] void __tsan_acquire(void* address);

namespace qilsys::test {
namespace {

using diagnostics::DumpOutcome;
using diagnostics::DumpRequest;

int Dump(unsigned long processId, const std::filesystem::path& path, _MINIDUMP_TYPE type = MiniDumpNormal) {
  return WriteCrashDump(nullptr, processId, path.u16string().c_str(), type);
}

int DumpOwn(const std::filesystem::path& path, _MINIDUMP_TYPE type = MiniDumpNormal) {
  return Dump(static_cast<unsigned long>(getpid()), path, type);
}

/// The bits of a file's rights.
unsigned int ModeOf(const std::filesystem::path& path) {
  struct stat found {};
  stat(path.c_str(), &found);
  return found.st_mode & 07777;
}

/// Bytes of the file, and those that it takes on the disk.
std::pair<std::uint64_t, std::uint64_t> SizesOf(const std::filesystem::path& path) {
  struct stat found {};
  stat(path.c_str(), &found);
  return {found.st_size, found.st_blocks * 512};
}

bool IsUnderSanitizer() { return !FailingAllocations::SeesOperatorNew(); }

/// The output of a program to its end.
std::string OutputOf(const std::vector<std::string>& words) {
  SpawnedProcess process(words);
  std::string output;
  EXPECT_TRUE(Eventually([&] {
    const auto more = process.Read(std::chrono::milliseconds(100));
    output += more.value_or("");
    return !more;
  }));
  return output;
}

struct Debugger {
  const char* name;
  const char* path;
  /// Shows the dump: the stacks of all threads, the modules, and the variables of RestOfTheBaker's frame.
  std::string (*show)(const std::string& core);
};

std::string ShowByGdb(const std::string& core) {
  return OutputOf({"/usr/bin/gdb", "-batch", "-nx", "-ex", "set width 0", "-ex", "thread apply all backtrace", "-ex",
                   "info sharedlibrary", "-ex", "thread apply all -s -q frame function RestOfTheBaker", "-ex",
                   "thread apply all -s -q frame apply all -s -q info locals", QILSYS_DUMP_TARGET, core});
}

std::string OutputOfLldb(const std::string& core, const std::vector<std::string>& commands) {
  std::vector<std::string> words{"/usr/bin/lldb", "--batch", "--no-lldbinit", "--script-language", "none"};
  words.insert(words.end(), {"-o", "target create " QILSYS_DUMP_TARGET " --core " + core});
  for (const std::string& command : commands) {
    words.insert(words.end(), {"-o", command});
  }
  return OutputOf(words);
}

// It shows variables of the frame that it stands on only, and gives up at a frame that there is not.
std::string ShowByLldb(const std::string& core) {
  const std::string shown = OutputOfLldb(core, {"thread backtrace all", "image list"});
  std::istringstream lines(shown);
  std::string thread;
  std::smatch match;
  for (std::string line; std::getline(lines, line);) {
    if (std::regex_search(line, match, std::regex("thread #([0-9]+)"))) thread = match[1];
    if (std::regex_search(line, match, std::regex("frame #([0-9]+):.*RestOfTheBaker"))) {
      return shown +
             OutputOfLldb(core, {"thread select " + thread, "frame select " + match[1].str(), "frame variable"});
    }
  }
  return shown;
}

class CrashDumpDebugger : public testing::TestWithParam<Debugger> {
 protected:
  void SetUp() override {
    if (access(GetParam().path, X_OK) != 0) GTEST_SKIP() << GetParam().path << " is not installed";
  }

  static void ExpectThreads(const std::string& shown, const std::string& innermostOfMain) {
    for (const std::string& name : {std::string("RestOfTheBaker"), std::string("RestOfTheMiller"),
                                    std::string("RestOfTheTailor"), innermostOfMain}) {
      EXPECT_NE(shown.find(name), std::string::npos) << name << " in\n" << shown;
    }
  }

  static void ExpectLibraries(const std::string& shown) {
    for (const char* name : {"libqilsys.so", "libstdc++.so", "libc.so", "ld-linux"}) {
      EXPECT_NE(shown.find(name), std::string::npos) << name << " in\n" << shown;
    }
  }

  const DumpFolder m_folder;
};

TEST_P(CrashDumpDebugger, ShowsThreadsAndLibrariesOfTheCallingProcess) {
  const std::filesystem::path core = m_folder / "own.core";
  DumpTarget target({"dump", core, "0"});
  ASSERT_TRUE(target.Says("dumped"));
  const std::string shown = GetParam().show(core);
  ExpectThreads(shown, "DumpOfTheMain");
  ExpectLibraries(shown);
}

TEST_P(CrashDumpDebugger, ShowsThreadsAndLibrariesOfAnotherProcess) {
  const std::filesystem::path core = m_folder / "other.core";
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  ASSERT_NE(Dump(target.Process().Pid(), core), 0);
  const std::string shown = GetParam().show(core);
  ExpectThreads(shown, "RestOfTheMain");
  ExpectLibraries(shown);
}

TEST_P(CrashDumpDebugger, ShowsVariablesOfAFullDump) {
  const std::filesystem::path core = m_folder / "full.core";
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  ASSERT_NE(Dump(target.Process().Pid(), core, MiniDumpWithFullMemory), 0);
  const std::string shown = GetParam().show(core);
  ExpectThreads(shown, "RestOfTheMain");
  ExpectLibraries(shown);
  EXPECT_NE(shown.find("loaves = 1101"), std::string::npos) << shown;
}

const Debugger Debuggers[] = {{"gdb", "/usr/bin/gdb", &ShowByGdb}, {"lldb", "/usr/bin/lldb", &ShowByLldb}};

INSTANTIATE_TEST_SUITE_P(With, CrashDumpDebugger, testing::ValuesIn(Debuggers), RowName<Debugger>);

TEST(CrashDumpFile, IsItsOwnersAlone) {
  const DumpFolder folder;
  const mode_t before = umask(0777);
  EXPECT_NE(DumpOwn(folder / "narrow.core"), 0);
  umask(0);
  EXPECT_NE(DumpOwn(folder / "wide.core"), 0);
  umask(before);
  EXPECT_EQ(ModeOf(folder / "narrow.core"), 0600u);
  EXPECT_EQ(ModeOf(folder / "wide.core"), 0600u);
}

TEST(CrashDumpFile, ReplacesRightsToo) {
  const DumpFolder folder;
  std::ofstream(folder / "own.core") << "what stood there";
  chmod((folder / "own.core").c_str(), 0644);
  EXPECT_NE(DumpOwn(folder / "own.core"), 0);
  EXPECT_EQ(ModeOf(folder / "own.core"), 0600u);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"own.core"});
}

TEST(CrashDumpFile, ReplacesALinkAndNotWhatItLeadsTo) {
  const DumpFolder folder;
  std::ofstream(folder / "target") << "kept";
  std::filesystem::create_symlink(folder / "target", folder / "own.core");
  EXPECT_NE(DumpOwn(folder / "own.core"), 0);
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "own.core"));
  EXPECT_EQ(BytesOfFile(folder / "target"), "kept");
}

TEST(CrashDumpFile, NeverReplacesWhatIsNoFile) {
  const DumpFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  std::filesystem::create_directory(folder / "folder");
  EXPECT_EQ(DumpOwn(folder / "pipe"), 0);
  EXPECT_EQ(DumpOwn(folder / "folder"), 0);
  EXPECT_EQ(WriteCrashDump(nullptr, static_cast<unsigned long>(getpid()), u"", MiniDumpNormal), 0);
  EXPECT_TRUE(std::filesystem::is_fifo(folder / "pipe"));
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"folder", "pipe"}));
}

TEST(CrashDumpFile, TakesTheLongestNameOfAFolderAndNoLongerOne) {
  const DumpFolder folder;
  EXPECT_NE(DumpOwn(folder / std::string(NAME_MAX, 'n').c_str()), 0);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{std::string(NAME_MAX, 'n')});
  EXPECT_EQ(DumpOwn(folder / std::string(NAME_MAX + 1, 'n').c_str()), 0);
  EXPECT_EQ(DumpOwn(std::string(PATH_MAX, '/') + "own.core"), 0);
  EXPECT_EQ(folder.Names().size(), 1u);
}

TEST(CrashDumpFile, PassesOverNamesThatACrashHasLeftBehind) {
  const DumpFolder folder;
  const std::string left = ".unfinished-dump-" + std::to_string(getpid()) + "-0";
  std::ofstream(folder / left.c_str()) << "left";
  EXPECT_NE(DumpOwn(folder / "own.core"), 0);
  EXPECT_EQ(BytesOfFile(folder / left.c_str()), "left");
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{left, "own.core"}));
}

TEST(CrashDumpFile, KeepsErrno) {
  const DumpFolder folder;
  errno = 4321;
  DumpOwn(folder / "no/own.core");
  EXPECT_EQ(errno, 4321);
  DumpOwn(folder / "own.core");
  EXPECT_EQ(errno, 4321);
}

/// Runs in a child of this process; true if it gives true there.
bool HoldsInChild(const std::function<bool()>& run) {
  const pid_t child = fork();
  if (child == 0) _exit(run() ? 0 : 1);
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(CrashDumpFile, ThatGrowsTooLargeIsGoneAndTheOldOneStays) {
  const DumpFolder folder;
  std::ofstream(folder / "own.core") << "what stood there";
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  EXPECT_TRUE(HoldsInChild([&] {
    const rlimit small{65536, 65536};
    return setrlimit(RLIMIT_FSIZE, &small) == 0 && Dump(target.Process().Pid(), folder / "own.core") == 0;
  }));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"own.core"});
  EXPECT_EQ(BytesOfFile(folder / "own.core"), "what stood there");
}

TEST(CrashDumpProcess, ThatIsTracedByAnotherFails) {
  const DumpFolder folder;
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  const pid_t traced = fork();
  if (traced == 0) {
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    const char go = '!';
    if (write(ends[1], &go, 1) != 1) _exit(1);
    for (;;) pause();
  }
  char go = 0;
  ASSERT_EQ(read(ends[0], &go, 1), 1);
  EXPECT_EQ(Dump(static_cast<unsigned long>(traced), folder / "traced.core"), 0);
  EXPECT_EQ(folder.Names(), std::vector<std::string>());
  kill(traced, SIGKILL);
  waitpid(traced, nullptr, 0);
  close(ends[0]);
  close(ends[1]);
}

TEST(CrashDumpProcess, ThatMayNotBeReadFails) {
  const DumpFolder folder;
  ASSERT_EQ(chmod((folder / "").c_str(), 0777), 0);
  const pid_t self = getpid();
  EXPECT_TRUE(HoldsInChild([&] {
    // The first process of the system is another user's for everybody but root, who becomes one that may do nothing.
    const unsigned long other = getuid() == 0 ? static_cast<unsigned long>(self) : 1;
    if (getuid() == 0 && (setresgid(65534, 65534, 65534) != 0 || setresuid(65534, 65534, 65534) != 0)) return false;
    return Dump(other, folder / "other.core") == 0;
  }));
  EXPECT_EQ(folder.Names(), std::vector<std::string>());
}

struct IdRow {
  const char* name;
  unsigned long id;
};

class CrashDumpId : public testing::TestWithParam<IdRow> {};

TEST_P(CrashDumpId, OfNoProcessFails) {
  const DumpFolder folder;
  EXPECT_EQ(Dump(GetParam().id, folder / "none.core"), 0);
  EXPECT_EQ(folder.Names(), std::vector<std::string>());
}

constexpr IdRow Ids[] = {{"Zero", 0},
                         {"AboveWhatTheSystemHolds", INT_MAX},
                         {"Negative", static_cast<unsigned long>(-1)},
                         {"Wrapping", (1UL << 32) + 1}};

INSTANTIATE_TEST_SUITE_P(Rows, CrashDumpId, testing::ValuesIn(Ids), RowName<IdRow>);

TEST(CrashDumpProcess, ThatHasEndedLeavesNothing) {
  const DumpFolder folder;
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  target.Process().KillUnreaped();
  EXPECT_EQ(Dump(target.Process().Pid(), folder / "gone.core"), 0);
  EXPECT_EQ(folder.Names(), std::vector<std::string>());
}

TEST(CrashDumpProcess, OfUntouchedMemoryGivesASmallFile) {
  const DumpFolder folder;
  DumpTarget target({"reserve"});
  ASSERT_TRUE(target.Says("ready"));
  ASSERT_NE(Dump(target.Process().Pid(), folder / "reserve.core", MiniDumpWithFullMemory), 0);
  const auto [bytes, onDisk] = SizesOf(folder / "reserve.core");
  if (IsUnderSanitizer()) {
    // What the sanitizer keeps for itself goes along, but for its shadow.
    EXPECT_LT(onDisk, 512u << 20);
  } else {
    EXPECT_LT(bytes, 32u << 20);
    EXPECT_LT(onDisk, 8u << 20);
  }
}

TEST(CrashDumpProcess, WhoseThreadsComeAndGo) {
  const DumpFolder folder;
  for (int i = 0; i < 10; ++i) {
    DumpTarget target({"churn", folder / "churn.core", i % 2 == 0 ? "0" : "2"});
    EXPECT_TRUE(target.Says("dumped"));
    EXPECT_EQ(target.Process().Wait(), 0);
  }
}

TEST(CrashDumpProcess, ThatIsStoppedStaysStopped) {
  const DumpFolder folder;
  DumpTarget target({"rest"});
  ASSERT_TRUE(target.Says("ready"));
  target.Process().Suspend();
  ASSERT_NE(Dump(target.Process().Pid(), folder / "stopped.core"), 0);
  target.Process().Write("\n");
  EXPECT_EQ(target.Process().Read(std::chrono::milliseconds(20)), "") << "it has gone on";
  target.Process().Resume();
  EXPECT_EQ(target.Process().Wait(), 0);
}

TEST(CrashDumpProcess, WhoseFirstThreadHasEndedIsShownByTheOthers) {
  const DumpFolder folder;
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  const pid_t child = fork();
  if (child == 0) {
    std::thread([&] {
      const std::string stat = "/proc/self/task/" + std::to_string(getpid()) + "/stat";
      while (BytesOfFile(stat).find(") Z ") == std::string::npos) continue;
      const char go = '!';
      if (write(ends[1], &go, 1) != 1) _exit(1);
      for (;;) pause();
    }).detach();
    // The thread alone, and without a word to its callers.
    syscall(SYS_exit, 0);
  }
  char go = 0;
  ASSERT_EQ(read(ends[0], &go, 1), 1);
  EXPECT_NE(Dump(static_cast<unsigned long>(child), folder / "headless.core", MiniDumpWithFullMemory), 0);
  EXPECT_GT(SizesOf(folder / "headless.core").second, 65536u);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  close(ends[0]);
  close(ends[1]);
}

/// A signal that comes while the thread is held goes on to it.
std::atomic<int> g_signals = 0;

TEST(CrashDumpProcess, GetsTheSignalsThatComeMeanwhile) {
  const DumpFolder folder;
  g_signals = 0;
  struct sigaction before {};
  struct sigaction counting {};
  counting.sa_handler = [](int) { ++g_signals; };
  ASSERT_EQ(sigaction(SIGUSR1, &counting, &before), 0);
  std::atomic<bool> goesOn = true;
  int sent = 0;
  std::thread receiver([&] {
    while (goesOn) std::this_thread::yield();
  });
  std::thread sender([&] {
    while (goesOn) {
      const int seen = g_signals;
      if (pthread_kill(receiver.native_handle(), SIGUSR1) == 0) ++sent;
      // Signals of one number that wait together are one.
      while (g_signals == seen) std::this_thread::yield();
    }
  });
  for (int i = 0; i < 20; ++i) EXPECT_NE(DumpOwn(folder / "own.core"), 0);
  goesOn = false;
  sender.join();
  receiver.join();
  EXPECT_EQ(g_signals, sent);
  sigaction(SIGCHLD, nullptr, nullptr);
  sigaction(SIGUSR1, &before, nullptr);
}

TEST(CrashDumpHost, SeesNothingOfTheHelper) {
  if (__tsan_acquire) GTEST_SKIP() << "ThreadSanitizer has to know of the fork, and so do signals and waits";
  const DumpFolder folder;
  g_signals = 0;
  struct sigaction before {};
  struct sigaction counting {};
  counting.sa_handler = [](int) { ++g_signals; };
  ASSERT_EQ(sigaction(SIGCHLD, &counting, &before), 0);
  EXPECT_NE(DumpOwn(folder / "own.core"), 0);
  EXPECT_EQ(g_signals, 0);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
  sigaction(SIGCHLD, &before, nullptr);
}

TEST(CrashDumpHost, MayIgnoreItsChildren) {
  if (__tsan_acquire) GTEST_SKIP() << "ThreadSanitizer has to know of the fork, and so do signals and waits";
  const DumpFolder folder;
  const auto before = signal(SIGCHLD, SIG_IGN);
  EXPECT_NE(DumpOwn(folder / "own.core"), 0);
  signal(SIGCHLD, before);
}

TEST(CrashDumpHost, NeedsNoHeap) {
  const DumpFolder folder;
  const std::u16string path = (folder / "own.core").u16string();
  const std::wstring wide = (folder / "wide.core").wstring();
  const auto pid = static_cast<unsigned long>(getpid());
  const FailingAllocations none(1);
  const int result = WriteCrashDump(nullptr, pid, path.c_str(), MiniDumpWithFullMemory);
  const int wideResult = WriteCrashDump(nullptr, pid, wide.c_str(), MiniDumpNormal);
  const int requests = none.Requests();
  EXPECT_NE(result, 0);
  EXPECT_NE(wideResult, 0);
  EXPECT_EQ(requests, 0);
}

TEST(CrashDumpHost, MayDumpFromSeveralThreadsAtOnce) {
  const DumpFolder folder;
  std::atomic<int> done = 0;
  std::vector<std::thread> threads;
  for (const char* name : {"a.core", "b.core", "c.core", "d.core"}) {
    threads.emplace_back([&folder, &done, name] { done += DumpOwn(folder / name) != 0; });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(done, 4);
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.core", "b.core", "c.core", "d.core"}));
}

std::u16string g_handlersPath;
int g_handlersResult = -1;

TEST(CrashDumpHost, MayDumpInASignalHandlerOnAShortStack) {
  const DumpFolder folder;
  g_handlersPath = (folder / "handler.core").u16string();
  std::vector<char> room(IsUnderSanitizer() ? 1 << 20 : 16384);
  const stack_t alternate{.ss_sp = room.data(), .ss_flags = 0, .ss_size = room.size()};
  stack_t stackBefore{};
  ASSERT_EQ(sigaltstack(&alternate, &stackBefore), 0);
  struct sigaction before {};
  struct sigaction dumping {};
  dumping.sa_flags = SA_ONSTACK;
  dumping.sa_handler = [](int) {
    g_handlersResult =
        WriteCrashDump(nullptr, static_cast<unsigned long>(getpid()), g_handlersPath.c_str(), MiniDumpNormal);
  };
  ASSERT_EQ(sigaction(SIGUSR2, &dumping, &before), 0);
  raise(SIGUSR2);
  EXPECT_GT(g_handlersResult, 0);
  sigaction(SIGUSR2, &before, nullptr);
  sigaltstack(&stackBefore, nullptr);
}

/// What the helper is asked for, with an empty file.
class CrashDumpByThread : public testing::Test {
 protected:
  CrashDumpByThread()
      : m_file(open((m_folder / "a.core").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)), m_target({"rest"}) {}

  DumpRequest Request() {
    const auto pid = static_cast<pid_t>(m_target.Process().Pid());
    return {.process = pid, .firstThread = pid, .file = m_file.Get(), .content = {}};
  }

  const DumpFolder m_folder;
  const base::FileDescriptor m_file;
  DumpTarget m_target;
};

// As it is done where only an ancestor may trace.
TEST_F(CrashDumpByThread, WritesADumpAndLetsTheProcessGoOn) {
  ASSERT_TRUE(m_target.Says("ready"));
  EXPECT_EQ(diagnostics::WriteCoreByThread(Request()), DumpOutcome::Whole);
  EXPECT_TRUE(BytesOfFile(m_folder / "a.core")
                  .starts_with("\x7F"
                               "ELF"));
  m_target.Process().Write("\n");
  EXPECT_EQ(m_target.Process().Wait(), 0);
}

TEST_F(CrashDumpByThread, OfNoProcessIsRefused) {
  DumpRequest request = Request();
  request.process = INT_MAX;
  EXPECT_EQ(diagnostics::WriteCoreByThread(request), DumpOutcome::Refused);
}

TEST_F(CrashDumpByThread, ToAFileThatCannotBeWrittenFails) {
  ASSERT_TRUE(m_target.Says("ready"));
  DumpRequest request = Request();
  request.file = -1;
  EXPECT_EQ(diagnostics::WriteCoreByThread(request), DumpOutcome::Failed);
  EXPECT_EQ(diagnostics::WriteCoreByHelper(request), DumpOutcome::Failed);
}

TEST(MappedMemory, GivesMemoryAndGivesUpWhereThereIsNone) {
  diagnostics::MappedMemory memory([] { throw std::bad_alloc(); });
  void* const block = memory.allocate(10'000, 16);
  std::memset(block, 1, 10'000);
  memory.deallocate(block, 10'000, 16);
  EXPECT_THROW(static_cast<void>(memory.allocate(std::size_t{1} << 62, 16)), std::bad_alloc);
  EXPECT_TRUE(memory.is_equal(memory));
  EXPECT_FALSE(memory.is_equal(*std::pmr::new_delete_resource()));
}

}  // namespace
}  // namespace qilsys::test
