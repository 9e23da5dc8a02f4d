// The Linux sibling has the same operations.
#include "diagnostics/SymbolEngine_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <algorithm>
#include <array>

#include "diagnostics/DebugHelpSymbols_win.h"
#include "diagnostics/DebugHelp_win.h"
#include "qilsys/TStackWalker.h"

namespace qilsys::diagnostics {

namespace {

class NothingKnown : public ISymbolSource {
 public:
  void FindNames(std::uint64_t, StackFrameInfo&) override {}
  void FindLine(std::uint64_t, StackFrameInfo&) override {}
};

}  // namespace

// Behind the frame at which a thread begins there may be null, and whatever lies behind that.
std::size_t CaptureStack(std::span<CapturedFrame> frames) noexcept {
  std::array<void*, StackWalkerConfig::numberOfStackWalks> addresses;
  const auto most = static_cast<DWORD>(std::min(frames.size(), addresses.size()));
  const std::size_t captured = RtlCaptureStackBackTrace(0, most, addresses.data(), nullptr);
  std::size_t count = 0;
  for (; count < captured && addresses[count]; ++count) {
    const auto address = reinterpret_cast<std::uint64_t>(addresses[count]);
    frames[count] = {address, address - 1};
  }
  return count;
}

std::uint64_t NumberOfThread() noexcept { return GetCurrentThreadId(); }

void LoadSymbolLibrary() { TheDebugHelp(); }

std::unique_ptr<ISymbolSource> MakeSymbolSource() {
  const DebugHelp* const help = TheDebugHelp();
  if (!help) return std::make_unique<NothingKnown>();
  return std::make_unique<DebugHelpSymbols>(*help);
}

void CallAroundForks(void (*)(), void (*)()) noexcept {}

}  // namespace qilsys::diagnostics
