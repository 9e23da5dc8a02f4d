/// What each system must give for walks: a capture of the stack, and what is known of an address in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "diagnostics/StackLine.h"

namespace qilsys::diagnostics {

/// A frame as it was captured: the address that its function goes on at, and one inside the instruction that it stands
/// at. They differ after a call, behind which another line, or another function, may begin.
struct CapturedFrame {
  std::uint64_t address;
  std::uint64_t lookUp;
};

/// Fills `frames` with the calling thread's, from the innermost, and returns how many these are.
std::size_t CaptureStack(std::span<CapturedFrame> frames) noexcept;

/// The system's own number of the calling thread.
std::uint64_t NumberOfThread() noexcept;

/// Loads the library that knows symbols, unless it is loaded; throws std::bad_alloc. To be called without a lock: a thread may walk in the
/// initialisation of a module, where it holds the lock of the system's loader.
void LoadSymbolLibrary();

/// What is known of the modules that were loaded when it was made. Not for two threads at once.
class ISymbolSource {
 public:
  virtual ~ISymbolSource() = default;

  /// Sets the names of module and symbol, as far as they are known. Throws std::bad_alloc alone, here as below.
  virtual void FindNames(std::uint64_t lookUp, StackFrameInfo& frame) = 0;
  /// The same with file and line.
  virtual void FindLine(std::uint64_t lookUp, StackFrameInfo& frame) = 0;
};

/// Never null: where the system gives nothing it is a source that knows nothing. Throws std::bad_alloc alone.
std::unique_ptr<ISymbolSource> MakeSymbolSource();

/// Has `before` called before the process is forked, and `after` on both sides of the fork. Where the system knows no
/// forks it does nothing.
void CallAroundForks(void (*before)(), void (*after)()) noexcept;

}  // namespace qilsys::diagnostics
