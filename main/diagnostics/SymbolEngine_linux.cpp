// The Windows sibling has the same operations.
#include "diagnostics/SymbolEngine_platform.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <pthread.h>
#include <unistd.h>
#include <unwind.h>

#include "diagnostics/DwarfSymbols_linux.h"
#include "diagnostics/LibDw_linux.h"

namespace qilsys::diagnostics {

namespace {

struct Capture {
  std::span<CapturedFrame> frames;
  std::size_t count = 0;
};

// A frame that a signal has interrupted stands at its address, every other one behind its call.
_Unwind_Reason_Code Take(_Unwind_Context* context, void* argument) {
  Capture& capture = *static_cast<Capture*>(argument);
  int isExact = 0;
  const std::uint64_t address = _Unwind_GetIPInfo(context, &isExact);
  if (address == 0 || capture.count == capture.frames.size()) return _URC_END_OF_STACK;
  capture.frames[capture.count++] = {address, address - (isExact ? 0 : 1)};
  return _URC_NO_REASON;
}

class NothingKnown : public ISymbolSource {
 public:
  void FindNames(std::uint64_t, StackFrameInfo&) override {}
  void FindLine(std::uint64_t, StackFrameInfo&) override {}
};

}  // namespace

std::size_t CaptureStack(std::span<CapturedFrame> frames) noexcept {
  Capture capture{frames};
  _Unwind_Backtrace(&Take, &capture);
  return capture.count;
}

std::uint64_t NumberOfThread() noexcept { return static_cast<std::uint64_t>(gettid()); }

void LoadSymbolLibrary() { TheLibDw(); }

std::unique_ptr<ISymbolSource> MakeSymbolSource() {
  const LibDw* const dw = TheLibDw();
  if (!dw) return std::make_unique<NothingKnown>();
  return std::make_unique<DwarfSymbols>(*dw);
}

// Without memory for it a child that is forked amid a walk must not walk.
void CallAroundForks(void (*before)(), void (*after)()) noexcept { pthread_atfork(before, after, after); }

}  // namespace qilsys::diagnostics
