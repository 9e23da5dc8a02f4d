/// What dbghelp says of an address of this process.
#pragma once

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <cstdint>
#include <string>

#include "diagnostics/DebugHelp_win.h"
#include "diagnostics/SymbolEngine_platform.h"

namespace qilsys::diagnostics {

/// Starts dbghelp for this process, and ends it in its destructor.
class DebugHelpSymbols : public ISymbolSource {
 public:
  explicit DebugHelpSymbols(const DebugHelp& help);
  DebugHelpSymbols(const DebugHelpSymbols&) = delete;
  DebugHelpSymbols& operator=(const DebugHelpSymbols&) = delete;
  ~DebugHelpSymbols() override;

  void FindNames(std::uint64_t lookUp, StackFrameInfo& frame) override;
  void FindLine(std::uint64_t lookUp, StackFrameInfo& frame) override;

  /// Whether dbghelp was given each module there was.
  bool AreModulesLoaded() const { return m_areModulesLoaded; }

 private:
  void Start();
  bool LoadModules();

  const DebugHelp& m_help;
  const HANDLE m_process;
  const std::string m_searchPath;
  bool m_areModulesLoaded = false;
};

/// Where dbghelp looks for symbols: ".", the current directory, that of the program, the system's own two; each followed
/// by ";". What the system doesn't tell is left out.
std::string SymbolSearchPath(const DebugHelp& help);

}  // namespace qilsys::diagnostics
