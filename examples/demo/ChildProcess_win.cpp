// The Linux sibling is ChildProcess_linux.cpp.
#include "demo/ChildProcess.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <array>
#include <system_error>
#include <utility>

#include "qilsys/TStringCore.h"

namespace demo {

namespace {

// The code of a child that was ended from outside, as a shell would tell it.
constexpr UINT EndedCode = 137;

[[noreturn]] void Fail(const char* call) {
  throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), call);
}

/// A handle that is closed once.
class Handle {
 public:
  Handle() = default;
  ~Handle() { Reset(nullptr); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  HANDLE Get() const { return m_handle; }
  void Reset(HANDLE handle) {
    if (m_handle != nullptr) ::CloseHandle(m_handle);
    m_handle = handle;
  }

 private:
  HANDLE m_handle = nullptr;
};

struct Pipe {
  Pipe() {
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!::CreatePipe(&read, &write, nullptr, 0)) Fail("CreatePipe");
    m_read.Reset(read);
    m_write.Reset(write);
  }

  Handle m_read;
  Handle m_write;
};

void LetInherit(const Handle& handle) {
  if (!::SetHandleInformation(handle.Get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT)) Fail("SetHandleInformation");
}

/// A job whose processes are ended with the last handle on it, so also when this process dies.
HANDLE MakeJob() {
  const HANDLE job = ::CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (job == nullptr || !::SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof(limits))) {
    Fail("CreateJobObject");
  }
  return job;
}

std::wstring OwnProgram() {
  std::wstring path(32768, L'\0');
  path.resize(::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  if (path.empty()) Fail("GetModuleFileName");
  return path;
}

// None of the arguments needs quotes.
std::wstring CommandLine(const std::vector<std::string>& arguments) {
  std::wstring line = L"qilsys_demo";
  for (const std::string& argument : arguments) line += L" " + TStringCore::fromStdString(argument).toStdWString();
  return line;
}

// Ctrl-C reaches all processes of a console but those of another group: the director alone decides what happens then.
constexpr DWORD CreationFlags = CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP;

PROCESS_INFORMATION CreateSuspended(const std::vector<std::string>& arguments, const Pipe& input, const Pipe& output) {
  LetInherit(input.m_read);
  LetInherit(output.m_write);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input.m_read.Get();
  startup.hStdOutput = output.m_write.Get();
  startup.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
  std::wstring line = CommandLine(arguments);
  PROCESS_INFORMATION created{};
  if (!::CreateProcessW(OwnProgram().c_str(), line.data(), nullptr, nullptr, TRUE, CreationFlags, nullptr, nullptr,
                        &startup, &created)) {
    Fail("CreateProcess");
  }
  return created;
}

}  // namespace

struct ChildProcess::System {
  Handle m_job;
  Pipe m_input;
  Pipe m_output;
  Handle m_process;
  unsigned int m_id = 0;
};

ChildProcess::ChildProcess(const std::vector<std::string>& arguments) : m_system(std::make_unique<System>()) {
  m_system->m_job.Reset(MakeJob());
  const PROCESS_INFORMATION created = CreateSuspended(arguments, m_system->m_input, m_system->m_output);
  m_system->m_process.Reset(created.hProcess);
  m_system->m_id = created.dwProcessId;
  m_system->m_input.m_read.Reset(nullptr);
  m_system->m_output.m_write.Reset(nullptr);
  Handle thread;
  thread.Reset(created.hThread);
  // Into the job before it runs, so that there is no moment at which it could be left behind.
  if (!::AssignProcessToJobObject(m_system->m_job.Get(), created.hProcess)) {
    ::TerminateProcess(created.hProcess, EndedCode);
    Fail("AssignProcessToJobObject");
  }
  ::ResumeThread(created.hThread);
}

ChildProcess::~ChildProcess() {
  if (ExitCode()) return;
  ::TerminateProcess(m_system->m_process.Get(), EndedCode);
  ::WaitForSingleObject(m_system->m_process.Get(), INFINITE);
}

unsigned int ChildProcess::Id() const { return m_system->m_id; }

void ChildProcess::Tell(const std::string& line) {
  const std::string text = line + "\n";
  DWORD written = 0;
  ::WriteFile(m_system->m_input.m_write.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

// A read of a pipe waits, so it is only done for what is there.
std::string ChildProcess::ReadWhatCame() {
  const HANDLE output = m_system->m_output.m_read.Get();
  std::string text;
  std::array<char, 4096> buffer{};
  DWORD waiting = 0;
  while (::PeekNamedPipe(output, nullptr, 0, nullptr, &waiting, nullptr) && waiting > 0) {
    DWORD got = 0;
    if (!::ReadFile(output, buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) || got == 0) break;
    text.append(buffer.data(), got);
  }
  return text;
}

void ChildProcess::Dismiss() { m_system->m_input.m_write.Reset(nullptr); }

std::optional<int> ChildProcess::ExitCode() {
  if (::WaitForSingleObject(m_system->m_process.Get(), 0) != WAIT_OBJECT_0) return std::nullopt;
  DWORD code = 0;
  ::GetExitCodeProcess(m_system->m_process.Get(), &code);
  return static_cast<int>(code);
}

}  // namespace demo
