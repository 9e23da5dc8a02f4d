// The reader of symbols and lines on Windows. The Linux sibling reads ELF and DWARF.
#include "diagnostics/DebugHelpSymbols_win.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

#if defined(__GNUC__)
#include <cxxabi.h>

#include <cstdlib>
#endif

namespace qilsys::diagnostics {

namespace {

constexpr DWORD MostOfPath = 260;
using PathRoom = std::array<char, MostOfPath>;

// Loads on demand and lines; no dialogue boxes, neither for errors nor for prompts.
constexpr DWORD Options = SYMOPT_DEFERRED_LOADS | SYMOPT_LOAD_LINES | SYMOPT_FAIL_CRITICAL_ERRORS | SYMOPT_NO_PROMPTS;
static_assert(Options == 0x80214);

void AppendFolder(std::string& path, const char* folder) { path.append(folder).append(";"); }

// The code page of the process, which the functions for 8-bit text take.
std::string ToNarrow(const wchar_t* text) {
  std::array<char, 4 * MAX_PATH> room;
  const int length =
      WideCharToMultiByte(CP_ACP, 0, text, -1, room.data(), static_cast<int>(room.size()), nullptr, nullptr);
  return length > 0 ? room.data() : "";
}

std::string ToUtf8(const char* text) {
  std::array<wchar_t, 4096> units;
  std::array<char, 3 * 4096> bytes;
  const int length = MultiByteToWideChar(CP_ACP, 0, text, -1, units.data(), static_cast<int>(units.size()));
  const int size = WideCharToMultiByte(CP_UTF8, 0, units.data(), length, bytes.data(), static_cast<int>(bytes.size()),
                                       nullptr, nullptr);
  return length > 0 && size > 0 ? bytes.data() : text;
}

// dbghelp knows how one compiler spells names.
std::string Demangled(const char* name) {
#if defined(__GNUC__)
  struct Free {
    void operator()(char* text) const { std::free(text); }
  };
  if (std::string_view(name).starts_with("_Z")) {
    const std::unique_ptr<char, Free> text(abi::__cxa_demangle(name, nullptr, nullptr, nullptr));
    if (text) return text.get();
  }
#endif
  return ToUtf8(name);
}

}  // namespace

std::string SymbolSearchPath(const DebugHelp& help) {
  std::string path;
  AppendFolder(path, ".");
  PathRoom room;
  const DWORD length = help.getCurrentDirectoryA(MostOfPath, room.data());
  if (length > 0 && length < MostOfPath) AppendFolder(path, room.data());
  const DWORD fileLength = help.getModuleFileNameA(nullptr, room.data(), MostOfPath);
  if (fileLength > 0 && fileLength < MostOfPath) {
    const std::string file = room.data();
    const std::size_t end = file.find_last_of("\\/");
    if (end != file.npos) AppendFolder(path, file.substr(0, end).c_str());
  }
  for (const int folder : {CSIDL_WINDOWS, CSIDL_SYSTEM}) {
    if (help.shGetSpecialFolderPathA(nullptr, room.data(), folder, FALSE)) AppendFolder(path, room.data());
  }
  return path;
}

DebugHelpSymbols::DebugHelpSymbols(const DebugHelp& help)
    : m_help(help), m_process(GetCurrentProcess()), m_searchPath(SymbolSearchPath(help)) {
  Start();
  m_areModulesLoaded = LoadModules();
  m_help.symRefreshModuleList(m_process);
}

DebugHelpSymbols::~DebugHelpSymbols() { m_help.symCleanup(m_process); }

// It fails where it has been started already, as by a host that has ended its own use without saying so.
void DebugHelpSymbols::Start() {
  m_help.symSetOptions(m_help.symGetOptions() | Options);
  if (m_help.symInitialize(m_process, m_searchPath.c_str(), TRUE)) return;
  m_help.symCleanup(m_process);
  m_help.symInitialize(m_process, m_searchPath.c_str(), TRUE);
}

bool DebugHelpSymbols::LoadModules() {
  const HANDLE snapshot = m_help.createToolhelp32Snapshot(TH32CS_SNAPMODULE, GetCurrentProcessId());
  if (snapshot == INVALID_HANDLE_VALUE) return false;
  MODULEENTRY32W module{};
  module.dwSize = sizeof module;
  BOOL isThere = m_help.module32FirstW(snapshot, &module);
  const bool isAny = isThere;
  while (isThere) {
    m_help.symLoadModule64(m_process, nullptr, ToNarrow(module.szExePath).c_str(), ToNarrow(module.szModule).c_str(),
                           reinterpret_cast<DWORD64>(module.modBaseAddr), module.modBaseSize);
    isThere = m_help.module32NextW(snapshot, &module);
  }
  m_help.closeHandle(snapshot);
  return isAny;
}

void DebugHelpSymbols::FindNames(std::uint64_t lookUp, StackFrameInfo& frame) {
  IMAGEHLP_MODULE64 module{};
  module.SizeOfStruct = sizeof module;
  if (m_help.symGetModuleInfo64(m_process, lookUp, &module)) {
    frame.m_moduleName = ShortModuleName(ToUtf8(module.ModuleName));
  }
  constexpr DWORD NameCapacity = 2048;
  alignas(IMAGEHLP_SYMBOL64) std::array<std::byte, sizeof(IMAGEHLP_SYMBOL64) + NameCapacity> room{};
  auto* const symbol = reinterpret_cast<IMAGEHLP_SYMBOL64*>(room.data());
  symbol->SizeOfStruct = sizeof *symbol;
  symbol->MaxNameLength = NameCapacity;
  DWORD64 offset = 0;
  if (m_help.symGetSymFromAddr64(m_process, lookUp, &offset, symbol)) {
    // The name goes on behind the array of one that the record has for it.
    frame.m_symbolName = Demangled(reinterpret_cast<const char*>(room.data()) + offsetof(IMAGEHLP_SYMBOL64, Name));
  }
}

void DebugHelpSymbols::FindLine(std::uint64_t lookUp, StackFrameInfo& frame) {
  IMAGEHLP_LINE64 line{};
  line.SizeOfStruct = sizeof line;
  DWORD offset = 0;
  if (!m_help.symGetLineFromAddr64(m_process, lookUp, &offset, &line)) return;
  frame.m_fileName = ToUtf8(line.FileName);
  frame.m_lineNumber = line.LineNumber;
}

}  // namespace qilsys::diagnostics
