// The Linux sibling has the same operations.
#include "diagnostics/SymbolEngine_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <array>

#include "qilsys/TStackWalker.h"

namespace qilsys::diagnostics {

namespace {

class NothingKnown : public ISymbolSource {
 public:
  void FindNames(std::uint64_t, StackFrameInfo&) override {}
  void FindLine(std::uint64_t, StackFrameInfo&) override {}
};

}  // namespace

std::size_t CaptureStack(std::span<CapturedFrame> frames) noexcept {
  std::array<void*, StackWalkerConfig::numberOfStackWalks> addresses;
  const auto most = static_cast<DWORD>(frames.size() < addresses.size() ? frames.size() : addresses.size());
  const std::size_t count = RtlCaptureStackBackTrace(0, most, addresses.data(), nullptr);
  for (std::size_t i = 0; i < count; ++i) {
    const auto address = reinterpret_cast<std::uint64_t>(addresses[i]);
    frames[i] = {address, address - 1};
  }
  return count;
}

std::uint64_t NumberOfThread() noexcept { return GetCurrentThreadId(); }

std::unique_ptr<ISymbolSource> MakeSymbolSource() { return std::make_unique<NothingKnown>(); }

void CallAroundForks(void (*)(), void (*)()) noexcept {}

}  // namespace qilsys::diagnostics
