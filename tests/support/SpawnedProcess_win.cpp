// The sibling for Linux is SpawnedProcess_linux.cpp.
#include "support/SpawnedProcess.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>
// After windows.h, whose types it is made of.
#include <tlhelp32.h>

#include <array>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "base/Win32Handle_win.h"

namespace qilsys::test {

namespace {

// Anything that no program of the tests ends with by itself.
constexpr UINT g_killedCode = 0xDEAD;

[[noreturn]] void Fail(const char* call) {
  throw std::runtime_error(std::string(call) + " failed with error " + std::to_string(GetLastError()));
}

Win32Handle Opened(HANDLE handle, const char* call) {
  if (handle == nullptr || handle == INVALID_HANDLE_VALUE) Fail(call);
  return Win32Handle(handle);
}

struct Pipe {
  Pipe() {
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, nullptr, 0)) Fail("CreatePipe");
    m_read = Win32Handle(read);
    m_write = Win32Handle(write);
  }

  Win32Handle m_read;
  Win32Handle m_write;
};

/// A job whose processes are killed with the last handle on it, so also when the test is killed.
Win32Handle MakeJob() {
  Win32Handle job = Opened(CreateJobObjectW(nullptr, nullptr), "CreateJobObjectW");
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (!SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits, sizeof limits)) {
    Fail("SetInformationJobObject");
  }
  return job;
}

// The words hold neither quotes nor a backslash at an end.
std::string CommandLine(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "\"" : " \"") + word + "\"";
  return line;
}

void LetInherit(const Win32Handle& handle) {
  if (!SetHandleInformation(handle.Get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT)) Fail("SetHandleInformation");
}

PROCESS_INFORMATION CreateSuspended(const std::vector<std::string>& words, const Pipe& input, const Pipe& output) {
  LetInherit(input.m_read);
  LetInherit(output.m_write);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input.m_read.Get();
  startup.hStdOutput = output.m_write.Get();
  startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  std::string line = CommandLine(words);
  PROCESS_INFORMATION created{};
  if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr, &startup,
                      &created)) {
    Fail("CreateProcessA");
  }
  return created;
}

/// Calls `act` with each thread of the process.
template <class TAct>
void ForEachThread(unsigned int pid, TAct act) {
  const Win32Handle threads = Opened(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0), "CreateToolhelp32Snapshot");
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Thread32First(threads.Get(), &entry); more; more = Thread32Next(threads.Get(), &entry)) {
    if (entry.th32OwnerProcessID != pid) continue;
    const Win32Handle thread(OpenThread(THREAD_SUSPEND_RESUME, FALSE, entry.th32ThreadID));
    if (thread.IsOpen()) act(thread.Get());
  }
}

}  // namespace

struct SpawnedProcess::System {
  ~System() {
    if (m_reader.joinable()) m_reader.join();
  }

  // A read of a pipe has no time limit, so a thread of its own reads.
  void ReadToTheEnd() {
    std::array<char, 4096> buffer;
    DWORD got = 0;
    while (ReadFile(m_output.m_read.Get(), buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) &&
           got != 0) {
      const std::lock_guard lock(m_mutex);
      m_text.append(buffer.data(), got);
      m_news.notify_all();
    }
    const std::lock_guard lock(m_mutex);
    m_ended = true;
    m_news.notify_all();
  }

  Win32Handle m_job = MakeJob();
  Pipe m_input;
  Pipe m_output;
  Win32Handle m_process;
  unsigned int m_pid = 0;
  std::optional<int> m_exitCode;
  std::mutex m_mutex;
  std::condition_variable m_news;
  std::string m_text;
  bool m_ended = false;
  std::thread m_reader;
};

SpawnedProcess::SpawnedProcess(const std::vector<std::string>& words) : m_system(std::make_unique<System>()) {
  const PROCESS_INFORMATION created = CreateSuspended(words, m_system->m_input, m_system->m_output);
  m_system->m_process = Win32Handle(created.hProcess);
  m_system->m_pid = created.dwProcessId;
  const Win32Handle thread(created.hThread);
  m_system->m_input.m_read = Win32Handle();
  m_system->m_output.m_write = Win32Handle();
  // Assigned before it runs, so that there is no moment at which it could be left behind.
  if (!AssignProcessToJobObject(m_system->m_job.Get(), created.hProcess)) {
    TerminateProcess(created.hProcess, g_killedCode);
    Fail("AssignProcessToJobObject");
  }
  ResumeThread(created.hThread);
  m_system->m_reader = std::thread([system = m_system.get()] { system->ReadToTheEnd(); });
}

SpawnedProcess::~SpawnedProcess() {
  Kill();
  Wait();
}

unsigned int SpawnedProcess::Pid() const { return m_system->m_pid; }

void* SpawnedProcess::Handle() const { return m_system->m_process.Get(); }

void SpawnedProcess::Kill() const {
  if (m_system->m_process.IsOpen()) TerminateProcess(m_system->m_process.Get(), g_killedCode);
}

void SpawnedProcess::KillUnreaped() const {
  Kill();
  WaitForSingleObject(m_system->m_process.Get(), INFINITE);
}

void SpawnedProcess::Suspend() const { ForEachThread(m_system->m_pid, &SuspendThread); }

void SpawnedProcess::Resume() const { ForEachThread(m_system->m_pid, &ResumeThread); }

bool SpawnedProcess::Write(const std::string& text) const {
  DWORD written = 0;
  return WriteFile(m_system->m_input.m_write.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
         written == text.size();
}

std::optional<std::string> SpawnedProcess::Read(std::chrono::milliseconds time) {
  std::unique_lock lock(m_system->m_mutex);
  m_system->m_news.wait_for(lock, time, [this] { return m_system->m_ended || !m_system->m_text.empty(); });
  if (m_system->m_ended && m_system->m_text.empty()) return std::nullopt;
  return std::exchange(m_system->m_text, {});
}

int SpawnedProcess::Wait() {
  if (m_system->m_exitCode) return *m_system->m_exitCode;
  WaitForSingleObject(m_system->m_process.Get(), INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(m_system->m_process.Get(), &code);
  m_system->m_process = Win32Handle();
  m_system->m_exitCode = code == g_killedCode ? KilledBySignal : static_cast<int>(code);
  return *m_system->m_exitCode;
}

}  // namespace qilsys::test
