#include "crash_handler/StackLines_win.h"

// Behind windows.h.
#include <dbghelp.h>
#include <tlhelp32.h>

#include <array>
#include <cstdio>
#include <cstring>

namespace crash_handler {

namespace {

using Lines = std::vector<std::string>;

// Whoever has run out of stack has a great many frames.
constexpr int MostFrames = 100;
constexpr DWORD NameRoom = 1024;

std::string SymbolAt(HANDLE process, DWORD64 address) {
  alignas(SYMBOL_INFO) std::array<char, sizeof(SYMBOL_INFO) + NameRoom> room{};
  auto* const symbol = reinterpret_cast<SYMBOL_INFO*>(room.data());
  symbol->SizeOfStruct = sizeof(SYMBOL_INFO);
  symbol->MaxNameLen = NameRoom;
  DWORD64 distance = 0;
  return SymFromAddr(process, address, &distance, symbol) ? symbol->Name : "(no symbol)";
}

std::string LineOf(HANDLE process, DWORD64 address) {
  IMAGEHLP_MODULE64 module{};
  module.SizeOfStruct = sizeof module;
  const bool isKnown = SymGetModuleInfo64(process, address, &module) != FALSE;
  char number[32];
  std::snprintf(number, sizeof number, "  0x%016llX ", static_cast<unsigned long long>(address));
  return std::string(number) + (isKnown ? module.ModuleName : "(no module)") + "!" + SymbolAt(process, address);
}

void AddFrames(HANDLE process, HANDLE thread, CONTEXT context, Lines& lines) {
  STACKFRAME64 frame{};
  frame.AddrPC = {context.Rip, 0, AddrModeFlat};
  frame.AddrFrame = {context.Rbp, 0, AddrModeFlat};
  frame.AddrStack = {context.Rsp, 0, AddrModeFlat};
  for (int i = 0; i < MostFrames; ++i) {
    const BOOL isFrame = StackWalk64(IMAGE_FILE_MACHINE_AMD64, process, thread, &frame, &context, nullptr,
                                     SymFunctionTableAccess64, SymGetModuleBase64, nullptr);
    if (!isFrame || frame.AddrPC.Offset == 0) return;
    // A caller's address is that behind its call, which may be another function's already.
    lines.push_back(LineOf(process, i == 0 ? frame.AddrPC.Offset : frame.AddrPC.Offset - 1));
  }
}

void AddThread(HANDLE process, DWORD id, const CONTEXT* crashed, Lines& lines) {
  const HANDLE thread = OpenThread(THREAD_GET_CONTEXT | THREAD_SUSPEND_RESUME | THREAD_QUERY_INFORMATION, FALSE, id);
  if (thread == nullptr) return;
  lines.push_back("thread " + std::to_string(id));
  SuspendThread(thread);
  CONTEXT context{};
  context.ContextFlags = CONTEXT_FULL;
  const bool hasContext = GetThreadContext(thread, &context) != FALSE;
  if (crashed != nullptr || hasContext) AddFrames(process, thread, crashed != nullptr ? *crashed : context, lines);
  ResumeThread(thread);
  CloseHandle(thread);
}

}  // namespace

std::vector<std::string> StackLinesOf(HANDLE process, DWORD processId, DWORD crashedThread, const CONTEXT* crashed) {
  Lines lines;
  SymInitialize(process, nullptr, TRUE);
  const HANDLE threads = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL isThread = Thread32First(threads, &entry); isThread; isThread = Thread32Next(threads, &entry)) {
    if (entry.th32OwnerProcessID == processId) {
      AddThread(process, entry.th32ThreadID, entry.th32ThreadID == crashedThread ? crashed : nullptr, lines);
    }
  }
  CloseHandle(threads);
  SymCleanup(process);
  return lines;
}

}  // namespace crash_handler
